#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <tuple>

#include "backends/sqlite/sqlite_registry.h"
#include "tests/backends/sqlite/faulty_file_layer.h"
#include "tests/backends/sqlite/raw_database.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace sqlite {

using platform::RegistryError;
using platform::RegistryGroup;
using platform::RegistryType;
using platform::Result;
using support::BytesOf;
using support::FaultyFileLayer;
using support::FileContent;
using support::KeyExists;
using support::Put;
using support::PutText;
using support::Utf16Bytes;
using testing::AnyOf;

namespace {

constexpr std::uint32_t kMostCalls = 200;

const std::u16string kOldText(3000, u'o');
const std::u16string kNewText(3000, u'n');

std::vector<std::byte> Terminated(const std::u16string& text) { return Utf16Bytes(text + u'\0'); }

class SqliteRegistryFaults : public testing::TestWithParam<FaultyFileLayer::Fault> {
 protected:
  [[nodiscard]] std::filesystem::path Database() const { return m_folder.Path() / kDatabaseName; }

  [[nodiscard]] RegistryOptions Options() const {
    return {{u"Software\\Initial"}, std::chrono::milliseconds(0), m_layer.Name()};
  }

  [[nodiscard]] FaultyFileLayer& Layer() { return m_layer; }

  [[nodiscard]] RegistryError Expected() const {
    return GetParam() == FaultyFileLayer::Fault::kDiskFull ? RegistryError::kFull
                                                           : RegistryError::kOther;
  }

  /// Runs `change` over a store with the old text, with its first writing call failing, then its
  /// second, and so on until none fails. `isDone` knows the new state from the old one.
  void FailEachCall(const std::function<Result<void, RegistryError>(SqliteRegistry&)>& change,
                    const std::function<bool(SqliteRegistry&)>& isDone) {
    std::uint32_t call = 1;
    for (; call < kMostCalls; ++call) {
      SCOPED_TRACE(call);
      std::filesystem::remove(Database());
      SqliteRegistry registry(Database(), Options());
      ASSERT_EQ(support::ErrorOf(PutText(registry, u"tags\\1", u"v", kOldText)), std::nullopt);
      Layer().FailFrom(call, GetParam());
      const auto error = support::ErrorOf(change(registry));
      Layer().Heal();
      if (!Layer().HasFailed()) {
        EXPECT_EQ(error, std::nullopt);
        EXPECT_TRUE(isDone(registry));
        break;
      }
      // A medium that cannot be forced to keep what it took is another error than a full one.
      EXPECT_THAT(error, AnyOf(Expected(), RegistryError::kOther));
      EXPECT_FALSE(isDone(registry));
      EXPECT_EQ(BytesOf(registry, u"tags\\1", u"v"), Terminated(kOldText));
      EXPECT_EQ(support::ErrorOf(change(registry)), std::nullopt)
          << "once there is room it works again";
      EXPECT_TRUE(isDone(registry));
    }
    EXPECT_GT(call, 1U) << "nothing was written at all";
    EXPECT_LT(call, kMostCalls);
  }

  /// As after a kill, but for the index, which is gone.
  void LeaveLogWithoutIndex() {
    const std::filesystem::path log = Database().native() + "-wal";
    const std::string database = FileContent(Database());
    {
      SqliteRegistry registry(Database(), Options());
      ASSERT_EQ(support::ErrorOf(PutText(registry, u"b", u"v", kNewText)), std::nullopt);
      std::filesystem::copy_file(log, m_folder.Path() / "log");
    }
    support::WriteFileContent(Database(), database);
    std::filesystem::rename(m_folder.Path() / "log", log);
  }

 private:
  support::TempFolder m_folder;
  FaultyFileLayer m_layer;
};

}  // namespace

TEST_P(SqliteRegistryFaults, AValueThatCannotBeWrittenLeavesTheOldOne) {
  FailEachCall(
      [](SqliteRegistry& registry) { return PutText(registry, u"tags\\1", u"v", kNewText); },
      [](SqliteRegistry& registry) {
        return BytesOf(registry, u"tags\\1", u"v") == Terminated(kNewText);
      });
}

