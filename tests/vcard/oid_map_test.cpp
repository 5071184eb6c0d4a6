#include "platform/vcard/oid_map.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "platform/headless/memory_registry.h"
#include "tests/support/failing_registry.h"
#include "tests/support/registry_access.h"

namespace vcard {
namespace {

using platform::RegistryError;
using platform::RegistryType;
using testing::ElementsAre;

constexpr std::u16string_view kKey = u"Software\\Zedra\\Voxtrel Contacts";
constexpr std::u16string_view kFirstBook = u"Software\\Zedra\\Voxtrel Contacts\\1";

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
    std::vector<Oids> oids;
    const SourceContacts contacts[] = {{source, uids}};
    EXPECT_TRUE(map.Load());
    EXPECT_TRUE(map.Assign(contacts, oids));
    return oids.empty() ? Oids() : oids[0];
  }
  Oids Assign(const std::u16string& source, const std::vector<std::string>& uids) {
    return Assign(m_registry, source, uids);
  }

  headless::MemoryRegistry m_registry;
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
  headless::MemoryRegistry other;
  const std::int32_t wanted = Assign(other, u"book", {"a"})[0];
  auto bytes = support::BytesOf(other, kFirstBook, u"0");
  std::fill(bytes.begin(), bytes.begin() + 16, std::byte{0x77});
  ASSERT_EQ(support::PutText(m_registry, kFirstBook, u"source", u"book"), RegistryError::kNone);
  ASSERT_EQ(support::Put(m_registry, kFirstBook, u"0", RegistryType::kBinary, bytes),
            RegistryError::kNone);
  EXPECT_NE(Assign(u"book", {"a"})[0], wanted);
  EXPECT_NE(Assign(u"another", {"a"})[0], wanted);
}

TEST_F(OidMapTest, NamesThatDifferInCaseAreDifferentBooksAndContacts) {
  const Oids book = Assign(u"/home/Ann", {"a", "A"});
  EXPECT_NE(book[0], book[1]);
  EXPECT_NE(Assign(u"/home/ann", {"a"})[0], book[0]);
}

