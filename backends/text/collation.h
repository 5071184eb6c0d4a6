#pragma once

#include <compare>
#include <string_view>

namespace text {

/// Order in which lists that sort themselves show their items: as a reader expects it, the same in
/// every language and on every machine. Different texts are never equal.
[[nodiscard]] std::strong_ordering CompareForDisplay(std::u16string_view a, std::u16string_view b);

}  // namespace text
