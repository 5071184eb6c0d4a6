#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace text {

/// Returns UTF-8 with `values` in its places "%1" to "%9". A place without a value stays. A
/// value may hold such a sign itself.
[[nodiscard]] std::string Fill(std::string_view utf8,
                               std::initializer_list<std::string_view> values);

}  // namespace text
