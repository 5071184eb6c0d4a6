#include "storage/registry_file.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "backends/sqlite/sqlite_registry.h"
#include "tests/backends/sqlite/raw_database.h"
#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace {

class UnusableKey : public testing::Test {
 protected:
  UnusableKey() {
    EXPECT_EQ(support::ErrorOf(m_registry.CreateKey(u"Software\\Grün\\Good")), std::nullopt);
  }

  /// Makes a key below "Grün" as another program can; `name` is an expression of the library.
  void Put(const std::string& name) {
    ASSERT_EQ(support::RawDatabase(m_path).Execute(
                  "INSERT INTO registry_key (parent_id, name, folded_name) SELECT parent_id, " +
                  name + ", " + name + " FROM registry_key WHERE name = 'Good'"),
              0);
  }

  support::TempFolder m_folder;
  std::filesystem::path m_path = std::filesystem::path(m_folder.Path()) / "registry.db";
  sqlite::SqliteRegistry m_registry{m_path};
};

TEST_F(UnusableKey, NoneIsFoundIfTheRegistryMadeThemAll) {
  EXPECT_EQ(storage::FindUnusableKey(m_registry), std::nullopt);
}

TEST_F(UnusableKey, IsNamedOnOneLine) {
  Put("'two' || char(10) || 'lines' || char(27)");
  EXPECT_EQ(storage::FindUnusableKey(m_registry), R"(Software\Grün\two\nlines\x1b)");
}

TEST_F(UnusableKey, WithABackslashInItsNameIsNoPath) {
  Put(R"('Good\Good')");
  EXPECT_EQ(storage::FindUnusableKey(m_registry), R"(Software\Grün\Good\\Good)");
}

TEST_F(UnusableKey, CanBeTooDeep) {
  std::u16string path = u"1";
  for (std::uint32_t depth = 2; depth <= platform::kMaxKeyDepth; ++depth) {
    path += u"\\1";
  }
  ASSERT_EQ(support::ErrorOf(m_registry.CreateKey(path)), std::nullopt);
  EXPECT_EQ(storage::FindUnusableKey(m_registry), std::nullopt);
  ASSERT_EQ(support::RawDatabase(m_path).Execute(
                "INSERT INTO registry_key (parent_id, name, folded_name) SELECT max(id), 'below', "
                "'below' FROM registry_key"),
            0);
  EXPECT_TRUE(storage::FindUnusableKey(m_registry).value_or("").ends_with("\\1\\below"));
}

TEST_F(UnusableKey, IsNotReportedOfAStoreThatCannotBeRead) {
  sqlite::SqliteRegistry nowhere("/dev/null/registry.db");
  EXPECT_EQ(storage::FindUnusableKey(nowhere), std::nullopt);
}

}  // namespace