TEST_P(SqliteRegistryFaults, AKeyThatCannotBeMadeLeavesNoneOfItsParents) {
  FailEachCall(
      [](SqliteRegistry& registry) {
        return registry.CreateKey(u"new\\a\\b\\c").map([](const auto& /*key*/) {});
      },
      [](SqliteRegistry& registry) { return KeyExists(registry, u"new"); });
}

TEST_P(SqliteRegistryFaults, AKeyThatCannotBeDeletedKeepsAllBelowIt) {
  FailEachCall([](SqliteRegistry& registry) { return registry.DeleteKey(u"tags"); },
               [](SqliteRegistry& registry) { return !KeyExists(registry, u"tags"); });
}

TEST_P(SqliteRegistryFaults, AGroupIsKeptWholeOrNotAtAll) {
  const auto change = [](SqliteRegistry& registry) -> Result<void, RegistryError> {
    auto group = platform::RegistryGroup::Begin(registry);
    if (!group) {
      return platform::Failure(group.error());
    }
    // A failure within the group shows at the latest when it is committed.
    std::ignore = PutText(registry, u"two\\a", u"v", kNewText);
    std::ignore = registry.DeleteKey(u"tags");
    std::ignore = PutText(registry, u"two\\b", u"v", kNewText);
    return group->Commit();
  };
  FailEachCall(change, [](SqliteRegistry& registry) {
    const bool isDone = KeyExists(registry, u"two");
    EXPECT_EQ(isDone, !KeyExists(registry, u"tags"));
    EXPECT_EQ(isDone, BytesOf(registry, u"two\\b", u"v") == Terminated(kNewText));
    return isDone;
  });
}

TEST_P(SqliteRegistryFaults, AGroupTooLargeForTheCacheIsStillKeptWholeOrNotAtAll) {
  const std::vector<std::byte> large(platform::kMaxValueBytes, std::byte{1});
  SqliteRegistry registry(Database(), Options());
  ASSERT_TRUE(KeyExists(registry, u"Software"));
  Layer().FailFrom(kMostCalls, GetParam());
  auto group = platform::RegistryGroup::Begin(registry);
  std::optional<RegistryError> error;
  for (const auto* const name : {u"1", u"2", u"3", u"4", u"5", u"6", u"7", u"8"}) {
    const auto result =
        support::ErrorOf(Put(registry, u"large", name, RegistryType::kBinary, large));
    if (!error) {
      error = result;
    }
    EXPECT_EQ(result, error) << "once doomed, every call of the group tells so";
  }
  EXPECT_EQ(error, Expected());
  EXPECT_EQ(support::ErrorOf(group->Commit()), error);
  Layer().Heal();
  EXPECT_FALSE(KeyExists(registry, u"large"));
  EXPECT_EQ(support::ErrorOf(registry.CreateKey(u"large")), std::nullopt);
}

TEST_P(SqliteRegistryFaults, AStoreThatCannotBeMadeIsMadeByALaterCall) {
  std::uint32_t call = 1;
  for (; call < kMostCalls; ++call) {
    SCOPED_TRACE(call);
    std::filesystem::remove(Database());
    SqliteRegistry registry(Database(), Options());
    Layer().FailFrom(call, GetParam());
    const auto error = support::ErrorOf(registry.OpenKey(u"Software\\Initial"));
    Layer().Heal();
    if (!Layer().HasFailed()) {
      EXPECT_EQ(error, std::nullopt);
      break;
    }
    // On a full medium a store that is made already opens for reading.
    if (!error) {
      EXPECT_EQ(GetParam(), FaultyFileLayer::Fault::kDiskFull);
      EXPECT_GT(std::filesystem::file_size(Database()), 0U);
    } else {
      EXPECT_THAT(error, AnyOf(Expected(), RegistryError::kOther));
    }
    EXPECT_EQ(support::ErrorOf(registry.CreateKey(u"Software\\Later")), std::nullopt);
    EXPECT_TRUE(KeyExists(registry, u"Software\\Initial"));
  }
  EXPECT_GT(call, 1U);
  EXPECT_LT(call, kMostCalls);
}

