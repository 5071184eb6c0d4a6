#include "backends/text/characters.h"

namespace text {

char32_t NextCharacter(std::u16string_view text, std::size_t& at) {
  const char32_t first = text[at++];
  if (first < 0xD800 || first > 0xDBFF || at == text.size()) {
    return first;
  }
  const char32_t second = text[at];
  if (second < 0xDC00 || second > 0xDFFF) {
    return first;
  }
  ++at;
  return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

void AppendCharacter(std::u16string& text, char32_t character) {
  if (character < 0x10000) {
    text.push_back(static_cast<char16_t>(character));
    return;
  }
  const char32_t offset = character - 0x10000;
  text.push_back(static_cast<char16_t>(0xD800 + (offset >> 10)));
  text.push_back(static_cast<char16_t>(0xDC00 + (offset & 0x3FF)));
}

}  // namespace text
