#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vcard {

// What keeps text apart from what is written around it. None of these refuses anything: what is no
// escape stands for itself.

/// The text without soft line breaks, which are gone when lines are put together.
[[nodiscard]] std::string DecodeQuotedPrintable(std::string_view text);

/// The text of a URI.
[[nodiscard]] std::string DecodePercents(std::string_view text);

/// The components of a value between its semicolons, each without its backslashes.
[[nodiscard]] std::vector<std::string> SplitValue(std::string_view value);

}  // namespace vcard