TEST_P(SqliteRegistryFaults, AStoreThatCannotEvenBeReadSaysWhyAndIsReadLater) {
  ASSERT_EQ(support::ErrorOf(PutText(*std::make_unique<SqliteRegistry>(Database(), Options()), u"a",
                                     u"v", kOldText)),
            std::nullopt);
  LeaveLogWithoutIndex();
  SqliteRegistry registry(Database(), Options());
  Layer().FailFrom(1, GetParam());
  EXPECT_EQ(support::ErrorOf(registry.OpenKey(u"a")), Expected())
      << "the index beside the log is made first";
  Layer().Heal();
  EXPECT_EQ(BytesOf(registry, u"a", u"v"), Terminated(kOldText));
}

INSTANTIATE_TEST_SUITE_P(Writing, SqliteRegistryFaults,
                         testing::Values(FaultyFileLayer::Fault::kDiskFull,
                                         FaultyFileLayer::Fault::kWriteError),
                         [](const auto& param) {
                           return param.param == FaultyFileLayer::Fault::kDiskFull ? "DiskFull"
                                                                                   : "WriteError";
                         });

namespace {

/// A store with one tag in a place that takes no writes.
class SqliteRegistryReadOnly : public testing::Test {
 protected:
  SqliteRegistry& MakeReadOnly(FaultyFileLayer::ReadOnly files) {
    const auto database = m_folder.Path() / kDatabaseName;
    EXPECT_EQ(support::ErrorOf(
                  PutText(*std::make_unique<SqliteRegistry>(database), u"tags\\1", u"v", u"text")),
              std::nullopt);
    m_layer.MakeReadOnly(files);
    const RegistryOptions options{{}, std::chrono::milliseconds(0), m_layer.Name()};
    m_registry = std::make_unique<SqliteRegistry>(database, options);
    return *m_registry;
  }

 private:
  support::TempFolder m_folder;
  FaultyFileLayer m_layer;
  std::unique_ptr<SqliteRegistry> m_registry;
};

}  // namespace

TEST_F(SqliteRegistryReadOnly, ADatabaseThatTakesNoWritesIsRead) {
  SqliteRegistry& registry = MakeReadOnly(FaultyFileLayer::ReadOnly::kDatabase);
  EXPECT_EQ(BytesOf(registry, u"tags\\1", u"v"), Terminated(u"text"));
  EXPECT_EQ(support::ErrorOf(PutText(registry, u"tags\\1", u"v", u"other")),
            RegistryError::kReadOnly);
  EXPECT_EQ(support::ErrorOf(registry.CreateKey(u"tags\\1")), std::nullopt)
      << "it is there already";
  EXPECT_EQ(support::ErrorOf(registry.CreateKey(u"tags\\2")), RegistryError::kReadOnly);
  EXPECT_EQ(support::ErrorOf(registry.DeleteKey(u"tags")), RegistryError::kReadOnly);
}

TEST_F(SqliteRegistryReadOnly, ThereAGroupServesForReading) {
  SqliteRegistry& registry = MakeReadOnly(FaultyFileLayer::ReadOnly::kDatabase);
  {
    auto group = platform::RegistryGroup::Begin(registry);
    ASSERT_EQ(support::ErrorOf(group), std::nullopt);
    EXPECT_EQ(BytesOf(registry, u"tags\\1", u"v"), Terminated(u"text"));
    EXPECT_EQ(support::ErrorOf(group->Commit()), std::nullopt);
  }
  auto group = platform::RegistryGroup::Begin(registry);
  EXPECT_EQ(support::ErrorOf(PutText(registry, u"tags\\1", u"v", u"other")),
            RegistryError::kReadOnly);
  EXPECT_EQ(support::ErrorOf(group->Commit()), RegistryError::kReadOnly);
}

