#pragma once

#include <nlohmann/json.hpp>
#include <string_view>

namespace cli {

using Json = nlohmann::ordered_json;

/// Keeps the numbers of closed standard streams from going to files that are opened later, where a
/// message would end up in a recording. Writing to a stream that was closed fails all the same.
/// Called before anything is opened.
void ReserveStandardStreams();

/// One JSON object, one line on standard output. A fraction has nine significant digits, which tell
/// every float from its neighbours; what is no finite number is null, and bytes that are not UTF-8
/// are U+FFFD. What a terminal may take for a command (text::IsCommand) is an escape.
void PrintJson(const Json& json);

/// A line on standard output or standard error, as text::Printable gives it, since it may hold
/// names that others chose. If the stream takes nothing more, the line is lost. For standard
/// output, FlushOutput reports it.
void PrintLine(std::string_view line);
void PrintErrorLine(std::string_view line);

/// Says on standard error that memory has run out. Takes no memory.
void PrintOutOfMemory();

/// False where not all that was printed has reached standard output.
[[nodiscard]] bool FlushOutput();

}  // namespace cli
