#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace storage {

// Text as it is stored: in fields of fixed length, and as bytes.

/// Returns as much of `text` as has room in `units` units, without half a character at the end.
[[nodiscard]] constexpr std::u16string_view CutText(std::u16string_view text, std::size_t units) {
  constexpr char16_t kFirstLeading = 0xD800;
  constexpr char16_t kLastLeading = 0xDBFF;
  constexpr char16_t kLastTrailing = 0xDFFF;
  if (text.size() <= units) {
    return text;
  }
  const bool splitsPair = units > 0 && text[units - 1] >= kFirstLeading &&
                          text[units - 1] <= kLastLeading && text[units] > kLastLeading &&
                          text[units] <= kLastTrailing;
  return text.substr(0, splitsPair ? units - 1 : units);
}

/// Returns `text` up to its first zero.
[[nodiscard]] constexpr std::u16string_view UpToZero(std::u16string_view text) {
  return text.substr(0, text.find(u'\0'));
}

// In values and in registry files: UTF-16, little-endian, on every machine.

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
