#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <cstdint>
#include <vector>

#include "backends/text/names.h"

namespace {

TEST(CaseFolding, IsThatOfTheLibraryForEveryCharacter) {
  constexpr char32_t kEnd = 0x110000;
  std::vector<std::uint32_t> others;
  for (char32_t character = 0; character < kEnd; ++character) {
    if (static_cast<UChar32>(text::FoldCharacter(character)) !=
        u_foldCase(static_cast<UChar32>(character), U_FOLD_CASE_DEFAULT)) {
      others.push_back(character);
    }
  }
  EXPECT_THAT(others, testing::IsEmpty());
}

}  // namespace
