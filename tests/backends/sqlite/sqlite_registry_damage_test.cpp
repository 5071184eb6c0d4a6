#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstddef>
#include <set>
#include <string>

#include "backends/sqlite/sqlite_registry.h"
#include "tests/backends/sqlite/raw_database.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace sqlite {

using platform::RegistryError;
using support::FileContent;
using support::PutText;
using support::RawDatabase;
using support::WriteFileContent;

namespace {

constexpr std::size_t kPageSize = 4096;

/// The numbers, from 1, of the pages that a write-ahead log holds.
std::set<std::size_t> PagesInLog(const std::string& log) {
  constexpr std::size_t kLogHeader = 32;
  constexpr std::size_t kFrameHeader = 24;
  constexpr std::size_t kNumberBytes = 4;
  std::set<std::size_t> pages;
  for (std::size_t frame = kLogHeader; frame + kFrameHeader + kPageSize <= log.size();
       frame += kFrameHeader + kPageSize) {
    std::size_t number = 0;
    for (std::size_t i = 0; i < kNumberBytes; ++i) {
      number = number << 8U | static_cast<unsigned char>(log[frame + i]);
    }
    pages.insert(number);
  }
  return pages;
}

/// A place for a database that is not what it should be.
class SqliteRegistryDamage : public testing::Test {
 protected:
  [[nodiscard]] std::filesystem::path Database() const { return m_folder.Path() / kDatabaseName; }

  /// A sound store of several pages, closed.
  void MakeStore() const {
    SqliteRegistry registry(Database());
    auto group = platform::RegistryGroup::Begin(registry);
    for (char16_t c = u'a'; c <= u'z'; ++c) {
      const std::u16string name(100, c);
      ASSERT_EQ(
          support::ErrorOf(PutText(registry, u"tags\\" + name, u"contact", std::u16string(200, c))),
          std::nullopt);
    }
    ASSERT_EQ(support::ErrorOf(group->Commit()), std::nullopt);
  }

  /// Every call gives `error` and no byte of the file changes.
  void ExpectRefused(RegistryError error) const {
    const std::string before = FileContent(Database());
    {
      SqliteRegistry registry(Database(), {{u"Software"}, std::chrono::milliseconds(0), {}});
      EXPECT_EQ(support::ErrorOf(registry.OpenKey(u"tags")), error);
      EXPECT_EQ(support::ErrorOf(registry.CreateKey(u"b")), error);
      EXPECT_EQ(support::ErrorOf(registry.DeleteKey(u"tags")), error);
      EXPECT_EQ(support::ErrorOf(registry.BeginGroup()), error);
      EXPECT_EQ(support::ErrorOf(registry.CommitGroup()), RegistryError::kInvalid);
    }
    EXPECT_EQ(FileContent(Database()), before) << "the file must be left as it is";
  }

 private:
  support::TempFolder m_folder;
};

}  // namespace

TEST_F(SqliteRegistryDamage, AFileOfAnotherKindIsRefusedAndKept) {
  WriteFileContent(Database(), std::string(3 * kPageSize, 'x'));
  ExpectRefused(RegistryError::kDamaged);
}

TEST_F(SqliteRegistryDamage, AFewBytesAreRefusedAndKept) {
  WriteFileContent(Database(), "SQLite");
  ExpectRefused(RegistryError::kDamaged);
}

TEST_F(SqliteRegistryDamage, AFileTornAtAnyPageIsRefusedAndKept) {
  MakeStore();
  const std::string whole = FileContent(Database());
  ASSERT_GT(whole.size(), 5 * kPageSize);
  for (std::size_t length = kPageSize / 2; length < whole.size(); length += kPageSize / 2) {
    SCOPED_TRACE(length);
    WriteFileContent(Database(), whole.substr(0, length));
    ExpectRefused(RegistryError::kDamaged);
  }
}

TEST_F(SqliteRegistryDamage, AnOverwrittenPageIsNoticedBeforeAnythingIsWritten) {
  MakeStore();
  const std::string whole = FileContent(Database());
  for (std::size_t page = 1; page * kPageSize < whole.size(); ++page) {
    SCOPED_TRACE(page);
    WriteFileContent(Database(),
                     std::string(whole).replace(page * kPageSize, kPageSize, kPageSize, '\xA5'));
    ExpectRefused(RegistryError::kDamaged);
  }
}

