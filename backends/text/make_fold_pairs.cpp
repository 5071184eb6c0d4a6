// Writes the pairs of characters of which the second stands for the first where letter case counts
// for nothing, so that the program itself does without the library that knows them.

#include <unicode/uchar.h>

#include <cstdio>

int main() {
  std::puts("// Sorted by the first of each pair.");
  for (UChar32 character = 0; character <= UCHAR_MAX_VALUE; ++character) {
    const UChar32 folded = u_foldCase(character, U_FOLD_CASE_DEFAULT);
    if (folded != character) {
      std::printf("{0x%X, 0x%X},\n", static_cast<unsigned>(character),
                  static_cast<unsigned>(folded));
    }
  }
  return 0;
}
