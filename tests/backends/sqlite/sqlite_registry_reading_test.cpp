#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "backends/sqlite/sqlite_registry.h"
#include "tests/backends/sqlite/faulty_file_layer.h"
#include "tests/backends/sqlite/raw_database.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace sqlite {

using platform::RegistryError;
using platform::RegistryGroup;
using support::BytesOf;
using support::FaultyFileLayer;
using support::FileContent;
using support::KeyExists;
using support::PutText;
using support::SubkeyNames;
using support::Utf16Bytes;
using testing::ElementsAre;

namespace {

std::vector<std::byte> TextWithZero(const std::u16string& text) { return Utf16Bytes(text + u'\0'); }

class SqliteRegistryReading : public testing::Test {
 protected:
  [[nodiscard]] std::filesystem::path Database() const { return m_folder.Path() / kDatabaseName; }

  [[nodiscard]] RegistryOptions Options(Access access) const {
    return {{u"Software\\Initial"}, std::chrono::milliseconds(0), m_layer.Name(), access};
  }
  [[nodiscard]] SqliteRegistry Reader() const {
    return SqliteRegistry(Database(), Options(Access::kRead));
  }
  [[nodiscard]] std::unique_ptr<SqliteRegistry> Writer() const {
    return std::make_unique<SqliteRegistry>(Database(), Options(Access::kChange));
  }
  void MakeStore() const {
    ASSERT_EQ(support::ErrorOf(PutText(*Writer(), u"tags\\1", u"v", u"text")), std::nullopt);
  }
  /// As other programs and other users may leave it: every change is in the database.
  [[nodiscard]] bool HasLogFiles() const {
    return std::filesystem::exists(Database().native() + "-wal") ||
           std::filesystem::exists(Database().native() + "-shm");
  }
  [[nodiscard]] FaultyFileLayer& Layer() { return m_layer; }
  [[nodiscard]] std::filesystem::path Folder() const { return m_folder.Path(); }

 private:
  support::TempFolder m_folder;
  FaultyFileLayer m_layer;
};

}  // namespace

TEST_F(SqliteRegistryReading, AStoreIsReadAndTakesNoChange) {
  MakeStore();
  const std::string before = FileContent(Database());
  {
    SqliteRegistry registry = Reader();
    EXPECT_EQ(BytesOf(registry, u"tags\\1", u"v"), TextWithZero(u"text"));
    EXPECT_EQ(support::ErrorOf(PutText(registry, u"tags\\1", u"v", u"other")),
              RegistryError::kReadOnly);
    EXPECT_EQ(support::ErrorOf(registry.CreateKey(u"tags\\2")), RegistryError::kReadOnly);
    EXPECT_EQ(support::ErrorOf(registry.DeleteKey(u"tags")), RegistryError::kReadOnly);
    EXPECT_EQ(BytesOf(registry, u"tags\\1", u"v"), TextWithZero(u"text"));
  }
  EXPECT_TRUE(FileContent(Database()) == before);
}

TEST_F(SqliteRegistryReading, NoFileOfAStoreIsALinkWhetherItIsReadOrChanged) {
  MakeStore();
  const std::filesystem::path target = Folder() / "other.db";
  std::filesystem::rename(Database(), target);
  const std::string before = FileContent(target);
  for (const std::string suffix : {"", "-wal", "-shm", "-journal"}) {
    const std::filesystem::path link = Database().native() + suffix;
    std::filesystem::create_symlink(target, link);
    EXPECT_EQ(FindLink(Database()), link);
    EXPECT_EQ(support::ErrorOf(Reader().OpenKey(u"tags")), RegistryError::kLink);
    EXPECT_EQ(support::ErrorOf(PutText(*Writer(), u"tags\\1", u"v", u"other")),
              RegistryError::kLink);
    std::filesystem::remove(link);
  }
  std::filesystem::create_symlink(Folder() / "nothing", Database());
  EXPECT_EQ(support::ErrorOf(Reader().OpenKey(u"tags")), RegistryError::kLink)
      << "It is no missing store.";
  EXPECT_EQ(FileContent(target), before);
}

