#pragma once

#include <compare>
#include <string_view>

namespace text {

/// Whether every character is one from " " to "~".
[[nodiscard]] bool IsPrintableAscii(std::u16string_view text);

/// The order in which the collation of no language in particular puts two such texts, without its
/// tables: most of what is put in order are telephone numbers.
[[nodiscard]] std::strong_ordering CompareAscii(std::u16string_view a, std::u16string_view b);

}  // namespace text
