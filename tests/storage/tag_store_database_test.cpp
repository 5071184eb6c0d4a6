#include <gtest/gtest.h>

#include "backends/sqlite/sqlite_registry.h"
#include "storage/registry_keys.h"
#include "storage/tag_store.h"
#include "tests/backends/sqlite/raw_database.h"
#include "tests/machine/memory_file_system.h"
#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace storage {

using support::RawDatabase;

namespace {

/// A store with the tag 4711, read with nothing but the database library.
class TagStoreDatabase : public testing::Test {
 protected:
  TagStoreDatabase()
      : m_registry(m_folder.Path() / sqlite::kDatabaseName,
                   {{kInstalledKeys.begin(), kInstalledKeys.end()}, std::chrono::seconds(2), {}}) {
    EXPECT_EQ(support::ErrorOf(TagStore(m_files, m_registry).WriteEntry(u"4711", -17, u"Mobile")),
              std::nullopt);
  }

  [[nodiscard]] RawDatabase Raw() const {
    return RawDatabase(m_folder.Path() / sqlite::kDatabaseName);
  }

  [[nodiscard]] static std::string From(const std::string& name) {
    return " FROM registry_value JOIN registry_path USING (key_id)"
           " WHERE path = 'Software\\Zedra\\Zedra Voxtrel\\4711' AND name = '" +
           name + "'";
  }

  support::TempFolder m_folder;
  machine::MemoryFileSystem m_files;
  sqlite::SqliteRegistry m_registry;
};

std::vector<std::byte> OneHundredBytes(std::string_view ascii) {
  std::vector<std::byte> bytes(100);
  for (std::size_t i = 0; i < ascii.size(); ++i) {
    bytes[2 * i] = static_cast<std::byte>(ascii[i]);
  }
  return bytes;
}

}  // namespace

TEST_F(TagStoreDatabase, HoldsExactlyTheTwoValuesOfATag) {
  RawDatabase raw = Raw();
  EXPECT_EQ(raw.Text("SELECT count(*) FROM registry_value"), "2");
  EXPECT_EQ(raw.Bytes("SELECT data" + From("contact")), OneHundredBytes("-17"));
  EXPECT_EQ(raw.Bytes("SELECT data" + From("phone type")), OneHundredBytes("Mobile"));
  EXPECT_EQ(raw.Text("SELECT type" + From("contact")), "1");
  EXPECT_EQ(raw.Text("SELECT type" + From("phone type")), "1");
}

TEST_F(TagStoreDatabase, HoldsTheKeyOfTheInstallationWithoutAValue) {
  RawDatabase raw = Raw();
  EXPECT_EQ(raw.Text("SELECT count(*) FROM registry_path"
                     " WHERE path = 'Software\\Zedra\\VoxtrelPEIni'"),
            "1");
  EXPECT_EQ(raw.Text("SELECT count(*) FROM registry_value JOIN registry_path USING (key_id)"
                     " WHERE path = 'Software\\Zedra\\VoxtrelPEIni'"),
            "0");
}

TEST_F(TagStoreDatabase, HoldsNothingOfATagThatWasDeleted) {
  ASSERT_EQ(support::ErrorOf(TagStore(m_files, m_registry).DeleteEntry(u"4711")), std::nullopt);
  EXPECT_EQ(Raw().Text("SELECT count(*) FROM registry_value"), "0");
}

}  // namespace storage
