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

[[nodiscard]] constexpr std::string_view Trim(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace vcard
