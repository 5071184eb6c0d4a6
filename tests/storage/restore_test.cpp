#include "storage/restore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "storage/backup.h"
#include "storage/device_paths.h"
#include "storage/folders.h"
#include "storage/registry_keys.h"
#include "storage/tag_record.h"
#include "storage/tag_store.h"
#include "storage/trash_names.h"
#include "tests/machine/memory_file_system.h"
#include "tests/machine/memory_registry.h"
#include "tests/machine/simulation.h"
#include "tests/support/file_bytes.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/watched_file_system.h"

namespace storage {
namespace {

using support::ErrorOf;
using support::Failing;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char16_t* kBackup = u"\\b.tar";

/// A store in memory.
struct Store {
  machine::MemoryFileSystem files;
  machine::MemoryRegistry registry;

  void PutTag(std::u16string_view name, const std::string& wave = "wave", std::int32_t oid = -17) {
    ASSERT_TRUE(CreateStoreFolders(files));
    ASSERT_TRUE(support::WriteWhole(files, WavePath(name), wave));
    ASSERT_TRUE(support::WriteWhole(files, TemplatePath(name), "template of " + wave));
    ASSERT_TRUE(TagStore(files, registry).WriteEntry(name, oid, u"Mobile"));
  }
  [[nodiscard]] bool HasTag(std::u16string_view name, const std::string& wave = "wave") {
    return support::ReadWhole(files, WavePath(name)) == wave &&
           support::ReadWhole(files, TemplatePath(name)) == "template of " + wave &&
           TagStore(files, registry).ReadEntry(name).has_value();
  }
  [[nodiscard]] std::vector<std::u16string> Names() {
    return TagStore(files, registry).ListNames().value().names;
  }
  void PutVersion(std::u16string_view version) {
    ASSERT_TRUE(support::PutText(registry, kSetupKey, kMathVersionValue, version));
  }
  [[nodiscard]] std::vector<std::byte> Version() {
    return support::BytesOf(registry, kSetupKey, kMathVersionValue);
  }
};

class RestoreTest : public testing::Test {
 protected:
  /// Backs up `from`, and puts the backup next to the store here.
  void BackUp(Store& from) {
    ASSERT_TRUE(WriteBackup(from.files, from.registry, m_clock, kBackup, BackupScope::kAll));
    ASSERT_TRUE(support::WriteWhole(m_here.files, kBackup,
                                    support::ReadWhole(from.files, kBackup).value()));
  }
  RestoreOutcome RestoreHere(Replacing replacing = Replacing::kNo) {
    return RestoreWith(m_here.files, replacing);
  }
  RestoreOutcome RestoreWith(platform::FileSystem& files, Replacing replacing) {
    const auto archive = m_here.files.Open(kBackup, {}).value();
    const auto backup = ReadBackup(*archive).value();
    const auto plan = PlanRestore(m_here.files, m_here.registry, *archive, backup, m_contactHere);
    EXPECT_TRUE(plan);
    return Restore(files, m_here.registry, m_clock, *archive, backup, *plan, replacing,
                   [](std::u16string_view name) { return u"text of " + std::u16string(name); });
  }
  [[nodiscard]] std::vector<TrashedTag> Trash() {
    return TagTrash(m_here.files, m_here.registry, m_clock).List().value();
  }

