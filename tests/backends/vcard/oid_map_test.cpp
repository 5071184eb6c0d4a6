#include "backends/vcard/oid_map.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "backends/text/utf.h"
#include "tests/machine/memory_registry.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/watched_registry.h"

namespace vcard {
namespace {

using platform::RegistryError;
using platform::RegistryType;
using testing::ElementsAre;

constexpr std::u16string_view kKey = u"Software\\Zedra\\Voxtrel Contacts";
constexpr std::u16string_view kFirstBook = u"Software\\Zedra\\Voxtrel Contacts\\1";

Book BookOf(std::u16string name, const std::vector<std::string>& uids) {
  Book book{std::move(name), {}, true};
  for (const std::string& uid : uids) {
    ContactData contact;
    contact.uid = uid;
    book.contacts.Add(contact);
  }
  return book;
}

std::vector<std::string> Uids(int count, const std::string& prefix = "uid") {
  std::vector<std::string> uids;
  for (int i = 0; i < count; ++i) {
    uids.push_back(prefix + std::to_string(i));
  }
  return uids;
}

class OidMapTest : public testing::Test {
 protected:
  using Oids = std::vector<std::int32_t>;

  /// As a new start of the program does it.
  Oids Assign(platform::Registry& registry, const std::u16string& source,
              const std::vector<std::string>& uids) {
    OidMap map(registry);
    const Book books[] = {BookOf(source, uids)};
    EXPECT_TRUE(map.Load());
    const auto oids = map.Assign(books, OidMap::Keeping::kStored);
    EXPECT_TRUE(oids);
    return oids ? oids->front() : Oids();
  }
  Oids Assign(const std::u16string& source, const std::vector<std::string>& uids) {
    return Assign(m_registry, source, uids);
  }

