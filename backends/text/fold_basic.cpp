// Folding for builds without ICU: cross-built programs that check the arithmetic on another machine
// and use ASCII names only. No program for users is built with it.

#include "backends/text/fold.h"

namespace text {

char32_t FoldCharacter(char32_t character) {
  return character >= U'A' && character <= U'Z' ? character - U'A' + U'a' : character;
}

}  // namespace text
