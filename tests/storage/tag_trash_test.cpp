#include "storage/tag_trash.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "storage/deletion.h"
#include "storage/device_paths.h"
#include "storage/folders.h"
#include "storage/registry_keys.h"
#include "storage/tag_record.h"
#include "storage/tag_store.h"
#include "tests/machine/memory_file_system.h"
#include "tests/machine/memory_registry.h"
#include "tests/machine/simulation.h"
#include "tests/support/file_bytes.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/watched_file_system.h"
#include "tests/support/watched_registry.h"

namespace storage {

using platform::FileError;
using platform::RegistryError;
using support::Failing;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::uint32_t kDay = 24U * 60 * 60 * 1000;

std::u16string KeyOfTag(std::u16string_view name) {
  return std::u16string(kTagKey).append(u"\\").append(name);
}

class TagTrashTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(CreateStoreFolders(m_files)); }

  void PutTag(std::u16string_view name, std::size_t waveBytes = 1000) {
    ASSERT_TRUE(support::WriteWhole(m_files, WavePath(name), std::string(waveBytes, 'w')));
    ASSERT_TRUE(support::WriteWhole(m_files, TemplatePath(name), "template"));
    ASSERT_EQ(support::ErrorOf(TagStore(m_files, m_registry).WriteEntry(name, -17, u"Mobile")),
              std::nullopt);
  }

  /// Deletes a tag as a user of the store does: the copy first, then the parts in their order.
  platform::Result<void, ItemError> Delete(platform::FileSystem& files, std::u16string_view name,
                                           DeletionReason by = DeletionReason::kDelete) {
    const TagTrash trash(files, m_registry, m_clock);
    Deletion deletion(trash, by);
    const auto parts = FindParts(files, m_registry, name);
    if (!parts) {
      return platform::Failure(ItemError::kStoreUnread);
    }
    const auto kept = deletion.Keep(*parts, u"Ann Lee 555 M");
    if (kept && deletion.Seal()) {
      static_cast<void>(TagStore(files, m_registry).Delete(name));
    }
    return kept;
  }
  platform::Result<void, ItemError> Delete(std::u16string_view name) {
    return Delete(m_files, name);
  }

  [[nodiscard]] std::vector<TrashedTag> List() const { return m_trash.List().value(); }
  [[nodiscard]] std::vector<std::u16string> Names() const {
    std::vector<std::u16string> names;
    for (const TrashedTag& tag : List()) {
      names.push_back(tag.item.parts.name);
    }
    return names;
  }
  [[nodiscard]] std::vector<std::u16string> TrashFiles() {
    return support::FindNames(m_files, std::u16string(kTrashFolder) + u"\\*");
  }

  [[nodiscard]] bool HasTag(std::u16string_view name) {
    return support::ReadWhole(m_files, WavePath(name)) == std::string(1000, 'w') &&
           support::ReadWhole(m_files, TemplatePath(name)) == "template" &&
           support::BytesOf(m_registry, KeyOfTag(name), u"contact") == ToTagValue(u"-17") &&
           support::BytesOf(m_registry, KeyOfTag(name), u"phone type") == ToTagValue(u"Mobile");
  }
  [[nodiscard]] bool HasNothingOf(std::u16string_view name) {
    return !support::ReadWhole(m_files, WavePath(name)) &&
           !support::ReadWhole(m_files, TemplatePath(name)) &&
           !support::KeyExists(m_registry, KeyOfTag(name));
  }

  /// The store as a killed process left it, after the next one looked after it.
  void ExpectWholeOrInTrash(std::u16string_view name) {
    m_trash.Recover();
    if (HasTag(name)) {
      EXPECT_THAT(Names(), IsEmpty());
    } else {
      EXPECT_TRUE(HasNothingOf(name));
      ASSERT_THAT(Names(), ElementsAre(name));
      EXPECT_TRUE(m_trash.Restore(List().front()));
      EXPECT_TRUE(HasTag(name));
    }
    EXPECT_THAT(TrashFiles(), IsEmpty());
  }

  machine::MemoryFileSystem m_files;
  machine::MemoryRegistry m_registry;
  machine::Simulation m_clock;
  TagTrash m_trash{m_files, m_registry, m_clock};
};

}  // namespace