TEST_F(SqliteRegistryReading, TheFolderOfAStoreMayBeALink) {
  std::filesystem::create_directory(Folder() / "real");
  std::filesystem::create_directory_symlink(Folder() / "real", Folder() / "link");
  SqliteRegistry registry(Folder() / "link" / kDatabaseName, Options(Access::kChange));
  EXPECT_EQ(support::ErrorOf(PutText(registry, u"tags\\1", u"v", u"text")), std::nullopt);
  EXPECT_EQ(FindLink(Folder() / "link" / kDatabaseName), "");
}

TEST_F(SqliteRegistryReading, AStoreThatIsMissingReadsAsANewOneAndIsNotMade) {
  SqliteRegistry registry = Reader();
  EXPECT_TRUE(KeyExists(registry, u"Software\\Initial"));
  EXPECT_EQ(support::ErrorOf(registry.OpenKey(u"tags")), RegistryError::kNotFound);
  EXPECT_EQ(support::ErrorOf(registry.CreateKey(u"tags")), RegistryError::kReadOnly);
  EXPECT_TRUE(std::filesystem::is_empty(Folder()));
  SqliteRegistry inNoFolder(Folder() / "none" / kDatabaseName, Options(Access::kRead));
  EXPECT_TRUE(KeyExists(inNoFolder, u"Software\\Initial"));
  EXPECT_FALSE(std::filesystem::exists(Folder() / "none"));
}

TEST_F(SqliteRegistryReading, AnEmptyFileReadsAsANewStoreAndStaysEmpty) {
  support::WriteFileContent(Database(), "");
  SqliteRegistry registry = Reader();
  EXPECT_TRUE(KeyExists(registry, u"Software\\Initial"));
  EXPECT_EQ(std::filesystem::file_size(Database()), 0U);
}

TEST_F(SqliteRegistryReading, WhatIsNoStoreIsReportedAndLeftAlone) {
  const std::string other(5000, 'x');
  support::WriteFileContent(Database(), other);
  EXPECT_EQ(support::ErrorOf(Reader().OpenKey(u"tags")), RegistryError::kDamaged);
  EXPECT_TRUE(FileContent(Database()) == other);
}

TEST_F(SqliteRegistryReading, AGroupReadsOneStateAndWaitsForNoWriter) {
  MakeStore();
  const auto writer = Writer();
  ASSERT_EQ(support::ErrorOf(writer->BeginGroup()), std::nullopt);
  ASSERT_EQ(support::ErrorOf(PutText(*writer, u"tags\\2", u"v", u"new")), std::nullopt);
  SqliteRegistry registry = Reader();
  auto group = platform::RegistryGroup::Begin(registry);
  ASSERT_EQ(support::ErrorOf(group), std::nullopt);
  EXPECT_THAT(SubkeyNames(registry, u"tags"), ElementsAre(u"1"));
  ASSERT_EQ(support::ErrorOf(writer->CommitGroup()), std::nullopt);
  EXPECT_THAT(SubkeyNames(registry, u"tags"), ElementsAre(u"1"));
  EXPECT_EQ(support::ErrorOf(group->Commit()), std::nullopt);
  EXPECT_THAT(SubkeyNames(registry, u"tags"), ElementsAre(u"1", u"2"));
}

TEST_F(SqliteRegistryReading, AGroupForReadingKeepsNobodyFromWriting) {
  MakeStore();
  const auto reader = Writer();
  auto group = RegistryGroup::BeginReading(*reader);
  ASSERT_EQ(support::ErrorOf(group), std::nullopt);
  EXPECT_EQ(support::ErrorOf(PutText(*Writer(), u"tags\\2", u"v", u"new")), std::nullopt);
  EXPECT_THAT(SubkeyNames(*reader, u"tags"), ElementsAre(u"1"));
  ASSERT_EQ(support::ErrorOf(group->Commit()), std::nullopt);
  EXPECT_THAT(SubkeyNames(*reader, u"tags"), ElementsAre(u"1", u"2"));
  EXPECT_EQ(support::ErrorOf(PutText(*reader, u"tags\\3", u"v", u"own")), std::nullopt);
}

