#include "backends/sqlite/sqlite_registry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include "tests/backends/sqlite/faulty_file_layer.h"
#include "tests/backends/sqlite/raw_database.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace sqlite {

using platform::RegistryError;
using platform::RegistryGroup;
using platform::RegistryType;
using support::BytesOf;
using support::KeyExists;
using support::Put;
using support::PutText;
using support::RawDatabase;
using support::SubkeyNames;
using support::Utf16Bytes;
using testing::ElementsAre;

namespace {

class Folder {
 public:
  [[nodiscard]] std::filesystem::path Database() const { return m_folder.Path() / kDatabaseName; }

 private:
  support::TempFolder m_folder;
};

/// Does not wait for others.
RegistryOptions Impatient() { return {{}, std::chrono::milliseconds(0), {}}; }

const std::vector<std::byte> kSomeBytes{std::byte{0xFF}, std::byte{0}, std::byte{7}};

}  // namespace

TEST(SqliteRegistry, WhatWasWrittenIsThereForTheNextOne) {
  const Folder folder;
  {
    SqliteRegistry registry(folder.Database());
    ASSERT_EQ(support::ErrorOf(Put(registry, u"a\\b", u"v", RegistryType::kBinary, kSomeBytes)),
              std::nullopt);
  }
  SqliteRegistry registry(folder.Database());
  EXPECT_EQ(BytesOf(registry, u"a\\b", u"v"), kSomeBytes);
}

TEST(SqliteRegistry, TheInitialKeysAreMadeWithTheStoreAndNotAgain) {
  const Folder folder;
  const RegistryOptions options{{u"Software\\Maker\\Ini"}, std::chrono::seconds(2), {}};
  {
    SqliteRegistry registry(folder.Database(), options);
    ASSERT_TRUE(KeyExists(registry, u"Software\\Maker\\Ini"));
    ASSERT_EQ(support::ErrorOf(registry.DeleteKey(u"Software\\Maker\\Ini")), std::nullopt);
  }
  SqliteRegistry registry(folder.Database(), options);
  EXPECT_TRUE(KeyExists(registry, u"Software\\Maker"));
  EXPECT_FALSE(KeyExists(registry, u"Software\\Maker\\Ini"));
}

TEST(SqliteRegistry, TheDatabaseHoldsTheValuesAsTheyWereWritten) {
  const Folder folder;
  SqliteRegistry registry(folder.Database());
  ASSERT_EQ(support::ErrorOf(
                Put(registry, u"Soft\\Größe", u"Wert", static_cast<RegistryType>(7), kSomeBytes)),
            std::nullopt);
  RawDatabase raw(folder.Database());
  const std::string from =
      " FROM registry_value JOIN registry_path USING (key_id) WHERE path = 'Soft\\Größe'";
  EXPECT_EQ(raw.Bytes("SELECT data" + from), kSomeBytes);
  EXPECT_EQ(raw.Text("SELECT type" + from), "7");
  EXPECT_EQ(raw.Text("SELECT name" + from), "Wert");
  EXPECT_EQ(raw.Text("SELECT typeof (data)" + from), "blob");
}

TEST(SqliteRegistry, DeletingAKeyLeavesNothingOfItInTheDatabase) {
  const Folder folder;
  SqliteRegistry registry(folder.Database());
  ASSERT_EQ(support::ErrorOf(Put(registry, u"a\\b\\c", u"v", RegistryType::kBinary, kSomeBytes)),
            std::nullopt);
  ASSERT_EQ(support::ErrorOf(Put(registry, u"a", u"v", RegistryType::kBinary, kSomeBytes)),
            std::nullopt);
  ASSERT_EQ(support::ErrorOf(registry.DeleteKey(u"a")), std::nullopt);
  RawDatabase raw(folder.Database());
  EXPECT_EQ(raw.Text("SELECT count(*) FROM registry_key"), "1") << "the root";
  EXPECT_EQ(raw.Text("SELECT count(*) FROM registry_value"), "0");
}

TEST(SqliteRegistry, EachChangeIsForcedToTheMediumBeforeItReturns) {
  const Folder folder;
  const support::FaultyFileLayer layer;
  SqliteRegistry registry(folder.Database(), {{}, std::chrono::seconds(2), layer.Name()});
  const auto key = registry.CreateKey(u"a").value();
  std::uint32_t before = layer.CountSyncs();
  ASSERT_EQ(support::ErrorOf(key->Set(u"v", RegistryType::kBinary, kSomeBytes)), std::nullopt);
  EXPECT_EQ(layer.CountSyncs(), before + 1);
  before = layer.CountSyncs();
  ASSERT_EQ(support::ErrorOf(key->DeleteValue(u"v")), std::nullopt);
  EXPECT_EQ(layer.CountSyncs(), before + 1);
  before = layer.CountSyncs();
  ASSERT_EQ(support::ErrorOf(registry.DeleteKey(u"a")), std::nullopt);
  EXPECT_EQ(layer.CountSyncs(), before + 1);
}