TEST_F(TagTrashTest, WithoutADeletionIsEmptyAndMakesNoFolder) {
  EXPECT_THAT(List(), IsEmpty());
  m_trash.Recover();
  EXPECT_TRUE(m_trash.Empty());
  EXPECT_EQ(support::ErrorOf(m_files.Find(kTrashFolder)), FileError::kNotFound);
}

TEST_F(TagTrashTest, ListsWhatWasDeletedWithItsTextItsTimeAndItsReason) {
  PutTag(u"100");
  ASSERT_TRUE(Delete(u"100"));
  EXPECT_TRUE(HasNothingOf(u"100"));
  const auto tags = List();
  ASSERT_EQ(tags.size(), 1U);
  EXPECT_EQ(tags[0].item.parts.name, u"100");
  EXPECT_EQ(tags[0].item.text, u"Ann Lee 555 M");
  EXPECT_EQ(tags[0].item.deletedAt, machine::Simulation::kStartTime);
  EXPECT_EQ(tags[0].item.by, DeletionReason::kDelete);
  EXPECT_THAT(TrashFiles(), ElementsAre(u"20261121T221005Z-01-0001.tar")) << "No mark is left.";
}

TEST_F(TagTrashTest, ListsTheLatestDeletionFirst) {
  for (const auto* const name : {u"100", u"200", u"300"}) {
    PutTag(name);
    ASSERT_TRUE(Delete(name));
    m_clock.Sleep(name == std::u16string_view(u"100") ? 0 : 1000);
  }
  EXPECT_THAT(Names(), ElementsAre(u"300", u"200", u"100"));
  EXPECT_NE(List()[1].deletion, List()[2].deletion) << "Two deletions of one second are two.";
}

TEST_F(TagTrashTest, RestoresATagByteForByteAndForgetsIt) {
  PutTag(u"100");
  ASSERT_EQ(
      support::ErrorOf(support::Put(m_registry, KeyOfTag(u"100"), u"Another's \"value\"",
                                    platform::RegistryType::kBinary, {std::byte{1}, std::byte{0}})),
      std::nullopt);
  ASSERT_TRUE(Delete(u"100"));
  ASSERT_TRUE(m_trash.Restore(List().front()));
  EXPECT_TRUE(HasTag(u"100"));
  EXPECT_EQ(support::BytesOf(m_registry, KeyOfTag(u"100"), u"Another's \"value\""),
            (std::vector{std::byte{1}, std::byte{0}}));
  EXPECT_THAT(TrashFiles(), IsEmpty());
}

TEST_F(TagTrashTest, RestoresIntoAStoreWithoutFolders) {
  PutTag(u"100");
  machine::MemoryFileSystem files;
  machine::MemoryRegistry registry;
  const TagTrash trash(files, registry, m_clock);
  ASSERT_TRUE(Delete(u"100"));
  const std::u16string path = std::u16string(kTrashFolder) + u"\\" + List().front().file;
  ASSERT_TRUE(files.PutFile(path, *m_files.GetFile(path)));
  EXPECT_TRUE(trash.Restore(List().front()));
  EXPECT_EQ(support::ReadWhole(files, TemplatePath(u"100")), "template");
}

TEST_F(TagTrashTest, KeepsATagWithoutFilesAndAFileWithoutATag) {
  ASSERT_EQ(support::ErrorOf(TagStore(m_files, m_registry).WriteEntry(u"100", 1, u"Car")),
            std::nullopt);
  ASSERT_TRUE(support::WriteWhole(m_files, WavePath(u"orphan"), "w"));
  ASSERT_TRUE(Delete(u"100"));
  ASSERT_TRUE(Delete(u"orphan"));
  EXPECT_TRUE(HasNothingOf(u"100") && HasNothingOf(u"orphan"));
  for (const TrashedTag& tag : List()) {
    EXPECT_TRUE(m_trash.Restore(tag));
  }
  EXPECT_TRUE(support::KeyExists(m_registry, KeyOfTag(u"100")));
  EXPECT_EQ(support::ReadWhole(m_files, WavePath(u"orphan")), "w");
}