TEST_F(SqliteRegistryDamage, TheLogNextToAnOverwrittenPageIsNotMovedIntoTheStore) {
  MakeStore();
  std::string whole;
  std::string log;
  {
    SqliteRegistry registry(Database());
    ASSERT_EQ(support::ErrorOf(PutText(registry, u"tags\\one more", u"contact", u"1")),
              std::nullopt);
    whole = FileContent(Database());
    log = FileContent(Database().string() + "-wal");
  }
  const std::set<std::size_t> logged = PagesInLog(log);
  ASSERT_FALSE(logged.empty());
  for (std::size_t page = 1; page * kPageSize < whole.size(); ++page) {
    if (logged.contains(page + 1)) {
      continue;
    }
    SCOPED_TRACE(page);
    WriteFileContent(Database(),
                     std::string(whole).replace(page * kPageSize, kPageSize, kPageSize, '\xA5'));
    WriteFileContent(Database().string() + "-wal", log);
    std::filesystem::remove(Database().string() + "-shm");
    ExpectRefused(RegistryError::kDamaged);
    EXPECT_EQ(FileContent(Database().string() + "-wal"), log);
  }
}

TEST_F(SqliteRegistryDamage, FlippedBytesNeverCrash) {
  MakeStore();
  const std::string whole = FileContent(Database());
  for (std::size_t offset = 16; offset < whole.size(); offset += 131) {
    SCOPED_TRACE(offset);
    std::string changed = whole;
    changed[offset] = static_cast<char>(~changed[offset]);
    WriteFileContent(Database(), changed);
    std::filesystem::remove(Database().string() + "-wal");
    std::filesystem::remove(Database().string() + "-shm");
    SqliteRegistry registry(Database(), {{}, std::chrono::milliseconds(0), {}});
    const auto error = support::ErrorOf(registry.OpenKey(u""));
    EXPECT_NE(error, RegistryError::kNotFound) << "the root always exists";
    if (!error) {
      EXPECT_LE(support::SubkeyNames(registry, u"tags").size(), 26U);
    } else {
      EXPECT_EQ(FileContent(Database()), changed);
    }
  }
}

TEST_F(SqliteRegistryDamage, ADatabaseOfAnotherProgramIsRefusedAndKept) {
  {
    RawDatabase raw(Database());
    ASSERT_EQ(raw.Execute("CREATE TABLE diary (entry TEXT)"), SQLITE_OK);
  }
  ExpectRefused(RegistryError::kDamaged);
}

TEST_F(SqliteRegistryDamage, AStoreThatSaysItIsAnotherProgramsIsRefusedAndKept) {
  MakeStore();
  {
    RawDatabase raw(Database());
    ASSERT_EQ(raw.Execute("PRAGMA application_id = 7"), SQLITE_OK);
  }
  ExpectRefused(RegistryError::kDamaged);
}

TEST_F(SqliteRegistryDamage, AStoreOfALaterVersionIsRefusedAndKept) {
  MakeStore();
  {
    RawDatabase raw(Database());
    ASSERT_EQ(raw.Execute("PRAGMA user_version = 2"), SQLITE_OK);
  }
  ExpectRefused(RegistryError::kNewerStore);
}

TEST_F(SqliteRegistryDamage, AStoreWithoutItsTablesIsRefusedAndKept) {
  MakeStore();
  {
    RawDatabase raw(Database());
    ASSERT_EQ(raw.Execute("DROP TABLE registry_value"), SQLITE_OK);
  }
  ExpectRefused(RegistryError::kDamaged);
}

TEST_F(SqliteRegistryDamage, AFolderInItsPlaceIsAnErrorAndStays) {
  std::filesystem::create_directory(Database());
  SqliteRegistry registry(Database());
  EXPECT_NE(support::ErrorOf(registry.OpenKey(u"a")), std::nullopt);
  EXPECT_NE(support::ErrorOf(registry.CreateKey(u"a")), std::nullopt);
  EXPECT_NE(support::ErrorOf(registry.BeginGroup()), std::nullopt);
  EXPECT_TRUE(std::filesystem::is_directory(Database()));
}