  machine::MemoryRegistry m_registry;
};

TEST_F(OidMapTest, ContactsKeepTheirNumbersOverRestarts) {
  const Oids first = Assign(u"book", Uids(3));
  EXPECT_EQ(Assign(u"book", Uids(3)), first);
}

TEST_F(OidMapTest, NumbersDependOnTheContactAndNotOnItsPlace) {
  const Oids first = Assign(u"book", {"a", "b", "c"});
  EXPECT_THAT(Assign(u"book", {"c", "new", "a"}), ElementsAre(first[2], testing::_, first[0]));
}

TEST_F(OidMapTest, NumbersAreNeverZeroAndOftenNegative) {
  const Oids oids = Assign(u"book", Uids(1000));
  EXPECT_EQ(std::count(oids.begin(), oids.end(), 0), 0);
  const auto negative = std::count_if(oids.begin(), oids.end(), [](auto oid) { return oid < 0; });
  EXPECT_GT(negative, 300);
  EXPECT_LT(negative, 700);
}

TEST_F(OidMapTest, ANumberStaysTakenWhenItsContactIsGone) {
  const Oids before = Assign(u"book", {"a", "b"});
  EXPECT_THAT(Assign(u"book", {"b"}), ElementsAre(before[1]));
  EXPECT_THAT(Assign(u"book", {"a"}), ElementsAre(before[0]));
}

TEST_F(OidMapTest, BooksShareNoNumber) {
  const Oids first = Assign(u"book", Uids(500));
  const Oids second = Assign(u"other", Uids(500));
  std::set<std::int32_t> all(first.begin(), first.end());
  all.insert(second.begin(), second.end());
  EXPECT_EQ(all.size(), 1000U);
}

TEST_F(OidMapTest, ANumberThatIsTakenIsNotGivenAgain) {
  // Gives the number that "a" would be given to somebody else first.
  machine::MemoryRegistry other;
  const std::int32_t wanted = Assign(other, u"book", {"a"})[0];
  auto bytes = support::BytesOf(other, kFirstBook, u"people0");
  std::fill(bytes.begin() + 8, bytes.end(), std::byte{0x77});
  ASSERT_EQ(support::ErrorOf(support::PutText(m_registry, kFirstBook, u"source", u"book")),
            std::nullopt);
  ASSERT_EQ(support::ErrorOf(
                support::Put(m_registry, kFirstBook, u"people0", RegistryType::kBinary, bytes)),
            std::nullopt);
  EXPECT_NE(Assign(u"book", {"a"})[0], wanted);
  EXPECT_NE(Assign(u"another", {"a"})[0], wanted);
}

TEST_F(OidMapTest, NamesThatDifferInCaseAreDifferentBooksAndContacts) {
  const Oids book = Assign(u"/home/Ann", {"a", "A"});
  EXPECT_NE(book[0], book[1]);
  EXPECT_NE(Assign(u"/home/ann", {"a"})[0], book[0]);
}

TEST_F(OidMapTest, TellsWhoseANumberIs) {
  const std::int32_t a = Assign(u"book", {"a"})[0];
  const std::int32_t b = Assign(u"other", {"b"})[0];
  OidMap map(m_registry);
  ASSERT_TRUE(map.Load());
  EXPECT_TRUE(map.Belongs(a, u"book"));
  EXPECT_FALSE(map.Belongs(a, u"other"));
  EXPECT_TRUE(map.Belongs(b, u"other"));
  EXPECT_FALSE(map.Belongs(a + 1, u"book"));
  EXPECT_FALSE(map.Belongs(a, u"unknown"));
}

TEST_F(OidMapTest, StoresFiftySixBytesAContact) {
  const Oids oids = Assign(u"book", {"a", "b"});
  const auto bytes = support::BytesOf(m_registry, kFirstBook, u"people0");
  ASSERT_EQ(bytes.size(), 112U);
  const auto second = static_cast<std::uint32_t>(oids[1]);
  EXPECT_EQ(bytes[56], static_cast<std::byte>(second & 0xFF));
  EXPECT_EQ(bytes[59], static_cast<std::byte>(second >> 24));
  EXPECT_EQ(bytes[60], std::byte{1});
}

TEST_F(OidMapTest, ALargeBookIsSpreadOverSeveralValues) {
  const int count = static_cast<int>(StoredBook::kPeoplePerValue) + 5;
  const Oids oids = Assign(u"book", Uids(count));
  EXPECT_EQ(support::BytesOf(m_registry, kFirstBook, u"people0").size(),
            StoredBook::kPeoplePerValue * 56);
  EXPECT_EQ(support::BytesOf(m_registry, kFirstBook, u"people1").size(), 280U);
  EXPECT_EQ(Assign(u"book", Uids(count)), oids);
  static_cast<void>(Assign(u"book", {"one more"}));
  EXPECT_EQ(support::BytesOf(m_registry, kFirstBook, u"people1").size(), 336U);
}

TEST_F(OidMapTest, ALogonThatMeetsNobodyNewWritesNothing) {
  const Oids oids = Assign(u"book", Uids(100));
  support::WatchedRegistry registry(m_registry);
  OidMap map(registry);
  ASSERT_TRUE(map.Load());
  registry.FailCall(1, support::Failing::kFromThenOn);
  const Book books[] = {BookOf(u"book", Uids(100))};
  const auto again = map.Assign(books, OidMap::Keeping::kStored);
  EXPECT_EQ(registry.CountCalls(), 0U);
  ASSERT_TRUE(again);
  EXPECT_EQ(again->front(), oids);
}

TEST_F(OidMapTest, SeesWhatAnotherProcessGaveSinceItWasLoaded) {
  OidMap map(m_registry);
  ASSERT_TRUE(map.Load());
  const Oids given = Assign(u"book", {"a", "deleted since"});
  const Book books[] = {BookOf(u"book", {"b", "a"})};
  const auto oids = map.Assign(books, OidMap::Keeping::kStored);
  ASSERT_TRUE(oids);
  EXPECT_EQ(oids->front()[1], given[0]);
  EXPECT_EQ(support::BytesOf(m_registry, kFirstBook, u"people0").size(), 168U);
  EXPECT_TRUE(map.Belongs(given[1], u"book"));
}

TEST_F(OidMapTest, ANewBookTakesNoKeyOfAnother) {
  // Keys that were imported come in any order.
  ASSERT_EQ(support::ErrorOf(
                support::PutText(m_registry, std::u16string(kKey) + u"\\2", u"source", u"two")),
            std::nullopt);
  ASSERT_EQ(support::ErrorOf(support::PutText(m_registry, kFirstBook, u"source", u"one")),
            std::nullopt);
  static_cast<void>(Assign(u"new", {"a"}));
  EXPECT_EQ(support::BytesOf(m_registry, std::u16string(kKey) + u"\\2", u"source"),
            support::Utf16Bytes(std::u16string_view(u"two\0", 4)));
  EXPECT_TRUE(support::KeyExists(m_registry, std::u16string(kKey) + u"\\3"));
}

TEST_F(OidMapTest, AnyFailureOfTheStoreLeavesAllOrNothing) {
  static_cast<void>(Assign(u"book", {"a"}));
  bool hasFailed = true;
  for (std::size_t call = 1; hasFailed; ++call) {
    machine::MemoryRegistry registry;
    const Oids before = Assign(registry, u"book", {"a"});
    support::WatchedRegistry failing(registry);
    failing.FailCall(call, support::Failing::kOnce);
    OidMap map(failing);
    const Book books[] = {BookOf(u"book", {"a", "b"}), BookOf(u"other", {"c"})};
    const bool isDone = map.Load() && map.Assign(books, OidMap::Keeping::kStored);
    hasFailed = failing.HasFailed();
    EXPECT_EQ(isDone, !hasFailed) << call;
    const bool bookIsNew = support::KeyExists(registry, std::u16string(kKey) + u"\\2");
    EXPECT_EQ(bookIsNew, isDone) << call;
    EXPECT_EQ(support::BytesOf(registry, kFirstBook, u"people0").size(), isDone ? 112U : 56U)
        << call;
    EXPECT_EQ(Assign(registry, u"book", {"a"}), before);
  }
}

// What another program left in the map is passed over and named, and stays as it is.

class OddOidMap : public OidMapTest {
 protected:
  void SetUp() override {
    m_oids = Assign(u"book", {"a", "b"});
    m_good = support::BytesOf(m_registry, kFirstBook, u"people0");
  }

