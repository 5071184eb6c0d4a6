// One row for each way in which phones and address books write a telephone line: the table of
// docs/contacts.md.

#include "backends/vcard/telephone_kinds.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/backends/vcard/read_cards.h"
#include "tests/backends/vcard/telephone_rows.h"

namespace vcard {
namespace {

std::string NumbersIn(std::string_view lines, std::string_view version = "3.0") {
  const Cards cards = ReadCards(WriteCard("N:Lee;Ann;;;\n" + std::string(lines), version));
  EXPECT_FALSE(cards.isDamaged);
  return cards.contacts.size() == 1 ? NumbersOf(cards.contacts[0]) : "no card";
}

class TelephoneKinds : public testing::TestWithParam<vcard_test::Row> {};

TEST_P(TelephoneKinds, TakesTheLineAsItsExporterMeansIt) {
  EXPECT_EQ(NumbersIn(GetParam().lines, GetParam().version), GetParam().numbers);
}

TEST_P(TelephoneKinds, IsReadASecondTimeIfTheFormerRulesMakeSomethingElseOfIt) {
  const std::string card = WriteCard("N:Lee;Ann;;;\n" + std::string(GetParam().lines));
  VcardSplitter splitter([](const Card& read) {
    const ContactData contact = ToContactData(read);
    EXPECT_EQ(contact.formerContent, FormerContentOf(read, contact));
  });
  splitter.Feed(card);
  splitter.Finish();
}
INSTANTIATE_TEST_SUITE_P(Standard, TelephoneKinds, testing::ValuesIn(vcard_test::kStandard));
INSTANTIATE_TEST_SUITE_P(Evolution, TelephoneKinds, testing::ValuesIn(vcard_test::kEvolution));
INSTANTIATE_TEST_SUITE_P(Outlook, TelephoneKinds, testing::ValuesIn(vcard_test::kOutlook));
INSTANTIATE_TEST_SUITE_P(Apple, TelephoneKinds, testing::ValuesIn(vcard_test::kApple));
INSTANTIATE_TEST_SUITE_P(Android, TelephoneKinds, testing::ValuesIn(vcard_test::kAndroid));
INSTANTIATE_TEST_SUITE_P(Nokia, TelephoneKinds, testing::ValuesIn(vcard_test::kNokia));
INSTANTIATE_TEST_SUITE_P(Version4, TelephoneKinds, testing::ValuesIn(vcard_test::kVersion4));
INSTANTIATE_TEST_SUITE_P(Numbers, TelephoneKinds, testing::ValuesIn(vcard_test::kNumbers));

TEST(TelephoneKinds, WhatFindsNoFreeKindIsNamed) {
  std::vector<TelephoneLine> lines;
  for (const char* word : {"CELL", "CELL", "CELL", "WORK", "WORK", "WORK", "CAR", "CAR", "HOME",
                           "HOME", "PAGER", "CELL"}) {
    lines.push_back({std::u16string(1, static_cast<char16_t>(u'a' + lines.size())), WordsOf(word)});
  }
  const AssignedNumbers assigned = AssignNumbers(lines);
  EXPECT_THAT(assigned.unplaced, testing::ElementsAre(1, 2, 5, 7, 11));
}

TEST(TelephoneKinds, TheFormerRulesHaveOnePlaceForMobileNumbersAndOnePreference) {
  std::vector<TelephoneLine> lines = {{u"1", kCellWord},
                                      {u"2", kCellWord | kPreferredWord, false, 2},
                                      {u"3", kCellWord | kPreferredWord, false, 1}};
  ContactData contact;
  contact.numbers = AssignNumbers(lines, Rules::kFormer).numbers;
  EXPECT_EQ(NumbersOf(contact), "Mobile=2");
}

}  // namespace
}  // namespace vcard
