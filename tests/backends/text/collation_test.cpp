#include "backends/text/collation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <compare>
#include <string>
#include <string_view>
#include <vector>

namespace text {
namespace {

std::vector<std::u16string> Sorted(std::vector<std::u16string> texts) {
  std::sort(texts.begin(), texts.end(),
            [](const auto& a, const auto& b) { return CompareForDisplay(a, b) < 0; });
  return texts;
}

TEST(CompareForDisplay, PutsLettersInTheirOrderWhateverTheirCase) {
  const std::vector<std::u16string> sorted = {u"adam", u"Bob", u"cid", u"Dan"};
  EXPECT_EQ(Sorted({u"Dan", u"cid", u"adam", u"Bob"}), sorted);
}

TEST(CompareForDisplay, PutsBlanksAndSignsBeforeDigitsAndDigitsBeforeLetters) {
  // Every character of ASCII that is printed, in its order.
  constexpr std::u16string_view kInOrder =
      u" _-,;:!?.'\"()[]{}@*/"
      u"\\&#%`^+<=>|~$0123456789aAbBcCdDeEfFgGhHiIjJkKlLmMnNoOpPqQrRsStTuUvVwWx"
      u"XyYzZ";
  for (std::size_t i = 1; i < kInOrder.size(); ++i) {
    EXPECT_TRUE(std::is_lt(CompareForDisplay(kInOrder.substr(i - 1, 1), kInOrder.substr(i, 1))))
        << i;
  }
}

TEST(CompareForDisplay, ComparesTheCaseOfLettersOnlyIfAllElseIsEqual) {
  const std::vector<std::u16string> sorted = {u"ab1", u"aB1", u"Ab1", u"AB1", u"ab2"};
  EXPECT_EQ(Sorted({u"AB1", u"ab2", u"ab1", u"Ab1", u"aB1"}), sorted);
}

TEST(CompareForDisplay, PutsAccentedLettersBesideTheirOwn) {
  const std::vector<std::u16string> sorted = {u"Oslo", u"Österreich", u"Otto", u"Zoe"};
  EXPECT_EQ(Sorted({u"Zoe", u"Österreich", u"Otto", u"Oslo"}), sorted);
}

TEST(CompareForDisplay, PutsNumbersOfTelephonesByTheirDigits) {
  const std::vector<std::u16string> sorted = {u"+1 555 Home", u"111 Work", u"555 Home2",
                                              u"555 Mobile", u"5551234 Car"};
  EXPECT_EQ(Sorted({u"5551234 Car", u"555 Mobile", u"+1 555 Home", u"555 Home2", u"111 Work"}),
            sorted);
}

TEST(CompareForDisplay, HoldsNoTwoDifferentTextsEqual) {
  // Equal for every language: composed and decomposed, and a character that nothing shows.
  for (const auto& [a, b] : {std::pair(u"\u00E4", u"a\u0308"), std::pair(u"a", u"a\u200B")}) {
    const std::u16string x = a;
    const std::u16string y = b;
    EXPECT_EQ(CompareForDisplay(x, y) == 0, x == y);
    EXPECT_EQ(CompareForDisplay(x, y) < 0, CompareForDisplay(y, x) > 0);
  }
  EXPECT_EQ(CompareForDisplay(u"a", u"a"), std::strong_ordering::equal);
}

TEST(CompareForDisplay, TakesEmptyAndBrokenTexts) {
  EXPECT_EQ(CompareForDisplay(u"", u"a"), std::strong_ordering::less);
  EXPECT_EQ(CompareForDisplay(u"", u""), std::strong_ordering::equal);
  const std::u16string half(1, char16_t{0xD800});
  EXPECT_EQ(CompareForDisplay(half, half), std::strong_ordering::equal);
  EXPECT_NE(CompareForDisplay(half, u"a"), std::strong_ordering::equal);
}

}  // namespace
}  // namespace text