  void Put(const std::vector<std::byte>& bytes, RegistryType type = RegistryType::kBinary,
           const std::u16string& name = u"people0") {
    ASSERT_EQ(support::ErrorOf(support::Put(m_registry, kFirstBook, name, type, bytes)),
              std::nullopt);
  }

  /// What is passed over, as "key: sentence".
  [[nodiscard]] std::string Odd() {
    OidMap map(m_registry);
    EXPECT_TRUE(map.Load());
    std::string odd;
    for (const Remark& remark : map.GetRemarks()) {
      odd += text::ToUtf8(remark.place) + ": " + remark.text + "\n";
    }
    return odd;
  }

  Oids m_oids;
  std::vector<std::byte> m_good;
};

TEST_F(OddOidMap, StrayBytesAreNamedAndEveryEntryStillCounts) {
  auto bytes = m_good;
  bytes.resize(bytes.size() + 19, std::byte{0x55});
  Put(bytes);
  EXPECT_EQ(Odd(),
            "Software\\Zedra\\Voxtrel Contacts\\1: the value \"people0\" ends with 19 bytes "
            "that are no entry; that is passed over\n");
  EXPECT_EQ(Assign(u"book", {"a", "b"}), m_oids);
}

TEST_F(OddOidMap, StrayBytesInAFormerValueAreNamedToo) {
  Put(std::vector<std::byte>(19, std::byte{0x55}), RegistryType::kBinary, u"0");
  EXPECT_EQ(Odd(),
            "Software\\Zedra\\Voxtrel Contacts\\1: the value \"0\" ends with 19 bytes that "
            "are no entry; that is passed over\n");
  EXPECT_EQ(Assign(u"book", {"a", "b"}), m_oids);
}

TEST_F(OddOidMap, AnOddValueIsNeverWrittenAgain) {
  auto bytes = m_good;
  bytes.resize(bytes.size() + 19, std::byte{0x55});
  Put(bytes);
  const Oids more = Assign(u"book", {"b", "c"});
  EXPECT_EQ(more[0], m_oids[1]);
  EXPECT_EQ(support::BytesOf(m_registry, kFirstBook, u"people0"), bytes);
  // The new contact, and the one that has gone since.
  EXPECT_EQ(support::BytesOf(m_registry, kFirstBook, u"people1").size(), 112U);
  EXPECT_EQ(Assign(u"book", {"b", "c", "a"}), (Oids{m_oids[1], more[1], m_oids[0]}));
}

TEST_F(OddOidMap, AValueOfAnotherTypeIsNamedAndTheNextIsUsed) {
  Put(m_good, RegistryType::kString);
  Put(m_good, RegistryType::kBinary, u"people1");
  EXPECT_EQ(Odd(),
            "Software\\Zedra\\Voxtrel Contacts\\1: the value \"people0\" is of another type; "
            "that is passed over\n");
  EXPECT_EQ(Assign(u"book", {"a", "b"}), m_oids);
}

TEST_F(OddOidMap, AnEntryWithoutANumberIsPassedOver) {
  auto zero = m_good;
  std::fill(zero.begin(), zero.begin() + 4, std::byte{0});
  Put(zero);
  EXPECT_THAT(Odd(), testing::HasSubstr("\"people0\" holds 1 entries that make no sense"));
  EXPECT_EQ(Assign(u"book", {"b"}), Oids{m_oids[1]});
}

TEST_F(OddOidMap, ANumberOfTwoBooksStaysTheFirsts) {
  static_cast<void>(Assign(u"other", {"c"}));
  const std::u16string second = std::u16string(kKey) + u"\\2";
  auto bytes = support::BytesOf(m_registry, second, u"people0");
  std::copy_n(m_good.begin(), 4, bytes.begin());
  ASSERT_EQ(
      support::ErrorOf(support::Put(m_registry, second, u"people0", RegistryType::kBinary, bytes)),
      std::nullopt);
  EXPECT_THAT(Odd(), testing::HasSubstr("2: the value \"people0\" holds 1 entries"));
  EXPECT_EQ(Assign(u"book", {"a", "b"}), m_oids);
  EXPECT_NE(Assign(u"other", {"c"})[0], m_oids[0]);
}

TEST_F(OddOidMap, AKeyThatNamesNoBookIsPassedOver) {
  ASSERT_EQ(support::ErrorOf(
                support::PutText(m_registry, std::u16string(kKey) + u"\\x", u"source", u"book")),
            std::nullopt);
  ASSERT_EQ(support::ErrorOf(support::Put(m_registry, std::u16string(kKey) + u"\\7", u"source",
                                          RegistryType::kDword, {})),
            std::nullopt);
  EXPECT_EQ(Odd(),
            "Software\\Zedra\\Voxtrel Contacts\\x: the key is no address book's and is passed "
            "over\n"
            "Software\\Zedra\\Voxtrel Contacts\\7: the value \"source\" names no address "
            "book, and the key is passed over\n");
  static_cast<void>(Assign(u"new", {"z"}));
  EXPECT_TRUE(support::KeyExists(m_registry, std::u16string(kKey) + u"\\8"));
}

TEST_F(OddOidMap, ASecondKeyOfABookIsPassedOver) {
  ASSERT_EQ(support::ErrorOf(
                support::PutText(m_registry, std::u16string(kKey) + u"\\2", u"source", u"book")),
            std::nullopt);
  EXPECT_EQ(Odd(),
            "Software\\Zedra\\Voxtrel Contacts\\2: another key is of the same address book, "
            "and this one is passed over\n");
  EXPECT_EQ(Assign(u"book", {"a", "b"}), m_oids);
}

// A store without room keeps what is there, and the log-on goes on.

TEST_F(OddOidMap, NewNumbersThatCannotBeKeptAreThoseThatAreKeptLater) {
  for (const RegistryError refusal : {RegistryError::kFull, RegistryError::kReadOnly}) {
    support::WatchedRegistry refusing(m_registry, refusal);
    const Oids shown = Assign(refusing, u"book", {"a", "c"});
    EXPECT_GT(refusing.CountRefusals(), 0U);
    EXPECT_EQ(shown[0], m_oids[0]);
    EXPECT_EQ(Assign(refusing, u"book", {"a", "c"}), shown);
    EXPECT_EQ(support::BytesOf(m_registry, kFirstBook, u"people0"), m_good);
  }
  support::WatchedRegistry full(m_registry, RegistryError::kFull);
  OidMap map(full);
  const Book books[] = {BookOf(u"book", {"a", "c"})};
  ASSERT_TRUE(map.Load());
  const auto oids = map.Assign(books, OidMap::Keeping::kStored);
  ASSERT_TRUE(oids);
  ASSERT_EQ(map.GetRemarks().size(), 1U);
  EXPECT_EQ(map.GetRemarks()[0].text, "new contacts cannot be remembered: the disk is full");
  EXPECT_EQ(Assign(u"book", {"a", "c"}), oids->front());
}

}  // namespace
}  // namespace vcard
