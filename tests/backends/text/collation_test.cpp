#include "backends/text/collation.h"

#include <gtest/gtest.h>
#include <unicode/ucol.h>

#include <algorithm>
#include <compare>
#include <cstdint>
#include <memory>
#include <random>
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

TEST(CompareForDisplay, PutsAccentedLettersNextToTheirOwn) {
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

class AsciiOrder : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(m_collator.get(), nullptr); }

  /// Whether both say the same of two texts.
  [[nodiscard]] bool Agrees(std::u16string_view a, std::u16string_view b) const {
    const int order = ucol_strcoll(m_collator.get(), a.data(), static_cast<std::int32_t>(a.size()),
                                   b.data(), static_cast<std::int32_t>(b.size()));
    return CompareAscii(a, b) == (order <=> 0);
  }

 private:
  static UCollator* Open() {
    UErrorCode status = U_ZERO_ERROR;
    return ucol_open("", &status);
  }

  const std::unique_ptr<UCollator, decltype(&ucol_close)> m_collator{Open(), &ucol_close};
};

TEST_F(AsciiOrder, IsThatOfTheTablesForEveryTwoCharacters) {
  for (char16_t x = u' '; x <= u'~'; ++x) {
    for (char16_t y = u' '; y <= u'~'; ++y) {
      const std::u16string a(1, x);
      const std::u16string b(1, y);
      EXPECT_TRUE(Agrees(a, b)) << int{x} << ' ' << int{y};
      EXPECT_TRUE(Agrees(a + b, b + a)) << int{x} << ' ' << int{y};
      EXPECT_TRUE(Agrees(a, a + b)) << int{x} << ' ' << int{y};
    }
  }
}

TEST_F(AsciiOrder, IsThatOfTheTablesForTextsThatAreNearlyTheSame) {
  std::mt19937 random(1);
  // Few characters, so that the first differences are of every kind and at every place.
  constexpr std::u16string_view kCharacters = u"aAbB1 -+.";
  std::uniform_int_distribution<std::size_t> anyCharacter(0, kCharacters.size() - 1);
  std::uniform_int_distribution<std::size_t> anyLength(0, 6);
  const auto make = [&] {
    std::u16string text;
    for (std::size_t left = anyLength(random); left > 0; --left) {
      text += kCharacters[anyCharacter(random)];
    }
    return text;
  };
  for (int i = 0; i < 100'000; ++i) {
    const std::u16string a = make();
    const std::u16string b = make();
    ASSERT_TRUE(Agrees(a, b)) << i;
  }
}

TEST_F(AsciiOrder, TakesNothingElse) {
  EXPECT_TRUE(IsPrintableAscii(u""));
  EXPECT_TRUE(IsPrintableAscii(u" 5551234 Home2~"));
  for (const std::u16string_view other : {u"\t", u"\u007F", u"\u00E4", u"a\n", u"\u2014"}) {
    EXPECT_FALSE(IsPrintableAscii(other));
  }
}

}  // namespace
}  // namespace text
