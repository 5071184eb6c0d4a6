#include "tags/phone_kind.h"

#include <gtest/gtest.h>

#include <string>

#include "storage/phone_types.h"

namespace tags {
namespace {

struct KindRow {
  int code;
  std::u16string_view word;
  std::u16string_view suffix;
  std::u16string_view mark;
};

constexpr KindRow kKindRows[] = {
    {0, u"Car", u" Car", u" C"},
    {1, u"Radio", u" Radio", u" R"},
    {2, u"Mobile", u" Mobile", u" M"},
    {3, u"Assistant", u" Assistant", u" A"},
    {4, u"Business", u" Business", u" B"},
    {5, u"Business2", u" Business2", u" B2"},
    {6, u"BusinessFax", u" BusinessFax", u" Bx"},
    {7, u"Home", u" Home", u" H"},
    {8, u"Home2", u" Home2", u" H2"},
    {9, u"HomeFax", u" HomeFax", u" Hx"},
};

TEST(PhoneKind, EveryCodeHasItsWordSuffixAndMark) {
  for (const KindRow& row : kKindRows) {
    const auto kind = static_cast<PhoneKind>(row.code);
    EXPECT_EQ(storage::GetPhoneType(kind).word, row.word);
    EXPECT_EQ(ToComboItem(u"555", kind), u"555" + std::u16string(row.suffix));
    EXPECT_EQ(ToListNumber(u"555", kind), u"555" + std::u16string(row.mark));
    EXPECT_EQ(PhoneTypeWord(ToComboItem(u"5 55", kind)), row.word);
  }
}

TEST(PhoneKind, NumbersAreGatheredMobileFirst) {
  std::u16string words;
  for (const PhoneKind kind : kReadingOrder) {
    words += ToComboItem(u"", kind);
  }
  EXPECT_EQ(words,
            u" Mobile Radio Car Assistant Business Business2 BusinessFax Home Home2 HomeFax");
}

TEST(PhoneTypeWord, IsWhatFollowsTheLastWhiteSpace) {
  EXPECT_EQ(PhoneTypeWord(u"555 Home2"), u"Home2");
  EXPECT_EQ(PhoneTypeWord(u"+1 (555) 12 34 Mobile"), u"Mobile");
  EXPECT_EQ(PhoneTypeWord(u"555\tCar"), u"Car");
  EXPECT_EQ(PhoneTypeWord(u"555\u3000Car"), u"Car");
}

TEST(PhoneTypeWord, IsTheWholeItemWithoutWhiteSpace) {
  EXPECT_EQ(PhoneTypeWord(u"555-Home"), u"555-Home");
  EXPECT_EQ(PhoneTypeWord(u""), u"");
}

TEST(PhoneTypeWord, IsEmptyAfterABlankAtTheEnd) { EXPECT_EQ(PhoneTypeWord(u"555 Home "), u""); }

}  // namespace
}  // namespace tags
