#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace vcard {

// The keywords of vCards are ASCII and compared without regard to case, in every language.

[[nodiscard]] constexpr char ToUpper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

[[nodiscard]] inline std::string ToUpper(std::string_view text) {
  std::string upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(), [](char c) { return ToUpper(c); });
  return upper;
}

[[nodiscard]] constexpr bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return ToUpper(x) == ToUpper(y); });
}

[[nodiscard]] inline bool ContainsIgnoringCase(std::string_view text, std::string_view part) {
  return std::search(text.begin(), text.end(), part.begin(), part.end(),
                     [](char x, char y) { return ToUpper(x) == ToUpper(y); }) != text.end();
}

[[nodiscard]] constexpr bool IsAlphanumeric(char c) {
  return (c >= '0' && c <= '9') || (ToUpper(c) >= 'A' && ToUpper(c) <= 'Z');
}

[[nodiscard]] constexpr bool IsControl(char c) { return (c >= '\0' && c < ' ') || c == '\x7F'; }

[[nodiscard]] constexpr bool IsBlank(char c) { return c == ' ' || c == '\t'; }

[[nodiscard]] constexpr std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && IsBlank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

}  // namespace vcard
