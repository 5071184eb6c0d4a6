#include "platform/vcard/identities.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vcard {
namespace {

ContactData Contact(std::string uid, std::u16string lastName, std::u16string mobile = u"1") {
  ContactData contact;
  contact.uid = std::move(uid);
  contact.lastName = std::move(lastName);
  contact.numbers[2] = std::move(mobile);
  return contact;
}

std::vector<std::string> Of(std::vector<ContactData> contacts) { return IdentitiesOf(contacts); }

TEST(Identities, AContactWithAnIdentifierStaysTheSameWhateverElseChanges) {
  EXPECT_EQ(Of({Contact("a", u"Lee")}), Of({Contact("a", u"Lee-Ray", u"2")}));
}

TEST(Identities, ACardWithoutOneIsToldByItsContent) {
  EXPECT_EQ(Of({Contact("", u"Lee")}), Of({Contact("", u"Lee")}));
  EXPECT_NE(Of({Contact("", u"Lee")}), Of({Contact("", u"Ray")}));
  EXPECT_NE(Of({Contact("", u"Lee", u"1")}), Of({Contact("", u"Lee", u"2")}));
}

TEST(Identities, APlaceInTheFileMeansNothing) {
  const auto before = Of({Contact("", u"Lee"), Contact("", u"Ray"), Contact("x", u"Zoe")});
  const auto after = Of({Contact("x", u"Zoe"), Contact("", u"Ray")});
  EXPECT_EQ(after[0], before[2]);
  EXPECT_EQ(after[1], before[1]);
}

TEST(Identities, ContentNeverLooksLikeAnIdentifier) {
  EXPECT_NE(Of({Contact("\nLee", u"")}), Of({Contact("", u"Lee")}));
}

TEST(Identities, AllOfOneBookDiffer) {
  const auto ids = Of({Contact("a", u"Lee"), Contact("a", u"Ray"), Contact("a", u"Ray"),
                       Contact("", u"Zoe"), Contact("", u"Zoe"), Contact("", u"Zoe")});
  for (std::size_t i = 0; i < ids.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      EXPECT_NE(ids[i], ids[j]) << i << ' ' << j;
    }
  }
}

TEST(Identities, ARepeatedIdentifierLeavesTheFirstContactItsOwn) {
  EXPECT_EQ(Of({Contact("a", u"Lee"), Contact("a", u"Ray")})[0], Of({Contact("a", u"Lee")})[0]);
}

// Else a contact would take over the number, and with it the tags, of one that was deleted.
TEST(Identities, ARepeatedIdentifierIsToldApartByContentAndNotByPlace) {
  const auto before = Of({Contact("a", u"Lee"), Contact("a", u"Ray"), Contact("a", u"Zoe"),
                          Contact("b", u"Lee"), Contact("b", u"Ray")});
  const auto after =
      Of({Contact("a", u"Lee"), Contact("a", u"Zoe"), Contact("b", u"Lee"), Contact("b", u"Ray")});
  EXPECT_EQ(after[1], before[2]);
  EXPECT_EQ(after[3], before[4]);
}

}  // namespace
}  // namespace vcard