TEST_F(SqliteRegistryReadOnly, IfNotEvenTheLogCanBeMadeTheStoreSaysSo) {
  SqliteRegistry& registry = MakeReadOnly(FaultyFileLayer::ReadOnly::kWholeMedium);
  EXPECT_EQ(support::ErrorOf(registry.OpenKey(u"tags")), RegistryError::kReadOnly);
  EXPECT_EQ(support::ErrorOf(registry.CreateKey(u"tags")), RegistryError::kReadOnly);
  EXPECT_EQ(support::ErrorOf(registry.BeginGroup()), RegistryError::kReadOnly);
}

TEST(SqliteRegistryWithoutRoomForAnIndex, DeletesAKeyAllTheSame) {
  const support::TempFolder folder;
  FaultyFileLayer layer;
  const auto database = folder.Path() / kDatabaseName;
  ASSERT_EQ(support::ErrorOf(
                PutText(*std::make_unique<SqliteRegistry>(database), u"tags\\1", u"v", u"text")),
            std::nullopt);
  layer.FailIndex();
  {
    SqliteRegistry registry(database, {{}, std::chrono::milliseconds(0), layer.Name()});
    EXPECT_EQ(BytesOf(registry, u"tags\\1", u"v"), Terminated(u"text"));
    EXPECT_EQ(support::ErrorOf(registry.DeleteKey(u"tags\\1")), std::nullopt);
    EXPECT_FALSE(KeyExists(registry, u"tags\\1"));
    EXPECT_FALSE(std::filesystem::exists(database.native() + "-shm")) << "What it took is free.";
    auto group = platform::RegistryGroup::Begin(registry);
    EXPECT_EQ(support::ErrorOf(PutText(registry, u"tags\\2", u"v", u"text")), std::nullopt);
    EXPECT_EQ(support::ErrorOf(group->Commit()), std::nullopt);
  }
  layer.Heal();
  SqliteRegistry registry(database);
  EXPECT_FALSE(KeyExists(registry, u"tags\\1"));
  EXPECT_TRUE(KeyExists(registry, u"tags\\2"));
}

TEST(SqliteRegistryWithoutRoomForAnIndex, TakesNoneOfTheRoomThatIsMadeMeanwhile) {
  const support::TempFolder folder;
  FaultyFileLayer layer;
  const auto database = folder.Path() / kDatabaseName;
  ASSERT_EQ(support::ErrorOf(
                PutText(*std::make_unique<SqliteRegistry>(database), u"tags\\1", u"v", u"text")),
            std::nullopt);
  layer.FailIndex();
  SqliteRegistry registry(database, {{}, std::chrono::milliseconds(0), layer.Name()});
  EXPECT_EQ(BytesOf(registry, u"tags\\1", u"v"), Terminated(u"text"));
  layer.Heal();
  {
    auto group = platform::RegistryGroup::Begin(registry);
    EXPECT_EQ(BytesOf(registry, u"tags\\1", u"v"), Terminated(u"text"));
    EXPECT_EQ(support::ErrorOf(group->Commit()), std::nullopt);
  }
  EXPECT_EQ(support::ErrorOf(registry.DeleteKey(u"tags\\1")), std::nullopt);
  EXPECT_FALSE(std::filesystem::exists(database.native() + "-shm"));
}

TEST(SqliteRegistryWithoutRoomForAnIndex, LeavesADatabaseThatAnotherHasOpen) {
  const support::TempFolder folder;
  FaultyFileLayer layer;
  const auto database = folder.Path() / kDatabaseName;
  SqliteRegistry other(database);
  ASSERT_EQ(support::ErrorOf(PutText(other, u"tags\\1", u"v", u"text")), std::nullopt);
  layer.FailIndex();
  SqliteRegistry registry(database, {{}, std::chrono::milliseconds(0), layer.Name()});
  const bool isDeleted = registry.DeleteKey(u"tags\\1").has_value();
  EXPECT_EQ(KeyExists(other, u"tags\\1"), !isDeleted);
  EXPECT_EQ(support::ErrorOf(PutText(other, u"tags\\1", u"v", u"other")), std::nullopt);
  EXPECT_TRUE(std::filesystem::exists(database.native() + "-shm")) << "It is the other's.";
}

}  // namespace sqlite
