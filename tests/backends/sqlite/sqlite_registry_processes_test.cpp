#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <memory>
#include <tuple>

#include "backends/sqlite/sqlite_registry.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace sqlite {

using platform::RegistryError;
using platform::RegistryGroup;
using support::BytesOf;
using support::KeyExists;
using support::PutText;
using support::SubkeyNames;

namespace {

/// Another process, which runs `body` and ends with what it returns.
class Child {
 public:
  explicit Child(const std::function<bool()>& body) : m_id(fork()) {
    if (m_id == 0) {
      _exit(body() ? 0 : 1);
    }
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    if (!m_hasEnded) {
      std::ignore = Wait(0);
    }
  }

  [[nodiscard]] bool HasEnded() { return m_hasEnded || Wait(WNOHANG); }

  /// Waits for the end; whether the body returned true.
  [[nodiscard]] bool Succeeds() {
    if (!m_hasEnded) {
      std::ignore = Wait(0);
    }
    return WIFEXITED(m_status) && WEXITSTATUS(m_status) == 0;
  }

 private:
  bool Wait(int options) {
    m_hasEnded = m_id <= 0 || waitpid(m_id, &m_status, options) == m_id;
    return m_hasEnded;
  }

  pid_t m_id;
  bool m_hasEnded = false;
  int m_status = -1;
};

std::u16string Digits(int number) {
  const std::string digits = std::to_string(number);
  return {digits.begin(), digits.end()};
}

/// Returns whether the tag is kept.
bool PutTag(SqliteRegistry& registry, int number) {
  const std::u16string path = u"tags\\" + Digits(number);
  auto group = platform::RegistryGroup::Begin(registry);
  if (!group) {
    return false;
  }
  return PutText(registry, path, u"contact", u"-17")
      .and_then([&] { return PutText(registry, path, u"phone type", u"Mobile"); })
      .and_then([&] { return group->Commit(); })
      .has_value();
}

}  // namespace

TEST(SqliteRegistryProcesses, AReaderSeesEachTagOfAWriterWholeOrNotAtAll) {
  constexpr int kTags = 60;
  const support::TempFolder folder;
  const auto database = folder.Path() / kDatabaseName;
  Child writer([&] {
    SqliteRegistry registry(database);
    bool ok = true;
    for (int i = 0; i < kTags; ++i) {
      ok = ok && PutTag(registry, i);
    }
    return ok;
  });
  SqliteRegistry registry(database);
  bool isLast = false;
  std::size_t seen = 0;
  while (!isLast) {
    isLast = writer.HasEnded();
    const auto opened = registry.OpenKey(u"tags");
    ASSERT_TRUE(opened || opened.error() == RegistryError::kNotFound);
    if (!opened) {
      continue;
    }
    const auto names = SubkeyNames(**opened);
    EXPECT_GE(names.size(), seen);
    seen = names.size();
    for (const std::u16string& name : names) {
      ASSERT_FALSE(BytesOf(registry, u"tags\\" + name, u"contact").empty());
      ASSERT_FALSE(BytesOf(registry, u"tags\\" + name, u"phone type").empty());
    }
  }
  EXPECT_TRUE(writer.Succeeds()) << "a reader must not fail the writer";
  EXPECT_EQ(seen, static_cast<std::size_t>(kTags));
}

TEST(SqliteRegistryProcesses, TwoWritersBothSucceed) {
  constexpr int kTags = 30;
  const support::TempFolder folder;
  const auto database = folder.Path() / kDatabaseName;
  const auto writeFrom = [&](int first) {
    SqliteRegistry registry(database, {{}, std::chrono::seconds(20), {}});
    bool ok = true;
    for (int i = first; i < first + kTags; ++i) {
      ok = ok && PutTag(registry, i);
    }
    return ok;
  };
  Child one([&] { return writeFrom(0); });
  Child two([&] { return writeFrom(1000); });
  EXPECT_TRUE(one.Succeeds());
  EXPECT_TRUE(two.Succeeds());
  SqliteRegistry registry(database);
  EXPECT_EQ(SubkeyNames(registry, u"tags").size(), static_cast<std::size_t>(2 * kTags));
}

TEST(SqliteRegistryProcesses, AProcessThatDiesWithinAGroupLeavesNothingOfItAndNoLock) {
  const support::TempFolder folder;
  const auto database = folder.Path() / kDatabaseName;
  {
    // Closed before the other process begins: the library forbids carrying a database across.
    SqliteRegistry registry(database);
    ASSERT_EQ(support::ErrorOf(PutText(registry, u"a", u"v", u"old")), std::nullopt);
  }
  {
    Child child([&] {
      SqliteRegistry registry(database);
      const bool begun = registry.BeginGroup().has_value();
      const bool put = PutText(registry, u"b", u"v", u"new").has_value();
      const bool deleted = registry.DeleteKey(u"a").has_value();
      if (begun && put && deleted) {
        std::ignore = raise(SIGKILL);
      }
      return true;
    });
    ASSERT_FALSE(child.Succeeds()) << "it was to be killed";
  }
  SqliteRegistry registry(database, {{}, std::chrono::milliseconds(0), {}});
  EXPECT_TRUE(KeyExists(registry, u"a"));
  EXPECT_FALSE(KeyExists(registry, u"b"));
  EXPECT_EQ(support::ErrorOf(PutText(registry, u"a", u"v", u"new")), std::nullopt);
}

TEST(SqliteRegistryProcesses, ManyThatMakeTheStoreAtTheSameTimeAllFindItMade) {
  constexpr int kProcesses = 4;
  constexpr int kRounds = 5;
  for (int round = 0; round < kRounds; ++round) {
    const support::TempFolder folder;
    const auto database = folder.Path() / kDatabaseName;
    std::vector<std::unique_ptr<Child>> children;
    for (int i = 0; i < kProcesses; ++i) {
      children.push_back(std::make_unique<Child>([&database, i] {
        SqliteRegistry registry(database, {{u"Software\\Ini"}, std::chrono::seconds(20), {}});
        return registry.CreateKey(u"made\\" + Digits(i)) && KeyExists(registry, u"Software\\Ini");
      }));
    }
    for (const auto& child : children) {
      EXPECT_TRUE(child->Succeeds());
    }
    SqliteRegistry registry(database);
    EXPECT_EQ(SubkeyNames(registry, u"made").size(), static_cast<std::size_t>(kProcesses));
    EXPECT_EQ(SubkeyNames(registry, u"Software").size(), 1U);
  }
}

}  // namespace sqlite