TEST_F(TagTrashTest, KeepsAnotherProgramsEntryWhoseNameIsNoFilesName) {
  const std::u16string name = u"../../outside";
  ASSERT_EQ(support::ErrorOf(TagStore(m_files, m_registry).WriteEntry(name, 1, u"Car")),
            std::nullopt);
  ASSERT_TRUE(Delete(name));
  ASSERT_THAT(Names(), ElementsAre(name));
  EXPECT_TRUE(m_trash.Restore(List().front()));
  EXPECT_TRUE(support::KeyExists(m_registry, KeyOfTag(name)));
  EXPECT_THAT(TrashFiles(), IsEmpty());
}

TEST_F(TagTrashTest, RestoresNothingOverWhatIsThere) {
  PutTag(u"100");
  ASSERT_TRUE(Delete(u"100"));
  ASSERT_TRUE(support::WriteWhole(m_files, WavePath(u"100"), "new"));
  EXPECT_EQ(support::ErrorOf(m_trash.Restore(List().front())), RestoreError::kExists);
  ASSERT_TRUE(m_files.Delete(WavePath(u"100")));
  ASSERT_EQ(support::ErrorOf(TagStore(m_files, m_registry).WriteEntry(u"100", 5, u"Car")),
            std::nullopt);
  EXPECT_EQ(support::ErrorOf(m_trash.Restore(List().front())), RestoreError::kExists);
  EXPECT_FALSE(support::ReadWhole(m_files, TemplatePath(u"100")));
  EXPECT_THAT(Names(), ElementsAre(u"100"));
}

TEST_F(TagTrashTest, RestoresNoMoreThanOneHundredTags) {
  PutTag(u"9999");
  ASSERT_TRUE(Delete(u"9999"));
  for (std::uint32_t i = 0; i < 100; ++i) {
    ASSERT_EQ(support::ErrorOf(
                  TagStore(m_files, m_registry).WriteEntry(TagNameOfTickCount(i), 1, u"Car")),
              std::nullopt);
  }
  EXPECT_EQ(support::ErrorOf(m_trash.Restore(List().front())), RestoreError::kTooMany);
  EXPECT_THAT(Names(), ElementsAre(u"9999"));
  ASSERT_EQ(support::ErrorOf(TagStore(m_files, m_registry).DeleteEntry(u"7")), std::nullopt);
  EXPECT_TRUE(m_trash.Restore(List().front()));
}

TEST_F(TagTrashTest, ADeletionThatIsKilledAnywhereLosesNothing) {
  for (std::size_t call = 1;; ++call) {
    SCOPED_TRACE(call);
    PutTag(u"100");
    support::WatchedFileSystem failing(m_files);
    failing.FailCall(call, Failing::kPowerFailure);
    static_cast<void>(Delete(failing, u"100"));
    ExpectWholeOrInTrash(u"100");
    ASSERT_TRUE(HasTag(u"100"));
    if (!failing.HasFailed()) {
      ASSERT_GT(call, 10U);
      break;
    }
  }
}

TEST_F(TagTrashTest, ADeletionWhoseCallsFailLosesNothing) {
  for (const Failing failure : {Failing::kOnce, Failing::kFromThenOn}) {
    for (std::size_t call = 1;; ++call) {
      SCOPED_TRACE(call);
      PutTag(u"100");
      support::WatchedFileSystem failing(m_files);
      failing.FailCall(call, failure);
      static_cast<void>(Delete(failing, u"100"));
      ExpectWholeOrInTrash(u"100");
      if (!failing.HasFailed()) {
        break;
      }
    }
  }
}

TEST_F(TagTrashTest, ARecoveryTakesAwayACopyThatWasKilledWhileItWasWritten) {
  PutTag(u"1");
  ASSERT_TRUE(Delete(u"1"));
  const std::vector<std::u16string> whole = TrashFiles();
  ASSERT_TRUE(support::WriteWhole(
      m_files, InTrash(std::u16string(platform::kUnfinishedPrefix) + u"k3j2"), "half of a copy"));
  m_trash.Recover();
  EXPECT_EQ(TrashFiles(), whole);
}

