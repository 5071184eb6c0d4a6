#pragma once

namespace tags {

/// Whether a phone-type word can begin with this unit. The words that the system knows are ASCII;
/// letters of other scripts count as well, so what is not taken is what no word begins with: the
/// digits, blanks and signs of a bare number.
[[nodiscard]] constexpr bool IsWordLetter(char16_t unit) {
  return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z') || unit >= 0xC0;
}

}  // namespace tags
