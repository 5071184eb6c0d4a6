#pragma once

#include <nlohmann/json.hpp>
#include <string_view>

namespace cli {

using Json = nlohmann::ordered_json;

/// The value that prints with nine significant digits, which tell every float from its neighbours.
/// What is no finite number prints as null.
[[nodiscard]] Json NineDigits(float value);

/// One JSON object, one line on standard output.
void PrintJson(const Json& json);

/// A line on standard output or standard error.
void PrintLine(std::string_view line);
void PrintErrorLine(std::string_view line);

}  // namespace cli