TEST(SqliteRegistry, AGroupIsForcedToTheMediumOnce) {
  const Folder folder;
  const support::FaultyFileLayer layer;
  SqliteRegistry registry(folder.Database(), {{}, std::chrono::seconds(2), layer.Name()});
  ASSERT_TRUE(KeyExists(registry, u""));
  const std::uint32_t before = layer.CountSyncs();
  auto group = platform::RegistryGroup::Begin(registry);
  ASSERT_EQ(support::ErrorOf(PutText(registry, u"a\\b\\1", u"one", u"text")), std::nullopt);
  ASSERT_EQ(support::ErrorOf(PutText(registry, u"a\\b\\1", u"two", u"text")), std::nullopt);
  EXPECT_EQ(layer.CountSyncs(), before);
  ASSERT_EQ(support::ErrorOf(group->Commit()), std::nullopt);
  // The first change of a new log forces the log's header as well.
  EXPECT_LE(layer.CountSyncs(), before + 2);
  EXPECT_GT(layer.CountSyncs(), before);
}

TEST(SqliteRegistry, TwoStoresOverOneDatabaseSeeEachOthersChangesAtOnce) {
  const Folder folder;
  SqliteRegistry one(folder.Database());
  SqliteRegistry two(folder.Database());
  ASSERT_EQ(support::ErrorOf(PutText(one, u"k\\a", u"v", u"1")), std::nullopt);
  EXPECT_EQ(BytesOf(two, u"k\\a", u"v"), Utf16Bytes(std::u16string_view(u"1\0", 2)));
  ASSERT_EQ(support::ErrorOf(two.DeleteKey(u"k\\a")), std::nullopt);
  ASSERT_EQ(support::ErrorOf(two.CreateKey(u"k\\b")), std::nullopt);
  EXPECT_THAT(SubkeyNames(one, u"k"), ElementsAre(u"b"));
}

TEST(SqliteRegistry, AnotherProcessReadsTheOldStateUntilAGroupIsCommitted) {
  const Folder folder;
  SqliteRegistry writer(folder.Database());
  SqliteRegistry reader(folder.Database(), Impatient());
  ASSERT_EQ(support::ErrorOf(PutText(writer, u"a", u"v", u"old")), std::nullopt);
  auto group = platform::RegistryGroup::Begin(writer);
  ASSERT_EQ(support::ErrorOf(PutText(writer, u"a", u"v", u"new")), std::nullopt);
  EXPECT_EQ(BytesOf(reader, u"a", u"v"), Utf16Bytes(std::u16string_view(u"old\0", 4)));
  ASSERT_EQ(support::ErrorOf(group->Commit()), std::nullopt);
  EXPECT_EQ(BytesOf(reader, u"a", u"v"), Utf16Bytes(std::u16string_view(u"new\0", 4)));
}

TEST(SqliteRegistry, AGroupReadsOneStateWhateverAnotherProcessReads) {
  const Folder folder;
  SqliteRegistry registry(folder.Database(), Impatient());
  ASSERT_EQ(support::ErrorOf(PutText(registry, u"a", u"v", u"old")), std::nullopt);
  RawDatabase reader(folder.Database());
  ASSERT_EQ(reader.Execute("BEGIN; SELECT * FROM registry_value"), SQLITE_OK);
  EXPECT_EQ(support::ErrorOf(PutText(registry, u"a", u"v", u"new")), std::nullopt)
      << "a reader keeps no writer out";
  EXPECT_EQ(reader.Text("SELECT CAST (data AS TEXT) FROM registry_value"), "old");
}

TEST(SqliteRegistry, WhileAnotherProcessWritesChangesAreBusyAndReadingGoesOn) {
  const Folder folder;
  SqliteRegistry registry(folder.Database(), Impatient());
  ASSERT_EQ(support::ErrorOf(PutText(registry, u"a", u"v", u"old")), std::nullopt);
  RawDatabase other(folder.Database());
  ASSERT_EQ(other.Execute("BEGIN IMMEDIATE"), SQLITE_OK);
  EXPECT_EQ(support::ErrorOf(PutText(registry, u"a", u"v", u"new")), RegistryError::kBusy);
  EXPECT_EQ(support::ErrorOf(registry.CreateKey(u"b")), RegistryError::kBusy);
  EXPECT_EQ(support::ErrorOf(registry.DeleteKey(u"a")), RegistryError::kBusy);
  EXPECT_EQ(support::ErrorOf(registry.BeginGroup()), RegistryError::kBusy);
  EXPECT_EQ(BytesOf(registry, u"a", u"v"), Utf16Bytes(std::u16string_view(u"old\0", 4)));
  ASSERT_EQ(other.Execute("COMMIT"), SQLITE_OK);
  EXPECT_EQ(support::ErrorOf(PutText(registry, u"a", u"v", u"new")), std::nullopt);
}

