#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <fstream>
#include <iterator>

#include "backends/sqlite/schema.h"
#include "backends/sqlite/sqlite_registry.h"
#include "platform/serial_devices.h"
#include "storage/device_paths.h"
#include "storage/phone_types.h"
#include "storage/registry_keys.h"
#include "storage/tag_store.h"
#include "tests/machine/memory_file_system.h"
#include "tests/support/results.h"
#include "tests/support/run_program.h"
#include "tests/support/temp_folder.h"

namespace storage {

using testing::HasSubstr;

namespace {

/// The page for the companion's author, in UTF-8.
std::string Page() {
  std::ifstream stream(VOXTREL_COMPANION_PAGE);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// What stands in the first block of the page that is marked as `language`.
std::string Block(const std::string& language) {
  const std::string page = Page();
  const std::string begin = "\n```" + language + "\n";
  const std::size_t first = page.find(begin);
  EXPECT_NE(first, std::string::npos) << language;
  if (first == std::string::npos) {
    return {};
  }
  const std::size_t start = first + begin.size();
  return page.substr(start, page.find("\n```\n", start) + 1 - start);
}

std::string Ascii(std::u16string_view text) { return {text.begin(), text.end()}; }

}  // namespace

TEST(CompanionPage, ItsExampleReadsTheTagsHoweverTheKeysAreSpelled) {
  for (const auto* const spelled : {u"Software\\Zedra", u"SOFTWARE\\ZEDRA"}) {
    const support::TempFolder root;
    {
      machine::MemoryFileSystem files;
      sqlite::SqliteRegistry registry(root.Path() / sqlite::kDatabaseName);
      ASSERT_EQ(support::ErrorOf(registry.CreateKey(spelled)), std::nullopt);
      const TagStore store(files, registry);
      ASSERT_EQ(support::ErrorOf(store.WriteEntry(u"4711", -17, u"Mobile")), std::nullopt);
      ASSERT_EQ(support::ErrorOf(store.WriteEntry(u"5822", 204, u"HomeFax")), std::nullopt);
    }
    const auto run =
        support::RunProgram({"/bin/sh", "-c", Block("sh")}, {"ROOT=" + root.Path().string()});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, Block("text"));
  }
}

TEST(CompanionPage, NamesTheDatabaseAndItsVersion) {
  const std::string page = Page();
  EXPECT_THAT(page, HasSubstr("`" + std::string(sqlite::kDatabaseName) + "`"));
  EXPECT_THAT(page, HasSubstr("is " + std::to_string(sqlite::kApplicationId)));
  EXPECT_THAT(page,
              HasSubstr("`PRAGMA user_version` is " + std::to_string(sqlite::kSchemaVersion)));
}

TEST(CompanionPage, NamesEveryKeyAndValue) {
  const std::string page = Page();
  for (const std::u16string_view name :
       {kTagKey, kSetupKey, kDialerKey, platform::kActiveDriversKey, kContactValue, kPhoneTypeValue,
        kMathVersionValue, kBaudRateValue, kDataBitsValue, kStopBitsValue, kFlowControlValue,
        kComPortValue, kIsBluetoothValue, kIsHangUpValue}) {
    EXPECT_THAT(page, HasSubstr(Ascii(name)));
  }
  for (const PhoneType& type : kPhoneTypes) {
    EXPECT_THAT(page, HasSubstr("`" + Ascii(type.word) + "`"));
  }
}

TEST(CompanionPage, NamesTheFiles) {
  const std::string page = Page();
  EXPECT_THAT(page, HasSubstr(Ascii(WavePath(u"TAG")).substr(1)));
  EXPECT_THAT(page, HasSubstr(Ascii(TemplatePath(u"TAG")).substr(1)));
  EXPECT_THAT(page, HasSubstr(Ascii(kLanguageFile).substr(1)));
}

TEST(CompanionPage, TheDatabaseSaysWhatItIsWithTheNumbersOfThePage) {
  const support::TempFolder root;
  sqlite::SqliteRegistry registry(root.Path() / sqlite::kDatabaseName);
  ASSERT_EQ(support::ErrorOf(registry.OpenKey(u"")), std::nullopt);
  const auto ask = [&](const std::string& pragma) {
    return support::RunProgram({"/bin/sh", "-c", "sqlite3 \"$ROOT/registry.db\" '" + pragma + "'"},
                               {"ROOT=" + root.Path().string()})
        .out;
  };
  EXPECT_EQ(ask("PRAGMA application_id"), std::to_string(sqlite::kApplicationId) + "\n");
  EXPECT_EQ(ask("PRAGMA user_version"), std::to_string(sqlite::kSchemaVersion) + "\n");
  EXPECT_EQ(ask("PRAGMA encoding"), "UTF-16le\n");
}

}  // namespace storage