TEST_F(TagTrashTest, ARecoveryWhoseCallsFailLosesNothing) {
  for (const Failing failure : {Failing::kOnce, Failing::kFromThenOn, Failing::kPowerFailure}) {
    for (std::size_t call = 1;; ++call) {
      SCOPED_TRACE(call);
      PutTag(u"100");
      support::WatchedFileSystem failing(m_files);
      {
        const TagTrash trash(failing, m_registry, m_clock);
        Deletion deletion(trash, DeletionReason::kDelete);
        ASSERT_TRUE(deletion.Keep(FindParts(failing, m_registry, u"100").value(), u""));
        ASSERT_TRUE(failing.Delete(WavePath(u"100")));
        failing.FailCall(1, Failing::kPowerFailure);
      }
      failing.FailCall(call, failure);
      TagTrash(failing, m_registry, m_clock).Recover();
      const bool hasFailed = failing.HasFailed();
      ExpectWholeOrInTrash(u"100");
      ASSERT_TRUE(HasTag(u"100"));
      if (!hasFailed) {
        ASSERT_GT(call, 8U);
        break;
      }
    }
  }
}

TEST_F(TagTrashTest, ARestorationThatIsKilledAnywhereLosesNothing) {
  PutTag(u"100");
  ASSERT_TRUE(Delete(u"100"));
  for (std::size_t call = 1;; ++call) {
    SCOPED_TRACE(call);
    support::WatchedFileSystem failing(m_files);
    const TagTrash trash(failing, m_registry, m_clock);
    const TrashedTag tag = List().front();
    failing.FailCall(call, Failing::kPowerFailure);
    static_cast<void>(trash.Restore(tag));
    ExpectWholeOrInTrash(u"100");
    ASSERT_TRUE(HasTag(u"100"));
    if (!failing.HasFailed()) {
      ASSERT_GT(call, 10U);
      break;
    }
    ASSERT_TRUE(Delete(u"100"));
  }
}

TEST_F(TagTrashTest, ARestorationThatFailsLeavesTheStoreAsItWas) {
  PutTag(u"100");
  ASSERT_TRUE(Delete(u"100"));
  support::WatchedRegistry failing(m_registry);
  const TagTrash trash(m_files, failing, m_clock);
  bool hasFailed = true;
  for (std::size_t call = 1; hasFailed; ++call) {
    SCOPED_TRACE(call);
    failing.FailCall(call, Failing::kOnce, RegistryError::kFull);
    const auto restored = trash.Restore(List().front());
    hasFailed = failing.HasFailed();
    if (restored) {
      EXPECT_TRUE(HasTag(u"100"));
      break;
    }
    m_trash.Recover();
    EXPECT_TRUE(HasNothingOf(u"100"));
    EXPECT_THAT(Names(), ElementsAre(u"100"));
  }
  EXPECT_TRUE(HasTag(u"100"));
}

TEST_F(TagTrashTest, ATagThatIsStillWholeIsNotInTheTrash) {
  PutTag(u"100");
  {
    Deletion deletion(m_trash, DeletionReason::kDelete);
    ASSERT_TRUE(deletion.Keep(FindParts(m_files, m_registry, u"100").value(), u""));
    EXPECT_THAT(Names(), IsEmpty());
    ASSERT_TRUE(m_files.Delete(WavePath(u"100")));
    EXPECT_THAT(Names(), ElementsAre(u"100")) << "From here on only the copy is whole.";
    ASSERT_TRUE(support::WriteWhole(m_files, WavePath(u"100"), std::string(1000, 'w')));
  }
  EXPECT_TRUE(HasTag(u"100"));
  EXPECT_THAT(TrashFiles(), IsEmpty()) << "Nothing went, so no copy is needed.";
}