TEST(SqliteRegistry, AStoreThatIsLockedWhenItIsFirstUsedIsFoundWhenItIsFree) {
  const Folder folder;
  RawDatabase other(folder.Database());
  ASSERT_EQ(other.Execute("PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE"), SQLITE_OK);
  SqliteRegistry registry(folder.Database(), Impatient());
  EXPECT_EQ(support::ErrorOf(registry.OpenKey(u"a")), RegistryError::kBusy);
  EXPECT_EQ(support::ErrorOf(registry.CreateKey(u"a")), RegistryError::kBusy);
  EXPECT_EQ(support::ErrorOf(registry.BeginGroup()), RegistryError::kBusy);
  ASSERT_EQ(other.Execute("COMMIT; PRAGMA locking_mode = NORMAL; SELECT * FROM sqlite_schema"),
            SQLITE_OK);
  EXPECT_EQ(support::ErrorOf(registry.CreateKey(u"a")), std::nullopt);
}

TEST(SqliteRegistry, AStoreThatAnotherProgramKeepsWithoutALogIsUsedAllTheSame) {
  const Folder folder;
  ASSERT_EQ(support::ErrorOf(
                PutText(*std::make_unique<SqliteRegistry>(folder.Database()), u"a", u"v", u"old")),
            std::nullopt);
  RawDatabase other(folder.Database());
  ASSERT_EQ(other.Execute("PRAGMA journal_mode = DELETE; BEGIN; SELECT * FROM registry_key"),
            SQLITE_OK);
  SqliteRegistry registry(folder.Database(), Impatient());
  EXPECT_EQ(BytesOf(registry, u"a", u"v"), Utf16Bytes(std::u16string_view(u"old\0", 4)));
  EXPECT_EQ(support::ErrorOf(PutText(registry, u"a", u"v", u"new")), RegistryError::kBusy);
  ASSERT_EQ(other.Execute("COMMIT"), SQLITE_OK);
  EXPECT_EQ(support::ErrorOf(PutText(registry, u"a", u"v", u"new")), std::nullopt);
}

TEST(SqliteRegistry, NumbersOfRowsAreNeverUsedAgain) {
  const Folder folder;
  SqliteRegistry registry(folder.Database());
  RawDatabase raw(folder.Database());
  const std::string lastKey = "SELECT max(id) FROM registry_key";
  const std::string lastValue = "SELECT max(id) FROM registry_value";
  ASSERT_EQ(support::ErrorOf(PutText(registry, u"a", u"v", u"text")), std::nullopt);
  const std::string key = raw.Text(lastKey);
  const std::string value = raw.Text(lastValue);
  ASSERT_EQ(support::ErrorOf(registry.DeleteKey(u"a")), std::nullopt);
  ASSERT_EQ(support::ErrorOf(PutText(registry, u"b", u"v", u"text")), std::nullopt);
  EXPECT_NE(raw.Text(lastKey), key);
  EXPECT_NE(raw.Text(lastValue), value);
}

TEST(SqliteRegistry, AMissingFolderIsAnErrorUntilItIsThere) {
  const Folder folder;
  const auto deep = folder.Database().parent_path() / "deep";
  SqliteRegistry registry(deep / kDatabaseName);
  EXPECT_EQ(support::ErrorOf(registry.OpenKey(u"a")), RegistryError::kOther);
  EXPECT_EQ(support::ErrorOf(registry.BeginGroup()), RegistryError::kOther);
  std::filesystem::create_directory(deep);
  EXPECT_EQ(support::ErrorOf(registry.CreateKey(u"a")), std::nullopt);
}

TEST(SqliteRegistry, TheTriggersOfAnotherHandAreNotRun) {
  const Folder folder;
  SqliteRegistry registry(folder.Database());
  ASSERT_EQ(support::ErrorOf(PutText(registry, u"a\\b", u"v", u"text")), std::nullopt);
  RawDatabase raw(folder.Database());
  ASSERT_EQ(raw.Execute("CREATE TRIGGER trap AFTER INSERT ON registry_key"
                        " BEGIN DELETE FROM registry_value; END"),
            SQLITE_OK);
  ASSERT_EQ(support::ErrorOf(registry.CreateKey(u"c")), std::nullopt);
  EXPECT_EQ(raw.Text("SELECT count(*) FROM registry_value"), "1");
}

}  // namespace sqlite
