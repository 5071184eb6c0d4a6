#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdint>

#include "backends/sqlite/sqlite_registry.h"
#include "tests/backends/sqlite/raw_database.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace sqlite {
namespace {

/// Counts the steps of the library's machine, in every connection that is opened meanwhile.
class StepCount {
 public:
  StepCount() {
    m_count = 0;
    EXPECT_EQ(sqlite3_auto_extension(AsExtension()), SQLITE_OK);
  }
  StepCount(const StepCount&) = delete;
  StepCount& operator=(const StepCount&) = delete;
  ~StepCount() { sqlite3_cancel_auto_extension(AsExtension()); }

  [[nodiscard]] static std::uint64_t Take() {
    const std::uint64_t count = m_count;
    m_count = 0;
    return count;
  }

 private:
  using Extension = void (*)();

  static Extension AsExtension() { return reinterpret_cast<Extension>(Watch); }
  static int Watch(sqlite3* database, char** /*message*/, const void* /*library*/) {
    sqlite3_progress_handler(database, 1, Count, nullptr);
    return SQLITE_OK;
  }
  static int Count(void* /*unused*/) {
    ++m_count;
    return 0;
  }

  static inline std::uint64_t m_count = 0;
};

/// The name of an item that is the `number`-th to be made.
std::u16string NameOf(std::uint32_t number) {
  const std::string digits = std::to_string(number);
  return {digits.begin(), digits.end()};
}

class SqliteRegistryWork : public testing::Test {
 protected:
  /// Makes that many subkeys and values of "k".
  void Fill(std::uint32_t count) {
    auto group = platform::RegistryGroup::Begin(m_registry);
    const auto key = m_registry.CreateKey(u"k").value();
    for (std::uint32_t i = 0; i < count; ++i) {
      ASSERT_EQ(support::ErrorOf(m_registry.CreateKey(u"k\\" + NameOf(m_made))), std::nullopt);
      ASSERT_EQ(support::ErrorOf(key->Set(NameOf(m_made), platform::RegistryType::kBinary, {})),
                std::nullopt);
      ++m_made;
    }
    ASSERT_EQ(support::ErrorOf(group->Commit()), std::nullopt);
  }
  /// The steps that it takes to enumerate all of them.
  [[nodiscard]] std::uint64_t CountSteps() {
    const auto key = m_registry.OpenKey(u"k").value();
    static_cast<void>(StepCount::Take());
    EXPECT_EQ(support::SubkeyNames(*key).size(), m_made);
    EXPECT_EQ(support::ValueNames(*key).size(), m_made);
    return StepCount::Take();
  }

  StepCount m_steps;
  support::TempFolder m_folder;
  SqliteRegistry m_registry{m_folder.Path() / kDatabaseName};
  std::uint32_t m_made = 0;
};

TEST_F(SqliteRegistryWork, OfAnEnumerationGrowsAsTheNumberOfItems) {
  Fill(500);
  const std::uint64_t few = CountSteps();
  EXPECT_GT(few, 500U);
  Fill(1500);
  EXPECT_LT(CountSteps(), 5 * few) << "Four times as many items.";
}

TEST_F(SqliteRegistryWork, IsSavedAlsoWhileItemsAreAdded) {
  Fill(500);
  const auto key = m_registry.OpenKey(u"k").value();
  std::u16string name;
  std::uint64_t steps = 0;
  for (std::uint32_t i = 0; i < 500; ++i) {
    static_cast<void>(StepCount::Take());
    EXPECT_EQ(key->EnumerateSubkey(i).value(), NameOf(i));
    steps += StepCount::Take();
    ASSERT_EQ(support::ErrorOf(key->Set(u"new", platform::RegistryType::kBinary, {})),
              std::nullopt);
  }
  constexpr std::uint64_t kForOneItem = 100;  // Counting from the first takes more than 500.
  EXPECT_LT(steps, 500 * kForOneItem);
}

TEST_F(SqliteRegistryWork, IsNotSavedAtTheCostOfWhatAnotherProcessDeletes) {
  Fill(5);
  const auto key = m_registry.OpenKey(u"k").value();
  std::u16string name;
  ASSERT_EQ(support::ErrorOf(key->EnumerateSubkey(0)), std::nullopt);
  ASSERT_EQ(support::ErrorOf(key->EnumerateSubkey(1)), std::nullopt);
  support::RawDatabase other(m_folder.Path() / kDatabaseName);
  ASSERT_EQ(other.Execute("DELETE FROM registry_key WHERE name = '0'"), SQLITE_OK);
  EXPECT_EQ(key->EnumerateSubkey(2).value(), u"3") << "2 moved to 1.";
  EXPECT_EQ(key->EnumerateSubkey(3).value(), u"4");
}

}  // namespace
}  // namespace sqlite