TEST_F(TagTrashTest, AHalfDeletedTagIsKeptOnceAndFinishedLater) {
  PutTag(u"100");
  const auto held =
      m_files.Open(TemplatePath(u"100"), {platform::FileAccess::kRead, platform::FileShare::kRead,
                                          platform::FileCreation::kOpenExisting});
  ASSERT_TRUE(Delete(u"100"));
  EXPECT_TRUE(support::KeyExists(m_registry, KeyOfTag(u"100")));
  m_trash.Recover();
  ASSERT_TRUE(Delete(u"100"));
  EXPECT_THAT(Names(), ElementsAre(u"100"));
  ASSERT_TRUE((*held)->Close());
  ExpectWholeOrInTrash(u"100");
}

TEST_F(TagTrashTest, AFileThatIsHeldAloneCannotBeKept) {
  PutTag(u"100");
  const auto recording = m_files.Open(WavePath(u"100"), {});
  EXPECT_EQ(support::ErrorOf(Delete(u"100")), ItemError::kRecordingInUse);
  ASSERT_TRUE((*recording)->Close());
  const auto voiceTemplate = m_files.Open(TemplatePath(u"100"), {});
  EXPECT_EQ(support::ErrorOf(Delete(u"100")), ItemError::kTemplateInUse);
  ASSERT_TRUE((*voiceTemplate)->Close());
  EXPECT_TRUE(HasTag(u"100"));
  EXPECT_THAT(TrashFiles(), IsEmpty());
}

TEST_F(TagTrashTest, WhatIsOlderThanThirtyDaysGoes) {
  PutTag(u"100");
  ASSERT_TRUE(Delete(u"100"));
  m_clock.Sleep(15 * kDay);
  PutTag(u"200");
  ASSERT_TRUE(Delete(u"200"));
  m_clock.Sleep(15 * kDay);
  m_trash.Recover();
  EXPECT_THAT(Names(), ElementsAre(u"200", u"100"));
  m_clock.Sleep(1000);
  m_trash.Recover();
  EXPECT_THAT(Names(), ElementsAre(u"200"));
}

TEST_F(TagTrashTest, TheOldestGoesBeyondOneHundredMegabytes) {
  for (const auto* const name : {u"100", u"200", u"300"}) {
    PutTag(name, 40'000'000);
    ASSERT_TRUE(Delete(name));
    m_clock.Sleep(1000);
  }
  EXPECT_THAT(Names(), ElementsAre(u"300", u"200"));
}

TEST_F(TagTrashTest, TheLatestDeletionIsKeptWhateverItsSize) {
  PutTag(u"100", 101'000'000);
  ASSERT_TRUE(Delete(u"100"));
  m_trash.Recover();
  EXPECT_THAT(Names(), ElementsAre(u"100"));
}

