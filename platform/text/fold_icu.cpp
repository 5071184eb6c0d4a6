#include <unicode/uchar.h>

#include "platform/text/fold.h"

namespace text {

char32_t FoldCharacter(char32_t character) {
  return static_cast<char32_t>(u_foldCase(static_cast<UChar32>(character), U_FOLD_CASE_DEFAULT));
}

}  // namespace text