  Store m_there;
  std::optional<Store> m_store{std::in_place};
  Store& m_here = *m_store;
  machine::Simulation m_clock;
  ContactHere m_contactHere = [](std::int32_t oid) { return oid; };
};

TEST_F(RestoreTest, AnEmptyStoreGetsEverything) {
  m_there.PutTag(u"100");
  m_there.PutTag(u"200", "another");
  m_there.PutVersion(u"3");
  ASSERT_TRUE(support::PutText(m_there.registry, kDialerKey, kComPortValue, u"COM7:"));
  ASSERT_TRUE(support::WriteWhole(m_there.files, kLanguageFile, "texts"));
  BackUp(m_there);
  const RestoreOutcome outcome = RestoreHere();
  EXPECT_THAT(outcome.tags, ElementsAre(RestoreFate::kRestored, RestoreFate::kRestored));
  EXPECT_EQ(outcome.connection, RestoreFate::kRestored);
  EXPECT_EQ(outcome.languageFile, RestoreFate::kRestored);
  EXPECT_TRUE(m_here.HasTag(u"100"));
  EXPECT_TRUE(m_here.HasTag(u"200", "another"));
  EXPECT_EQ(support::ReadWhole(m_here.files, kLanguageFile), "texts");
  EXPECT_EQ(support::BytesOf(m_here.registry, kDialerKey, kComPortValue),
            support::BytesOf(m_there.registry, kDialerKey, kComPortValue));
  EXPECT_EQ(m_here.Version(), m_there.Version());
}

TEST_F(RestoreTest, WhatIsHereAlreadyStays) {
  m_there.PutTag(u"100");
  ASSERT_TRUE(support::WriteWhole(m_there.files, kLanguageFile, "texts"));
  BackUp(m_there);
  static_cast<void>(RestoreHere());
  support::Steps steps;
  support::WatchedFileSystem watched(m_here.files, steps);
  const RestoreOutcome outcome = RestoreWith(watched, Replacing::kYes);
  EXPECT_THAT(outcome.tags, ElementsAre(RestoreFate::kSame));
  EXPECT_EQ(outcome.languageFile, RestoreFate::kSame);
  EXPECT_THAT(steps, IsEmpty()) << "No file is touched.";
  EXPECT_THAT(Trash(), IsEmpty());
}

TEST_F(RestoreTest, WhatDiffersStaysUnlessItMayBeReplaced) {
  m_there.PutTag(u"100", "of the backup");
  m_here.PutTag(u"100", "of today");
  m_here.PutTag(u"300", "only here");
  ASSERT_TRUE(support::WriteWhole(m_there.files, kLanguageFile, "texts"));
  ASSERT_TRUE(support::WriteWhole(m_here.files, kLanguageFile, "other texts"));
  BackUp(m_there);
  RestoreOutcome outcome = RestoreHere();
  EXPECT_THAT(outcome.tags, ElementsAre(RestoreFate::kKept));
  EXPECT_EQ(outcome.languageFile, RestoreFate::kKept);
  EXPECT_TRUE(m_here.HasTag(u"100", "of today"));
  EXPECT_EQ(support::ReadWhole(m_here.files, kLanguageFile), "other texts");

  outcome = RestoreHere(Replacing::kYes);
  EXPECT_THAT(outcome.tags, ElementsAre(RestoreFate::kReplaced));
  EXPECT_EQ(outcome.languageFile, RestoreFate::kReplaced);
  EXPECT_TRUE(m_here.HasTag(u"100", "of the backup"));
  EXPECT_TRUE(m_here.HasTag(u"300", "only here")) << "A tag of no backup is never touched.";
  EXPECT_EQ(support::ReadWhole(m_here.files, kLanguageFile), "texts");

  ASSERT_THAT(Trash(), SizeIs(1));
  EXPECT_EQ(Trash()[0].item.text, u"text of 100");
  EXPECT_EQ(Trash()[0].item.by, DeletionReason::kReplace);
  ASSERT_TRUE(TagStore(m_here.files, m_here.registry).Delete(u"100"));
  EXPECT_TRUE(TagTrash(m_here.files, m_here.registry, m_clock).Restore(Trash()[0]));
  EXPECT_TRUE(m_here.HasTag(u"100", "of today")) << "The replaced tag comes back as it was.";

  const auto saved = m_here.files.Open(outcome.saved, {}).value();
  const auto settings = ReadBackup(*saved);
  ASSERT_TRUE(settings) << "What was replaced of the settings is a backup itself.";
  EXPECT_TRUE(settings->languageFile);
  EXPECT_THAT(settings->tags, IsEmpty());
}

TEST_F(RestoreTest, SavedSettingsGoAfterThirtyDays) {
  ASSERT_TRUE(CreateStoreFolders(m_there.files) && CreateStoreFolders(m_here.files));
  ASSERT_TRUE(support::WriteWhole(m_there.files, kLanguageFile, "texts"));
  ASSERT_TRUE(support::WriteWhole(m_here.files, kLanguageFile, "other texts"));
  BackUp(m_there);
  const std::u16string saved = RestoreHere(Replacing::kYes).saved;
  const TagTrash trash(m_here.files, m_here.registry, m_clock);
  trash.Recover();
  EXPECT_TRUE(m_here.files.Find(saved));
  m_clock.Sleep(30U * 24 * 60 * 60 * 1000 + 1000);
  trash.Recover();
  EXPECT_FALSE(m_here.files.Find(saved));
}

TEST_F(RestoreTest, TheContactOfATagIsTheOneOfThisStore) {
  m_there.PutTag(u"100", "wave", 7);
  m_there.PutTag(u"200", "wave", 8);
  BackUp(m_there);
  m_contactHere = [](std::int32_t oid) {
    return oid == 7 ? std::optional<std::int32_t>(70) : std::nullopt;
  };
  EXPECT_THAT(RestoreHere().tags,
              ElementsAre(RestoreFate::kRestored, RestoreFate::kContactElsewhere));
  EXPECT_EQ(TagStore(m_here.files, m_here.registry).ReadEntry(u"100")->oid, 70);
  EXPECT_THAT(m_here.Names(), ElementsAre(u"100"));
  EXPECT_THAT(RestoreHere().tags, ElementsAre(RestoreFate::kSame, RestoreFate::kContactElsewhere));
}

TEST_F(RestoreTest, ThereAreNeverMoreThanAHundredTags) {
  for (int i = 0; i < kMaxTags - 1; ++i) {
    m_here.PutTag(TagNameOfTickCount(static_cast<std::uint32_t>(1000 + i)));
  }
  m_there.PutTag(u"1");
  m_there.PutTag(u"2");
  BackUp(m_there);
  EXPECT_THAT(RestoreHere().tags, ElementsAre(RestoreFate::kRestored, RestoreFate::kTooMany));
  EXPECT_THAT(m_here.Names(), SizeIs(kMaxTags));
  EXPECT_FALSE(support::ReadWhole(m_here.files, WavePath(u"2")));
}

TEST_F(RestoreTest, ANewTagTakesNoPlaceFromOneThatIsReplaced) {
  for (int i = 0; i < kMaxTags; ++i) {
    m_here.PutTag(TagNameOfTickCount(static_cast<std::uint32_t>(1000 + i)));
  }
  m_there.PutTag(u"1");
  m_there.PutTag(u"1000", "of the backup");
  BackUp(m_there);
  EXPECT_THAT(RestoreHere(Replacing::kYes).tags,
              ElementsAre(RestoreFate::kTooMany, RestoreFate::kReplaced));
  EXPECT_THAT(m_here.Names(), SizeIs(kMaxTags));
}

TEST_F(RestoreTest, ATagThatACompanionReadsStaysWhole) {
  m_there.PutTag(u"100", "of the backup");
  m_here.PutTag(u"100", "of today");
  BackUp(m_there);
  {
    const auto read =
        m_here.files
            .Open(TemplatePath(u"100"), {platform::FileAccess::kRead, platform::FileShare::kRead,
                                         platform::FileCreation::kOpenExisting})
            .value();
    EXPECT_THAT(RestoreHere(Replacing::kYes).tags, ElementsAre(RestoreFate::kInUse));
  }
  EXPECT_TRUE(m_here.HasTag(u"100", "of today"));
  EXPECT_THAT(Trash(), IsEmpty());
}

TEST_F(RestoreTest, TemplatesOfOtherMathematicsAreComputedAgainByThePage) {
  m_there.PutTag(u"100");
  m_there.PutVersion(u"2");
  m_here.PutTag(u"300");
  m_here.PutVersion(u"3");
  BackUp(m_there);
  static_cast<void>(RestoreHere());
  EXPECT_THAT(m_here.Version(), IsEmpty()) << "The page takes that for other mathematics.";
}

TEST_F(RestoreTest, TheVersionOfTheMathematicsStaysIfItIsTheSame) {
  m_there.PutTag(u"100");
  m_there.PutVersion(u"3");
  m_here.PutTag(u"300");
  ASSERT_TRUE(support::Put(m_here.registry, kSetupKey, kMathVersionValue,
                           platform::RegistryType::kString, ToTagValue(u"3")));
  BackUp(m_there);
  static_cast<void>(RestoreHere());
  EXPECT_EQ(m_here.Version(), ToTagValue(u"3")) << "The number counts, and not the bytes.";
}

TEST_F(RestoreTest, ValuesOfTheConnectionThatTheBackupDoesNotHaveStay) {
  ASSERT_TRUE(support::PutText(m_there.registry, kDialerKey, kComPortValue, u"COM7:"));
  ASSERT_TRUE(support::PutText(m_here.registry, kDialerKey, kComPortValue, u"COM1:"));
  ASSERT_TRUE(support::PutText(m_here.registry, kDialerKey, u"Volume", u"5"));
  BackUp(m_there);
  EXPECT_EQ(RestoreHere().connection, RestoreFate::kKept);
  EXPECT_EQ(RestoreHere(Replacing::kYes).connection, RestoreFate::kReplaced);
  EXPECT_FALSE(support::BytesOf(m_here.registry, kDialerKey, u"Volume").empty());
  EXPECT_EQ(RestoreHere().connection, RestoreFate::kSame);
}

TEST_F(RestoreTest, AFileOfNoTagGoesToTheTrashBeforeATagTakesItsName) {
  m_there.PutTag(u"100");
  ASSERT_TRUE(CreateStoreFolders(m_here.files));
  ASSERT_TRUE(support::WriteWhole(m_here.files, WavePath(u"100"), "somebody's"));
  BackUp(m_there);
  EXPECT_THAT(RestoreHere().tags, ElementsAre(RestoreFate::kKept));
  EXPECT_EQ(support::ReadWhole(m_here.files, WavePath(u"100")), "somebody's");
  EXPECT_THAT(RestoreHere(Replacing::kYes).tags, ElementsAre(RestoreFate::kReplaced));
  EXPECT_TRUE(m_here.HasTag(u"100"));
  EXPECT_THAT(Trash(), SizeIs(1));
}

TEST_F(RestoreTest, ATagWhoseFileIsInUseStays) {
  m_there.PutTag(u"100", "of the backup");
  m_here.PutTag(u"100", "of today");
  BackUp(m_there);
  const auto archive = m_here.files.Open(kBackup, {}).value();
  const auto backup = ReadBackup(*archive).value();
  const auto plan = PlanRestore(m_here.files, m_here.registry, *archive, backup, m_contactHere);
  {
    const auto held = m_here.files.Open(WavePath(u"100"), {}).value();
    EXPECT_EQ(ErrorOf(PlanRestore(m_here.files, m_here.registry, *archive, backup, m_contactHere)),
              u"100");
    EXPECT_THAT(Restore(m_here.files, m_here.registry, m_clock, *archive, backup, *plan,
                        Replacing::kYes, [](auto name) { return std::u16string(name); })
                    .tags,
                ElementsAre(RestoreFate::kInUse));
  }
  EXPECT_TRUE(m_here.HasTag(u"100", "of today"));
}

TEST_F(RestoreTest, AFailureAtAnyCallLosesNothing) {
  m_there.PutTag(u"100", "of the backup");
  m_there.PutTag(u"200", "new");
  BackUp(m_there);
  bool hasFailed = true;
  for (std::size_t call = 1; hasFailed; ++call) {
    for (const auto error : {platform::FileError::kDiskFull, platform::FileError::kOther}) {
      for (const Failing failing : {Failing::kOnce, Failing::kFromThenOn, Failing::kPowerFailure}) {
        const std::string backup = support::ReadWhole(m_here.files, kBackup).value();
        m_store.emplace();
        ASSERT_TRUE(support::WriteWhole(m_here.files, kBackup, backup));
        m_here.PutTag(u"100", "of today");
        support::WatchedFileSystem watched(m_here.files);
        watched.FailCall(call, failing, error);
        const RestoreOutcome outcome = RestoreWith(watched, Replacing::kYes);
        hasFailed = watched.HasFailed();
        const TagTrash trash(m_here.files, m_here.registry, m_clock);
        trash.Recover();
        if (!m_here.HasTag(u"100", "of today")) {
          const auto trashed = Trash();
          ASSERT_THAT(trashed, testing::Not(IsEmpty())) << call;
          const bool hasNew = m_here.HasTag(u"100", "of the backup");
          EXPECT_EQ(hasNew, outcome.tags[0] == RestoreFate::kReplaced) << call;
          static_cast<void>(TagStore(m_here.files, m_here.registry).Delete(u"100"));
          EXPECT_TRUE(trash.Restore(trashed[0])) << call;
          EXPECT_TRUE(m_here.HasTag(u"100", "of today")) << call;
        }
        EXPECT_EQ(m_here.HasTag(u"200", "new"), outcome.tags[1] == RestoreFate::kRestored) << call;
      }
    }
  }
}

TEST_F(RestoreTest, ABackupThatCannotBeWrittenLeavesTheEarlierOne) {
  m_there.PutTag(u"100");
  ASSERT_TRUE(support::WriteWhole(m_there.files, kBackup, "the earlier one"));
  bool hasFailed = true;
  for (std::size_t call = 1; hasFailed; ++call) {
    support::WatchedFileSystem watched(m_there.files);
    watched.FailCall(call, Failing::kFromThenOn, platform::FileError::kDiskFull);
    const auto made = WriteBackup(watched, m_there.registry, m_clock, kBackup, BackupScope::kAll);
    hasFailed = watched.HasFailed();
    ASSERT_EQ(made.has_value(), !hasFailed) << call;
    if (hasFailed) {
      ASSERT_EQ(support::ReadWhole(m_there.files, kBackup), "the earlier one") << call;
    }
  }
}

TEST_F(RestoreTest, ABackupNamesATagThatIsInUse) {
  m_there.PutTag(u"100");
  const auto held = m_there.files.Open(WavePath(u"100"), {}).value();
  const auto made =
      WriteBackup(m_there.files, m_there.registry, m_clock, kBackup, BackupScope::kAll);
  ASSERT_FALSE(made);
  EXPECT_EQ(made.error().kind, BackupFailure::Kind::kTag);
  EXPECT_EQ(made.error().tag, u"100");
}

TEST_F(RestoreTest, ABackupNamesTheTagsThatItCannotHold) {
  m_there.PutTag(u"100");
  ASSERT_TRUE(TagStore(m_there.files, m_there.registry).WriteEntry(u"a/b", 1, u"Home"));
  const auto made =
      WriteBackup(m_there.files, m_there.registry, m_clock, kBackup, BackupScope::kAll);
  ASSERT_TRUE(made);
  EXPECT_EQ(made->tagCount, 1U);
  EXPECT_THAT(made->leftOut, ElementsAre(u"a/b"));
}

}  // namespace
}  // namespace storage