TEST_F(TagTrashTest, AFullDiskEmptiesTheTrashFirst) {
  PutTag(u"100", 50'000);
  ASSERT_TRUE(Delete(u"100"));
  PutTag(u"200", 40'000);
  m_files.SetCapacity(100'000);
  EXPECT_TRUE(Delete(u"200"));
  EXPECT_THAT(Names(), ElementsAre(u"200"));
}

TEST_F(TagTrashTest, ADiskThatStaysFullKeepsNothing) {
  PutTag(u"100", 50'000);
  m_files.SetCapacity(60'000);
  EXPECT_EQ(support::ErrorOf(Delete(u"100")), ItemError::kFull);
  EXPECT_THAT(TrashFiles(), IsEmpty());
}

TEST_F(TagTrashTest, ACleanUpEmptiesNoTrash) {
  PutTag(u"100", 50'000);
  ASSERT_TRUE(Delete(u"100"));
  PutTag(u"200", 40'000);
  m_files.SetCapacity(100'000);
  EXPECT_EQ(support::ErrorOf(Delete(m_files, u"200", DeletionReason::kCleanUp)), ItemError::kFull);
  EXPECT_THAT(Names(), ElementsAre(u"100"));
}

TEST_F(TagTrashTest, IsEmptiedOnDemand) {
  for (const auto* const name : {u"100", u"200"}) {
    PutTag(name);
    ASSERT_TRUE(Delete(name));
  }
  EXPECT_TRUE(m_trash.Empty());
  EXPECT_THAT(TrashFiles(), IsEmpty());
}

TEST_F(TagTrashTest, ATornFileInItIsPassedOver) {
  PutTag(u"100");
  ASSERT_TRUE(Delete(u"100"));
  const std::u16string torn = std::u16string(kTrashFolder) + u"\\20261121T221005Z-07-0001.tar";
  for (const char* const content : {"", "torn", "deleted 1\nby nobody\n"}) {
    ASSERT_TRUE(support::WriteWhole(m_files, torn, content));
    m_trash.Recover();
    EXPECT_THAT(Names(), ElementsAre(u"100"));
  }
  EXPECT_TRUE(m_trash.Empty());
  EXPECT_THAT(TrashFiles(), IsEmpty());
}

TEST_F(TagTrashTest, AFolderInItIsPassedOver) {
  PutTag(u"1");
  ASSERT_TRUE(Delete(u"1"));
  const std::u16string folder =
      std::u16string(kTrashFolder).append(u"\\20700101T000000Z-01-0001.tar");
  ASSERT_TRUE(m_files.CreateFolder(folder));

  EXPECT_THAT(Names(), ElementsAre(u"1"));
  EXPECT_TRUE(m_trash.Empty());
  EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(TagTrashTest, AFileThatCannotBeReadIsNoTornOne) {
  PutTag(u"100");
  ASSERT_TRUE(Delete(u"100"));
  support::WatchedFileSystem failing(m_files);
  const TagTrash trash(failing, m_registry, m_clock);
  bool hasFailed = true;
  for (std::size_t call = 1; hasFailed; ++call) {
    failing.FailCall(call, Failing::kOnce);
    const auto tags = trash.List();
    hasFailed = failing.HasFailed();
    EXPECT_TRUE(!tags || tags->size() == 1) << call;
    ASSERT_LT(call, 100U);
  }
}

TEST_F(TagTrashTest, ReportsThatItCannotBeRead) {
  support::WatchedFileSystem failing(m_files);
  const TagTrash trash(failing, m_registry, m_clock);
  failing.FailCall(1, Failing::kFromThenOn);
  EXPECT_FALSE(trash.List());
  EXPECT_EQ(support::ErrorOf(trash.Empty()), FileError::kOther);
}

TEST_F(TagTrashTest, LosesNoErrorOfAFileThatStaysWhenItIsEmptied) {
  for (const auto* const name : {u"100", u"200"}) {
    PutTag(name);
    ASSERT_TRUE(Delete(name));
  }
  const std::u16string first = PathIn(kTrashFolder, TrashFiles().front());
  const auto held = m_files.Open(first, {});
  ASSERT_TRUE(held);
  EXPECT_EQ(support::ErrorOf(m_trash.Empty()), FileError::kSharingViolation);
  EXPECT_EQ(TrashFiles().size(), 1U) << "The other one goes all the same.";
}

using FreeTagNameTest = TagTrashTest;

TEST_F(FreeTagNameTest, IsTheTickCountOrTheNextOneThatNothingHas) {
  const auto name = [this](std::uint32_t tick) {
    return FreeTagName(m_files, m_registry, m_trash, tick);
  };
  EXPECT_EQ(name(100), u"100");
  PutTag(u"100");
  ASSERT_TRUE(support::WriteWhole(m_files, WavePath(u"101"), "w"));
  ASSERT_TRUE(support::WriteWhole(m_files, TemplatePath(u"102"), "t"));
  ASSERT_EQ(support::ErrorOf(TagStore(m_files, m_registry).WriteEntry(u"103", 1, u"Car")),
            std::nullopt);
  PutTag(u"104");
  ASSERT_TRUE(Delete(u"104"));
  EXPECT_EQ(name(100), u"105");
}

TEST_F(FreeTagNameTest, GoesOnFromTheLargestTickCountToTheSmallest) {
  PutTag(u"2147483647");
  PutTag(u"-1");
  EXPECT_EQ(FreeTagName(m_files, m_registry, m_trash, 0x7FFF'FFFFU), u"-2147483648");
  EXPECT_EQ(FreeTagName(m_files, m_registry, m_trash, 0xFFFF'FFFFU), u"0");
}

}  // namespace storage
