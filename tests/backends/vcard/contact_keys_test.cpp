#include "backends/vcard/contact_keys.h"

#include <gtest/gtest.h>

#include <set>
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

std::vector<CardKeys> Of(std::vector<ContactData> contacts, std::vector<ContactData> torn = {}) {
  return KeysOf(Book{u"book", std::move(contacts), true, std::move(torn)});
}

TEST(ContactKeys, TheFullNameIsReadFromTheFirstNameToTheLast) {
  ContactData contact = Contact("", u"Lee");
  EXPECT_EQ(FullNameOf(contact), u"Lee");
  contact.firstName = u"Ann";
  contact.companyName = u"Acme";
  EXPECT_EQ(FullNameOf(contact), u"Ann Lee");
  contact.middleName = u"May";
  EXPECT_EQ(FullNameOf(contact), u"Ann May Lee");
}

TEST(ContactKeys, ACompanyIsTheNameOfACardWithoutOne) {
  ContactData contact;
  EXPECT_EQ(FullNameOf(contact), u"");
  contact.companyName = u"Acme";
  EXPECT_EQ(FullNameOf(contact), u"Acme");
}

TEST(ContactKeys, ANameInOnePieceIsTheSameName) {
  ContactData pieces = Contact("", u"Lee");
  pieces.firstName = u"Ann";
  ContactData whole;
  whole.firstName = u"Ann Lee";
  EXPECT_EQ(Of({pieces})[0].name, Of({whole})[0].name);
}

TEST(ContactKeys, WhatACardLacksIsNoKey) {
  EXPECT_EQ(Of({Contact("", u"Lee")})[0].uid, kNoDigest);
  EXPECT_EQ(Of({Contact("a", u"")})[0].name, kNoDigest);
  EXPECT_FALSE(Of({Contact("", u"")})[0].isUidUnique);
  EXPECT_FALSE(Of({Contact("", u"")})[0].isNameUnique);
}

TEST(ContactKeys, ANumberIsContentAndAUidIsNot) {
  EXPECT_EQ(Of({Contact("a", u"Lee")})[0].content, Of({Contact("", u"Lee")})[0].content);
  EXPECT_NE(Of({Contact("", u"Lee", u"1")})[0].content, Of({Contact("", u"Lee", u"2")})[0].content);
}

TEST(ContactKeys, WhatOccursTwiceIsNotUnique) {
  const auto keys = Of({Contact("a", u"Lee"), Contact("a", u"Ray"), Contact("b", u"Lee")});
  EXPECT_FALSE(keys[0].isUidUnique);
  EXPECT_TRUE(keys[2].isUidUnique);
  EXPECT_FALSE(keys[0].isNameUnique);
  EXPECT_TRUE(keys[1].isNameUnique);
}

TEST(ContactKeys, ACardThatIsCutOffCountsWithItsName) {
  const auto keys = Of({Contact("a", u"Lee")}, {Contact("b", u"Lee")});
  EXPECT_TRUE(keys[0].isUidUnique);
  EXPECT_FALSE(keys[0].isNameUnique);
}

TEST(ContactKeys, SeedsOfOneBookDiffer) {
  const std::vector<std::string> seeds =
      SeedsOf(std::vector{Contact("a", u"Lee"), Contact("a", u"Ray"), Contact("a", u"Ray"),
                          Contact("", u"Zoe"), Contact("", u"Zoe"), Contact("", u"Zoe")});
  EXPECT_EQ(std::set(seeds.begin(), seeds.end()).size(), seeds.size());
}

}  // namespace
}  // namespace vcard
