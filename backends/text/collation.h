#pragma once

#include <compare>
#include <string_view>

namespace text {

/// Returns the order in which lists that sort themselves show their items. It is the one that a
/// reader expects, and it is the same in every language and on every machine. Different texts are
/// never equal. May be called from any thread.
[[nodiscard]] std::strong_ordering CompareForDisplay(std::u16string_view a, std::u16string_view b);

// The order of plain texts, which are most of what is put in order: telephone numbers. The tables
// of all scripts take 1.5 MiB of memory from the moment when they are first used, and a command
// that learns a tag need not use them.

/// Returns whether every character is one from " " to "~".
[[nodiscard]] bool IsPrintableAscii(std::u16string_view text);

/// Returns the order of two such texts, the same as the collation of no language in particular
/// gives.
[[nodiscard]] std::strong_ordering CompareAscii(std::u16string_view a, std::u16string_view b);

}  // namespace text
