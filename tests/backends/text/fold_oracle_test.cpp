#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include "backends/text/fold.h"

namespace text {
namespace {

TEST(FoldCharacter, FoldsEveryCharacterAsUnicodeDoes) {
  for (UChar32 character = 0; character <= UCHAR_MAX_VALUE; ++character) {
    ASSERT_EQ(static_cast<UChar32>(FoldCharacter(static_cast<char32_t>(character))),
              u_foldCase(character, U_FOLD_CASE_DEFAULT))
        << character;
  }
}

}  // namespace
}  // namespace text
