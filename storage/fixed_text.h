#pragma once

#include <cstddef>
#include <string_view>

namespace storage {

/// As much of `text` as has room in `units` units, without half a character at the end.
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

/// `text` up to its first zero.
[[nodiscard]] constexpr std::u16string_view UpToZero(std::u16string_view text) {
  return text.substr(0, text.find(u'\0'));
}

}  // namespace storage
