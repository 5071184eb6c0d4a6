#include "backends/vcard/contact_keys.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vcard {
namespace {

std::string Hex(const Digest& digest) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string hex;
  for (const std::byte byte : digest) {
    hex += kDigits[static_cast<std::size_t>(byte) >> 4];
    hex += kDigits[static_cast<std::size_t>(byte) & 15];
  }
  return hex;
}

/// What stores hold depends on these bits: the published examples of SHA-256 (FIPS 180-2), their
/// first half.
TEST(Digest, IsTheFirstHalfOfSha256) {
  EXPECT_EQ(Hex(ComputeDigest("")), "e3b0c44298fc1c149afbf4c8996fb924");
  EXPECT_EQ(Hex(ComputeDigest("abc")), "ba7816bf8f01cfea414140de5dae2223");
  EXPECT_EQ(Hex(ComputeDigest("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq")),
            "248d6a61d20638b8e5c026930c3e6039");
  EXPECT_EQ(Hex(ComputeDigest(std::string(1'000'000, 'a'))), "cdc76e5c9914fb9281a1c7e284d73e67");
}

ContactData KeyedContact(std::string uid, std::u16string lastName, std::u16string mobile = u"1") {
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
  ContactData contact = KeyedContact("", u"Lee");
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
  ContactData pieces = KeyedContact("", u"Lee");
  pieces.firstName = u"Ann";
  ContactData whole;
  whole.firstName = u"Ann Lee";
  EXPECT_EQ(Of({pieces})[0].name, Of({whole})[0].name);
}

TEST(ContactKeys, WhatACardLacksIsNoKey) {
  EXPECT_EQ(Of({KeyedContact("", u"Lee")})[0].uid, kNoDigest);
  EXPECT_EQ(Of({KeyedContact("a", u"")})[0].name, kNoDigest);
  EXPECT_FALSE(Of({KeyedContact("", u"")})[0].isUidUnique);
  EXPECT_FALSE(Of({KeyedContact("", u"")})[0].isNameUnique);
}

TEST(ContactKeys, ANumberIsContentAndAUidIsNot) {
  EXPECT_EQ(Of({KeyedContact("a", u"Lee")})[0].content, Of({KeyedContact("", u"Lee")})[0].content);
  EXPECT_NE(Of({KeyedContact("", u"Lee", u"1")})[0].content,
            Of({KeyedContact("", u"Lee", u"2")})[0].content);
}

TEST(ContactKeys, WhatOccursTwiceIsNotUnique) {
  const auto keys =
      Of({KeyedContact("a", u"Lee"), KeyedContact("a", u"Ray"), KeyedContact("b", u"Lee")});
  EXPECT_FALSE(keys[0].isUidUnique);
  EXPECT_TRUE(keys[2].isUidUnique);
  EXPECT_FALSE(keys[0].isNameUnique);
  EXPECT_TRUE(keys[1].isNameUnique);
}

TEST(ContactKeys, ACardThatIsCutOffCountsWithItsName) {
  const auto keys = Of({KeyedContact("a", u"Lee")}, {KeyedContact("b", u"Lee")});
  EXPECT_TRUE(keys[0].isUidUnique);
  EXPECT_FALSE(keys[0].isNameUnique);
}

TEST(ContactKeys, SeedsOfOneBookDiffer) {
  const std::vector<std::string> seeds = SeedsOf(
      std::vector{KeyedContact("a", u"Lee"), KeyedContact("a", u"Ray"), KeyedContact("a", u"Ray"),
                  KeyedContact("", u"Zoe"), KeyedContact("", u"Zoe"), KeyedContact("", u"Zoe")});
  EXPECT_EQ(std::set(seeds.begin(), seeds.end()).size(), seeds.size());
}

}  // namespace
}  // namespace vcard
