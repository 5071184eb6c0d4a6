#include "storage/phone_types.h"

#include <gtest/gtest.h>

namespace storage {

TEST(PhoneTypes, AreTheTenWordsInTheOrderOfTheirCodes) {
  const std::array<std::u16string_view, 10> words{
      u"Car",       u"Radio",       u"Mobile", u"Assistant", u"Business",
      u"Business2", u"BusinessFax", u"Home",   u"Home2",     u"HomeFax"};
  for (std::size_t i = 0; i < words.size(); ++i) {
    EXPECT_EQ(kPhoneTypes[i].word, words[i]);
    EXPECT_EQ(static_cast<std::size_t>(kPhoneTypes[i].kind), i);
  }
}

TEST(PhoneTypes, HaveTheAbbreviationsOfTheLists) {
  const std::array<std::u16string_view, 10> abbreviations{u"C",  u"R",  u"M", u"A",  u"B",
                                                          u"B2", u"Bx", u"H", u"H2", u"Hx"};
  for (std::size_t i = 0; i < abbreviations.size(); ++i) {
    EXPECT_EQ(kPhoneTypes[i].abbreviation, abbreviations[i]);
  }
}

TEST(PhoneTypes, AreFoundByTheExactWord) {
  ASSERT_TRUE(FindPhoneType(u"BusinessFax"));
  EXPECT_EQ(FindPhoneType(u"BusinessFax")->kind, platform::PhoneKind::kBusinessFax);
  EXPECT_EQ(FindPhoneType(u"Home")->kind, platform::PhoneKind::kHome);
}

TEST(PhoneTypes, AWordThatIsNoneOfThemIsNotFound) {
  for (const auto* const word : {u"", u"mobile", u"Mobile ", u" Mobile", u"Home3", u"M"}) {
    EXPECT_FALSE(FindPhoneType(word));
  }
}

TEST(PhoneTypes, AreGivenByTheirKind) {
  for (const PhoneType& type : kPhoneTypes) {
    EXPECT_EQ(GetPhoneType(type.kind).word, type.word);
  }
}

}  // namespace storage
