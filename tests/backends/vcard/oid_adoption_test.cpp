#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "backends/text/registry_text.h"
#include "backends/vcard/oid_map.h"
#include "tests/machine/memory_registry.h"
#include "tests/support/results.h"

namespace vcard {
namespace {

using testing::IsEmpty;

ContactData Somebody(std::string uid, std::u16string name, std::u16string number = u"1") {
  ContactData contact;
  contact.uid = std::move(uid);
  contact.lastName = std::move(name);
  contact.numbers[0] = std::move(number);
  return contact;
}

bool IsUsed(std::u16string_view /*source*/) { return true; }

/// Two stores, each with numbers of its own.
class OidAdoption : public testing::Test {
 protected:
  /// Reads a book as a log-on does. Returns the number of each contact.
  static std::vector<std::int32_t> LogOn(machine::MemoryRegistry& registry, std::u16string source,
                                         std::vector<ContactData> contacts) {
    OidMap map(registry);
    EXPECT_TRUE(map.Load());
    const Book books[] = {{std::move(source), std::move(contacts), true}};
    return map.Assign(books, OidMap::Keeping::kStored).value().front();
  }
  static OidMap Load(machine::MemoryRegistry& registry) {
    OidMap map(registry);
    EXPECT_TRUE(map.Load());
    return map;
  }
  OidMap::Numbers Recognise() { return Load(m_here).Recognise(Load(m_there), IsUsed); }

  machine::MemoryRegistry m_here;
  machine::MemoryRegistry m_there;
};

TEST_F(OidAdoption, ContactsOfTheSameBookAreRecognised) {
  const auto there = LogOn(m_there, u"eds:a", {Somebody("u1", u"Ann"), Somebody("u2", u"Bob")});
  const auto here = LogOn(m_here, u"eds:a", {Somebody("u2", u"Robert"), Somebody("u1", u"Ann")});
  const auto numbers = Recognise();
  EXPECT_EQ(numbers.at(there[0]), here[1]);
  EXPECT_EQ(numbers.at(there[1]), here[0]);
}

TEST_F(OidAdoption, ContactsOfABookThatIsUnknownHereAreLookedForInTheOthers) {
  const auto there = LogOn(m_there, u"vcard:/old", {Somebody("", u"Ann"), Somebody("u2", u"Bob")});
  const auto here =
      LogOn(m_here, u"vcard:/new", {Somebody("u2", u"Rob"), Somebody("", u"Ann", u"2")});
  const auto numbers = Recognise();
  EXPECT_EQ(numbers.at(there[0]), here[1]) << "By the name alone.";
  EXPECT_EQ(numbers.at(there[1]), here[0]);
}

TEST_F(OidAdoption, ABookThatIsNotUsedHereHasNobody) {
  LogOn(m_there, u"eds:a", {Somebody("u1", u"Ann")});
  LogOn(m_here, u"eds:a", {Somebody("u1", u"Ann")});
  EXPECT_THAT(Load(m_here).Recognise(Load(m_there), [](std::u16string_view) { return false; }),
              IsEmpty());
}

TEST_F(OidAdoption, AContactThatIsGoneHereIsNobody) {
  LogOn(m_there, u"eds:a", {Somebody("u1", u"Ann")});
  LogOn(m_here, u"eds:a", {Somebody("u1", u"Ann"), Somebody("u2", u"Bob")});
  LogOn(m_here, u"eds:a", {Somebody("u2", u"Bob")});
  EXPECT_THAT(Recognise(), IsEmpty()) << "Its tag would be deleted at the next start.";
}

TEST_F(OidAdoption, ANameThatTwoContactsHaveIsNobodys) {
  LogOn(m_there, u"vcard:/old", {Somebody("", u"Ann")});
  LogOn(m_here, u"vcard:/new", {Somebody("", u"Ann", u"2"), Somebody("", u"Ann", u"3")});
  EXPECT_THAT(Recognise(), IsEmpty());
}

TEST_F(OidAdoption, AnAdoptedBookKeepsItsNumbers) {
  const auto there = LogOn(m_there, u"eds:a", {Somebody("u1", u"Ann"), Somebody("u2", u"Bob")});
  OidMap map = Load(m_here);
  const auto numbers = map.Adopt(Load(m_there), OidMap::Keeping::kStored);
  ASSERT_TRUE(numbers);
  EXPECT_EQ(numbers->at(there[0]), there[0]);
  EXPECT_EQ(LogOn(m_here, u"eds:a", {Somebody("u2", u"Bob"), Somebody("u1", u"Ann")}),
            (std::vector{there[1], there[0]}))
      << "The next log-on finds them.";
}

TEST_F(OidAdoption, ANumberThatSomebodyElseHasHereIsNotGivenTwice) {
  const auto there = LogOn(m_there, u"eds:a", {Somebody("u1", u"Ann")});
  // Another person under the same number: a file with the same entry in another book.
  {
    OidMap map = Load(m_here);
    ASSERT_TRUE(map.Adopt(Load(m_there), OidMap::Keeping::kStored));
    const platform::OpenedKey key = m_here.OpenKey(u"Software\\Zedra\\Voxtrel Contacts\\1");
    ASSERT_TRUE(key);
    ASSERT_TRUE(text::SetText(**key, u"source", u"eds:b"));
  }
  OidMap map = Load(m_here);
  const auto numbers = map.Adopt(Load(m_there), OidMap::Keeping::kStored);
  ASSERT_TRUE(numbers);
  EXPECT_NE(numbers->at(there[0]), there[0]);
  EXPECT_TRUE(map.Belongs(numbers->at(there[0]), u"eds:a"));
  EXPECT_TRUE(map.Belongs(there[0], u"eds:b"));
}

TEST_F(OidAdoption, InMemoryNothingIsWritten) {
  LogOn(m_there, u"eds:a", {Somebody("u1", u"Ann")});
  OidMap map = Load(m_here);
  ASSERT_TRUE(map.Adopt(Load(m_there), OidMap::Keeping::kInMemory));
  EXPECT_TRUE(Load(m_here).IsEmpty());
}

}  // namespace
}  // namespace vcard