TEST_F(OidMapTest, TheSameIdentifierTwiceHasOneNumber) {
  const Oids oids = Assign(u"book", {"a", "a"});
  EXPECT_EQ(oids[0], oids[1]);
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

TEST_F(OidMapTest, StoresTwentyBytesAContact) {
  const Oids oids = Assign(u"book", {"a", "b"});
  const auto bytes = support::BytesOf(m_registry, kFirstBook, u"0");
  ASSERT_EQ(bytes.size(), 40U);
  const auto third = static_cast<std::uint32_t>(oids[1]);
  EXPECT_EQ(bytes[36], static_cast<std::byte>(third & 0xFF));
  EXPECT_EQ(bytes[39], static_cast<std::byte>(third >> 24));
}

TEST_F(OidMapTest, ALargeBookIsSpreadOverSeveralValues) {
  const int count = static_cast<int>(OidMap::kEntriesPerValue) + 5;
  const Oids oids = Assign(u"book", Uids(count));
  EXPECT_EQ(support::BytesOf(m_registry, kFirstBook, u"0").size(), OidMap::kEntriesPerValue * 20);
  EXPECT_EQ(support::BytesOf(m_registry, kFirstBook, u"1").size(), 100U);
  EXPECT_EQ(Assign(u"book", Uids(count)), oids);
  static_cast<void>(Assign(u"book", {"one more"}));
  EXPECT_EQ(support::BytesOf(m_registry, kFirstBook, u"1").size(), 120U);
}

TEST_F(OidMapTest, ALogonThatMeetsNobodyNewWritesNothing) {
  const Oids oids = Assign(u"book", Uids(100));
  support::FailingRegistry registry(m_registry);
  OidMap map(registry);
  ASSERT_TRUE(map.Load());
  registry.FailCall(1, support::Failing::kFromThenOn);
  std::vector<Oids> again;
  const SourceContacts contacts[] = {{u"book", Uids(100)}};
  EXPECT_TRUE(map.Assign(contacts, again));
  EXPECT_EQ(registry.CountCalls(), 0U);
  EXPECT_EQ(again[0], oids);
}

TEST_F(OidMapTest, SeesWhatAnotherProcessGaveSinceItWasLoaded) {
  OidMap map(m_registry);
  ASSERT_TRUE(map.Load());
  const Oids given = Assign(u"book", {"a", "deleted since"});
  std::vector<Oids> oids;
  const SourceContacts contacts[] = {{u"book", {"b", "a"}}};
  ASSERT_TRUE(map.Assign(contacts, oids));
  EXPECT_EQ(oids[0][1], given[0]);
  EXPECT_EQ(support::BytesOf(m_registry, kFirstBook, u"0").size(), 60U);
  EXPECT_TRUE(map.Belongs(given[1], u"book"));
}

TEST_F(OidMapTest, ANewBookTakesNoKeyOfAnother) {
  // Keys that were imported come in any order.
  ASSERT_EQ(support::PutText(m_registry, std::u16string(kKey) + u"\\2", u"source", u"two"),
            RegistryError::kNone);
  ASSERT_EQ(support::PutText(m_registry, kFirstBook, u"source", u"one"), RegistryError::kNone);
  static_cast<void>(Assign(u"new", {"a"}));
  EXPECT_EQ(support::BytesOf(m_registry, std::u16string(kKey) + u"\\2", u"source"),
            support::Utf16Bytes(std::u16string_view(u"two\0", 4)));
  EXPECT_TRUE(support::KeyExists(m_registry, std::u16string(kKey) + u"\\3"));
}

TEST_F(OidMapTest, AnyFailureOfTheStoreLeavesAllOrNothing) {
  static_cast<void>(Assign(u"book", {"a"}));
  bool hasFailed = true;
  for (std::size_t call = 1; hasFailed; ++call) {
    headless::MemoryRegistry registry;
    const Oids before = Assign(registry, u"book", {"a"});
    support::FailingRegistry failing(registry);
    failing.FailCall(call, support::Failing::kOnce);
    OidMap map(failing);
    std::vector<Oids> oids;
    const SourceContacts contacts[] = {{u"book", {"a", "b"}}, {u"other", {"c"}}};
    const bool isDone = map.Load() && map.Assign(contacts, oids);
    hasFailed = failing.HasFailed();
    EXPECT_EQ(isDone, !hasFailed) << call;
    const bool bookIsNew = support::KeyExists(registry, std::u16string(kKey) + u"\\2");
    EXPECT_EQ(bookIsNew, isDone) << call;
    EXPECT_EQ(support::BytesOf(registry, kFirstBook, u"0").size(), isDone ? 40U : 20U) << call;
    EXPECT_EQ(Assign(registry, u"book", {"a"}), before);
  }
}

TEST_F(OidMapTest, StoredNonsenseIsAFailureAndNotAReasonToStartAfresh) {
  const auto cannotLoad = [this] { return !OidMap(m_registry).Load(); };
  static_cast<void>(Assign(u"book", {"a", "b"}));
  const auto good = support::BytesOf(m_registry, kFirstBook, u"0");
  const auto put = [this](std::vector<std::byte> bytes, RegistryType type = RegistryType::kBinary) {
    ASSERT_EQ(support::Put(m_registry, kFirstBook, u"0", type, bytes), RegistryError::kNone);
  };

  put({good.begin(), good.end() - 1});
  EXPECT_TRUE(cannotLoad());
  put(good, RegistryType::kString);
  EXPECT_TRUE(cannotLoad());
  auto twice = good;
  twice.insert(twice.end(), good.begin(), good.end());
  put(twice);
  EXPECT_TRUE(cannotLoad());
  auto zero = good;
  std::fill(zero.begin() + 16, zero.begin() + 20, std::byte{0});
  put(zero);
  EXPECT_TRUE(cannotLoad());
  put(good);
  EXPECT_FALSE(cannotLoad());

  ASSERT_EQ(support::PutText(m_registry, std::u16string(kKey) + u"\\2", u"source", u"book"),
            RegistryError::kNone);
  EXPECT_TRUE(cannotLoad());
}

TEST_F(OidMapTest, ANumberOfTwoBooksIsAFailure) {
  static_cast<void>(Assign(u"book", {"a"}));
  static_cast<void>(Assign(u"other", {"b"}));
  const std::u16string second = std::u16string(kKey) + u"\\2";
  auto bytes = support::BytesOf(m_registry, second, u"0");
  const auto first = support::BytesOf(m_registry, kFirstBook, u"0");
  std::copy(first.begin() + 16, first.end(), bytes.begin() + 16);
  ASSERT_EQ(support::Put(m_registry, second, u"0", RegistryType::kBinary, bytes),
            RegistryError::kNone);
  EXPECT_FALSE(OidMap(m_registry).Load());
}

TEST_F(OidMapTest, AKeyThatNamesNoBookIsAFailure) {
  ASSERT_EQ(support::PutText(m_registry, std::u16string(kKey) + u"\\x", u"source", u"book"),
            RegistryError::kNone);
  EXPECT_FALSE(OidMap(m_registry).Load());
}

}  // namespace
}  // namespace vcard
