// One row for each way in which phones and address books write a telephone line: the table of
// docs/contacts.md.

#include "platform/vcard/telephone_kinds.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/vcard/read_cards.h"
#include "tests/vcard/telephone_rows.h"

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
INSTANTIATE_TEST_SUITE_P(Standard, TelephoneKinds, testing::ValuesIn(vcard_test::kStandard));
INSTANTIATE_TEST_SUITE_P(Evolution, TelephoneKinds, testing::ValuesIn(vcard_test::kEvolution));
INSTANTIATE_TEST_SUITE_P(Outlook, TelephoneKinds, testing::ValuesIn(vcard_test::kOutlook));
INSTANTIATE_TEST_SUITE_P(Apple, TelephoneKinds, testing::ValuesIn(vcard_test::kApple));
INSTANTIATE_TEST_SUITE_P(Android, TelephoneKinds, testing::ValuesIn(vcard_test::kAndroid));
INSTANTIATE_TEST_SUITE_P(Nokia, TelephoneKinds, testing::ValuesIn(vcard_test::kNokia));
INSTANTIATE_TEST_SUITE_P(Version4, TelephoneKinds, testing::ValuesIn(vcard_test::kVersion4));
INSTANTIATE_TEST_SUITE_P(Numbers, TelephoneKinds, testing::ValuesIn(vcard_test::kNumbers));

}  // namespace
}  // namespace vcard
