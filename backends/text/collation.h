#pragma once

#include <compare>
#include <string_view>

namespace text {

/// The order in which lists that sort themselves show their items. It is the one that a reader
/// expects, and it is the same in every language and on every machine. Different texts are never
/// equal. May be called from any thread.
[[nodiscard]] std::strong_ordering CompareForDisplay(std::u16string_view a, std::u16string_view b);

}  // namespace text
