// How much work the recognition is; whom it recognises is the matter of recognition_test.cpp.

#include "backends/vcard/contact_matching.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vcard {
namespace {

ContactData MatchedContact(std::string uid, std::u16string lastName, std::u16string mobile) {
  ContactData contact;
  contact.uid = std::move(uid);
  contact.lastName = std::move(lastName);
  contact.numbers[2] = std::move(mobile);
  return contact;
}

/// How many looks `count` cards like `like` take, if people like `known` are known. Every second
/// person is one that the book does not hold any more.
std::size_t LooksFor(std::size_t count, const ContactData& like, const ContactData& known) {
  Book book{u"book", std::vector(count, known), true};
  std::vector<Person> people;
  for (const CardKeys& keys : KeysOf(book)) {
    const auto oid = static_cast<std::int32_t>(people.size() + 1);
    people.push_back({oid, keys.uid, keys.name, keys.content, people.size() % 2 == 0, kNoDigest});
  }
  book.contacts = std::vector(count, like);
  return MatchCards(KeysOf(book), {}, people).looks;
}

/// Four times the cards take four times the work.
void ExpectLinear(const ContactData& like, const ContactData& known) {
  const std::size_t few = LooksFor(1000, like, known);
  EXPECT_GE(few, 1000U);
  EXPECT_LE(LooksFor(4000, like, known), 4 * few);
}

TEST(ContactMatching, EqualCardsTakeLinearWork) {
  ExpectLinear(MatchedContact("", u"Lee", u"1"), MatchedContact("", u"Lee", u"1"));
  ExpectLinear(MatchedContact("a", u"Lee", u"1"), MatchedContact("a", u"Lee", u"1"));
}

TEST(ContactMatching, CardsOfOneUidTakeLinearWork) {
  ExpectLinear(MatchedContact("a", u"Lee", u"1"), MatchedContact("a", u"Lee", u"2"));
  ExpectLinear(MatchedContact("a", u"Lee", u"1"), MatchedContact("a", u"Ray", u"2"));
}

TEST(ContactMatching, CardsOfOneNameTakeLinearWork) {
  ExpectLinear(MatchedContact("", u"Lee", u"1"), MatchedContact("", u"Lee", u"2"));
  ExpectLinear(MatchedContact("b", u"Lee", u"1"), MatchedContact("a", u"Lee", u"1"));
}

TEST(ContactMatching, OneCardAmongManyOfItsNameTakesOneLookAtEach) {
  const ContactData lee = MatchedContact("", u"Lee", u"1");
  std::vector<Person> people;
  const CardKeys known = KeysOf(Book{u"", {MatchedContact("", u"Lee", u"2")}, true})[0];
  for (std::int32_t oid = 1; oid <= 1000; ++oid) {
    people.push_back({oid, known.uid, known.name, known.content, true, kNoDigest});
  }
  const Matches matches = MatchCards(KeysOf(Book{u"", {lee}, true}), {}, people);
  EXPECT_EQ(matches.people, std::vector{Matches::kNobody});
  EXPECT_LE(matches.looks, 20'000U);
}

}  // namespace
}  // namespace vcard