TEST_F(SqliteRegistryReading, AFinishedStoreIsReadIfNoIndexCanBeMade) {
  MakeStore();
  ASSERT_FALSE(HasLogFiles());
  for (const auto fault :
       {FaultyFileLayer::Fault::kDiskFull, FaultyFileLayer::Fault::kWriteError}) {
    Layer().FailFrom(1, fault);
    SqliteRegistry registry = Reader();
    EXPECT_EQ(BytesOf(registry, u"tags\\1", u"v"), TextWithZero(u"text"));
    EXPECT_TRUE(Layer().HasFailed());
    Layer().Heal();
    for (const char* const ending : {"-wal", "-shm"}) {
      std::filesystem::remove(Database().native() + ending);
    }
  }
  Layer().MakeReadOnly(FaultyFileLayer::ReadOnly::kWholeMedium);
  SqliteRegistry registry = Reader();
  EXPECT_EQ(BytesOf(registry, u"tags\\1", u"v"), TextWithZero(u"text"));
}

TEST_F(SqliteRegistryReading, AnOddNameOfTheFolderIsNoOption) {
  const std::filesystem::path odd = Folder() / "50%?immutable=0#x";
  std::filesystem::create_directory(odd);
  ASSERT_EQ(support::ErrorOf(PutText(*std::make_unique<SqliteRegistry>(odd / kDatabaseName), u"a",
                                     u"v", u"text")),
            std::nullopt);
  Layer().MakeReadOnly(FaultyFileLayer::ReadOnly::kWholeMedium);
  SqliteRegistry registry(odd / kDatabaseName, Options(Access::kRead));
  EXPECT_EQ(BytesOf(registry, u"a", u"v"), TextWithZero(u"text"));
}

TEST_F(SqliteRegistryReading, ALogWithoutAnIndexIsNotPassedOver) {
  MakeStore();
  const auto writer = Writer();
  ASSERT_EQ(support::ErrorOf(PutText(*writer, u"tags\\1", u"v", u"newer")), std::nullopt);
  // As copied from elsewhere onto a medium that is full.
  const std::filesystem::path copy = Folder() / "copy";
  std::filesystem::create_directory(copy);
  for (const char* const ending : {"", "-wal"}) {
    std::filesystem::copy_file(Database().native() + ending,
                               (copy / kDatabaseName).native() + ending);
  }
  Layer().FailFrom(1, FaultyFileLayer::Fault::kDiskFull);
  SqliteRegistry registry(copy / kDatabaseName, Options(Access::kRead));
  EXPECT_EQ(support::ErrorOf(registry.OpenKey(u"tags")), RegistryError::kFull);
  Layer().Heal();
  EXPECT_EQ(BytesOf(registry, u"tags\\1", u"v"), TextWithZero(u"newer"));
}

TEST_F(SqliteRegistryReading, OnAFullMediumTheStoreOpensAndTakesChangesOnceThereIsRoom) {
  MakeStore();
  Layer().FailFrom(1, FaultyFileLayer::Fault::kDiskFull);
  const auto registry = Writer();
  const auto key = registry->OpenKey(u"tags\\1");
  ASSERT_EQ(support::ErrorOf(key), std::nullopt);
  EXPECT_EQ(BytesOf(*registry, u"tags\\1", u"v"), TextWithZero(u"text"));
  EXPECT_EQ(support::ErrorOf(PutText(*registry, u"tags\\1", u"v", u"other")), RegistryError::kFull);
  EXPECT_EQ(support::ErrorOf(registry->DeleteKey(u"tags")), RegistryError::kFull);
  {
    auto group = platform::RegistryGroup::Begin(*registry);
    ASSERT_EQ(support::ErrorOf(group), std::nullopt);
    EXPECT_EQ(BytesOf(*registry, u"tags\\1", u"v"), TextWithZero(u"text"));
    // That there is no room shows at the end, if not before.
    static_cast<void>(PutText(*registry, u"tags\\1", u"v", u"other"));
    EXPECT_EQ(support::ErrorOf(group->Commit()), RegistryError::kFull);
  }
  Layer().Heal();
  EXPECT_EQ(
      support::ErrorOf((*key)->Set(u"v", platform::RegistryType::kString, Utf16Bytes(u"other"))),
      std::nullopt);
  EXPECT_EQ(BytesOf(*registry, u"tags\\1", u"v"), Utf16Bytes(u"other"));
  auto group = platform::RegistryGroup::Begin(*registry);
  EXPECT_EQ(support::ErrorOf(registry->DeleteKey(u"tags")), std::nullopt);
  EXPECT_EQ(support::ErrorOf(group->Commit()), std::nullopt);
  EXPECT_FALSE(KeyExists(*Writer(), u"tags"));
}

}  // namespace sqlite
