// Letter case and order for builds with nothing that knows them. They are cross-built programs that
// check the arithmetic on another machine and use ASCII names only. No program for users is built
// with this.

#include "backends/text/collation.h"
#include "backends/text/names.h"

namespace text {

char32_t FoldCharacter(char32_t character) {
  return character >= U'A' && character <= U'Z' ? character - U'A' + U'a' : character;
}

std::strong_ordering CompareForDisplay(std::u16string_view a, std::u16string_view b) {
  return a <=> b;
}

}  // namespace text