TEST_F(SqliteRegistryDamage, AnEmptyFileBecomesAStore) {
  WriteFileContent(Database(), "");
  SqliteRegistry registry(Database());
  EXPECT_EQ(support::ErrorOf(registry.CreateKey(u"a")), std::nullopt);
}

TEST_F(SqliteRegistryDamage, ATornLogLosesOnlyTheChangeThatWasBeingWritten) {
  const auto copy = Database().parent_path() / "copy.db";
  {
    SqliteRegistry registry(Database());
    ASSERT_EQ(support::ErrorOf(PutText(registry, u"first", u"v", u"kept")), std::nullopt);
    ASSERT_EQ(support::ErrorOf(PutText(registry, u"second", u"v", u"torn")), std::nullopt);
    // As a loss of power in the middle of the second change leaves them.
    const std::string log = FileContent(Database().string() + "-wal");
    ASSERT_GT(log.size(), 100U);
    WriteFileContent(copy, FileContent(Database()));
    WriteFileContent(copy.string() + "-wal", log.substr(0, log.size() - 100));
  }
  SqliteRegistry registry(copy);
  EXPECT_FALSE(support::BytesOf(registry, u"first", u"v").empty());
  EXPECT_TRUE(support::BytesOf(registry, u"second", u"v").empty());
  EXPECT_EQ(support::ErrorOf(PutText(registry, u"second", u"v", u"again")), std::nullopt);
}

TEST_F(SqliteRegistryDamage, DamageWhileInUseEndsTheUse) {
  SqliteRegistry registry(Database());
  ASSERT_EQ(support::ErrorOf(PutText(registry, u"tags\\1", u"v", u"text")), std::nullopt);
  const auto tags = registry.OpenKey(u"tags").value();
  {
    // The rows of the keys become those of no table that could hold them.
    RawDatabase raw(Database());
    ASSERT_EQ(raw.Execute("PRAGMA writable_schema = ON;"
                          "UPDATE sqlite_schema SET rootpage = 9999 WHERE name = 'registry_key';"
                          "PRAGMA schema_version = 77"),
              SQLITE_OK);
  }
  std::u16string name;
  EXPECT_EQ(support::ErrorOf(tags->EnumerateSubkey(0)), RegistryError::kDamaged);
  EXPECT_EQ(support::ErrorOf(registry.CreateKey(u"b")), RegistryError::kDamaged);
  EXPECT_EQ(support::ErrorOf(registry.BeginGroup()), RegistryError::kDamaged);
}

TEST_F(SqliteRegistryDamage, ARootThatLiesBelowAKeyIsDamage) {
  MakeStore();
  ASSERT_EQ(RawDatabase(Database())
                .Execute("UPDATE registry_key SET parent_id = (SELECT max(id) FROM registry_key) "
                         "WHERE id = 1; PRAGMA wal_checkpoint (TRUNCATE)"),
            SQLITE_OK);
  ExpectRefused(RegistryError::kDamaged);
}

TEST_F(SqliteRegistryDamage, WhatIsLongerThanARegistryTakesIsNotReadAndHidesNothingElse) {
  MakeStore();
  ASSERT_EQ(
      RawDatabase(Database())
          .Execute("INSERT INTO registry_value (key_id, name, folded_name, type, data) "
                   "VALUES (2, 'huge', 'huge', 3, zeroblob (30000000)), (2, 'v', 'v', 3, x'01');"
                   "INSERT INTO registry_key (parent_id, name, folded_name) "
                   "VALUES (2, printf ('%.*c', 3000000, 'n'), 'n'), (2, 'last', 'last')"),
      SQLITE_OK);
  SqliteRegistry registry(Database());
  const auto key = registry.OpenKey(u"tags");
  ASSERT_EQ(support::ErrorOf(key), std::nullopt);
  platform::RegistryValue value;
  EXPECT_EQ(support::ErrorOf((*key)->Query(u"huge")), RegistryError::kInvalid);
  value = (*key)->Query(u"v").value();
  std::u16string name;
  EXPECT_EQ(support::ErrorOf((*key)->EnumerateSubkey(26)), RegistryError::kInvalid);
  EXPECT_EQ((*key)->EnumerateSubkey(27).value(), u"last");
}

}  // namespace sqlite
