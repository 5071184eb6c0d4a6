#include <gtest/gtest.h>
#include <sqlite3.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "backends/sqlite/sqlite_registry.h"
#include "tests/backends/sqlite/raw_database.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace sqlite {
namespace {

using platform::RegistryError;
using support::FileContent;
using support::WriteFileContent;

/// Counts how often the library looks at all pages, in every connection that is opened meanwhile.
class LookCount {
 public:
  LookCount() { EXPECT_EQ(sqlite3_auto_extension(AsExtension()), SQLITE_OK); }
  LookCount(const LookCount&) = delete;
  LookCount& operator=(const LookCount&) = delete;
  ~LookCount() { sqlite3_cancel_auto_extension(AsExtension()); }

  [[nodiscard]] static int Take() { return std::exchange(m_count, 0); }

 private:
  using Extension = void (*)();

  static Extension AsExtension() { return reinterpret_cast<Extension>(Watch); }
  static int Watch(sqlite3* database, char** /*message*/, const void* /*library*/) {
    return sqlite3_trace_v2(database, SQLITE_TRACE_STMT, Count, nullptr);
  }
  static int Count(unsigned /*event*/, void* /*unused*/, void* /*statement*/, void* text) {
    const bool isLook = std::string(static_cast<const char*>(text)).find("quick_check") == 7;
    m_count += isLook ? 1 : 0;
    return 0;
  }

  static inline int m_count = 0;
};

class SoundStore : public testing::Test {
 protected:
  SoundStore() { MakeStore(); }

  [[nodiscard]] std::filesystem::path Database() const { return m_folder.Path() / kDatabaseName; }
  [[nodiscard]] std::filesystem::path Mark() const { return m_folder.Path() / "sound"; }
  [[nodiscard]] std::unique_ptr<SqliteRegistry> Open(Access access = Access::kRead) const {
    RegistryOptions options;
    options.busyLimit = std::chrono::milliseconds(0);
    options.access = access;
    options.findSoundMark = [mark = m_mark] { return mark; };
    return std::make_unique<SqliteRegistry>(Database(), options);
  }
  void MakeStore() const {
    const auto registry = Open(Access::kChange);
    auto group = platform::RegistryGroup::Begin(*registry);
    const std::vector<std::byte> bytes(SoundMark::kFewestBytes / 4, std::byte{'x'});
    for (const char16_t* const name : {u"a", u"b", u"c", u"d", u"e"}) {
      ASSERT_EQ(support::ErrorOf(
                    support::Put(*registry, name, u"v", platform::RegistryType::kBinary, bytes)),
                std::nullopt);
    }
    ASSERT_EQ(support::ErrorOf(group->Commit()), std::nullopt);
  }
  /// Opens the store, and returns how often all its pages were looked at.
  [[nodiscard]] int LooksOf(Access access = Access::kRead) const {
    static_cast<void>(LookCount::Take());
    EXPECT_EQ(support::ErrorOf(Open(access)->OpenKey(u"a")), std::nullopt);
    return LookCount::Take();
  }
  /// Opens the store until it is known to be sound: the clock of the files has to go on for that.
  void WaitUntilKnown() const {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (LooksOf() != 0) {
      ASSERT_LT(std::chrono::steady_clock::now(), limit);
    }
  }

  support::TempFolder m_folder;
  LookCount m_looks;
  std::optional<std::filesystem::path> m_mark = Mark();
};

TEST_F(SoundStore, IsLookedAtOnceUntilItChanges) {
  WaitUntilKnown();
  EXPECT_EQ(LooksOf(Access::kRead), 0);
  EXPECT_EQ(LooksOf(Access::kChange), 0);
  EXPECT_EQ(support::ErrorOf(support::PutText(*Open(Access::kChange), u"a", u"w", u"new")),
            std::nullopt);
  EXPECT_EQ(LooksOf(), 1);
  WaitUntilKnown();
  EXPECT_EQ(LooksOf(), 0);
}

TEST_F(SoundStore, IsLookedAtWhileALogLiesNextToIt) {
  WaitUntilKnown();
  const auto writer = Open(Access::kChange);
  ASSERT_EQ(support::ErrorOf(support::PutText(*writer, u"a", u"w", u"new")), std::nullopt);
  EXPECT_EQ(LooksOf(), 1);
  EXPECT_EQ(LooksOf(), 1) << "nothing is remembered of it either";
}

TEST_F(SoundStore, IsFoundDamagedAlthoughItWasSound) {
  WaitUntilKnown();
  const std::string sound = FileContent(Database());
  std::string damaged = sound;
  damaged.replace(damaged.size() / 2, 10'000, 10'000, '\xFF');
  WriteFileContent(Database(), damaged);
  EXPECT_EQ(support::ErrorOf(Open()->OpenKey(u"a")), RegistryError::kDamaged);
  EXPECT_EQ(support::ErrorOf(Open(Access::kChange)->OpenKey(u"a")), RegistryError::kDamaged);
  EXPECT_EQ(FileContent(Database()), damaged);
}

TEST_F(SoundStore, IsLookedAtIfItsMarkIsTornOrOfAnotherStore) {
  WaitUntilKnown();
  const std::string mark = FileContent(Mark());
  for (const std::string& other : {std::string(), mark.substr(0, mark.size() - 1), mark + "1",
                                   "Voxtrel 1 0 0 0 0 0\n" + mark, std::string(5000, '1')}) {
    WriteFileContent(Mark(), other);
    EXPECT_EQ(LooksOf(), 1) << other;
    EXPECT_EQ(FileContent(Mark()), mark);
  }
  EXPECT_EQ(LooksOf(), 0);
}

TEST_F(SoundStore, IsLookedAtEachTimeIfNothingCanBeRemembered) {
  WaitUntilKnown();
  for (const auto& mark : {std::optional<std::filesystem::path>(), std::optional(m_folder.Path()),
                           std::optional(m_folder.Path() / "none" / "sound")}) {
    m_mark = mark;
    EXPECT_EQ(LooksOf(), 1);
    EXPECT_EQ(LooksOf(), 1);
  }
}

TEST_F(SoundStore, WritesThroughNoLink) {
  std::filesystem::create_symlink(m_folder.Path() / "elsewhere", Mark());
  // Long enough for the clock to go on.
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(LooksOf(), 1);
  }
  EXPECT_FALSE(std::filesystem::exists(m_folder.Path() / "elsewhere"));
}

}  // namespace
}  // namespace sqlite
