#include "backends/text/ascii_order.h"

#include <gtest/gtest.h>
#include <unicode/ucol.h>

#include <cstdint>
#include <memory>
#include <random>
#include <string>

namespace text {
namespace {

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
