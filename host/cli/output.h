#pragma once

#include <nlohmann/json.hpp>
#include <string_view>

namespace cli {

using Json = nlohmann::ordered_json;

/// Prints a JSON value, one line on standard output. A fraction has nine significant digits, which
/// are enough to know every float from its neighbours. What is no finite number is null, and bytes
/// that are not UTF-8 are U+FFFD. What a terminal may take for a command (text::IsCommand) is an
/// escape.
void PrintJson(const Json& json);

/// Returns {"error":{"code":CODE,"message":MESSAGE}}. `code` is the exit code of the program.
/// `message` is what standard error says; it has a line for each sentence.
[[nodiscard]] Json ErrorToJson(int code, std::string_view message);

/// Prints a line on standard output or standard error, as text::Printable gives it, since it may
/// hold names that others chose. If the stream takes nothing more, the line is lost. For standard
/// output, FlushOutput reports it.
void PrintLine(std::string_view line);
void PrintErrorLine(std::string_view line);

/// Returns false if not all that was printed has reached standard output.
[[nodiscard]] bool FlushOutput();

}  // namespace cli
