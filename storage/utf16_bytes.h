#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace storage {

// Text as it stands in values and in registry files: UTF-16, little-endian, on every machine.

inline void AppendUnit(char16_t unit, std::vector<std::byte>& bytes) {
  constexpr unsigned kBitsOfByte = 8;
  bytes.push_back(static_cast<std::byte>(unit & 0xFF));
  bytes.push_back(static_cast<std::byte>(unit >> kBitsOfByte));
}

[[nodiscard]] inline std::vector<std::byte> ToUtf16Bytes(std::u16string_view text) {
  std::vector<std::byte> bytes;
  bytes.reserve(text.size() * sizeof(char16_t));
  for (const char16_t unit : text) {
    AppendUnit(unit, bytes);
  }
  return bytes;
}

/// Half a unit at the end is dropped.
[[nodiscard]] inline std::u16string FromUtf16Bytes(std::span<const std::byte> bytes) {
  constexpr unsigned kBitsOfByte = 8;
  std::u16string text;
  text.reserve(bytes.size() / sizeof(char16_t));
  for (std::size_t i = 0; i + 1 < bytes.size(); i += sizeof(char16_t)) {
    text += static_cast<char16_t>(std::to_integer<unsigned>(bytes[i]) |
                                  std::to_integer<unsigned>(bytes[i + 1]) << kBitsOfByte);
  }
  return text;
}

}  // namespace storage
