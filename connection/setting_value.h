#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace connection {

/// The bytes that a text is stored with: UTF-16, little-endian, always `byteCount` of them. A
/// shorter text is followed by zeros; one that takes up all of the bytes, or more, has no
/// terminator, since the count is written as it stands.
[[nodiscard]] std::vector<std::byte> ToSettingValue(std::u16string_view text,
                                                    std::size_t byteCount);

}  // namespace connection
