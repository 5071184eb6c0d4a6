#include "storage/deletion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "storage/device_paths.h"
#include "storage/folders.h"
#include "storage/registry_keys.h"
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

using platform::RegistryError;
using support::Failing;
using support::KeyExists;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

std::u16string InWaveFolder(std::u16string_view file) {
  return std::u16string(kWaveFolder).append(u"\\").append(file);
}

/// Calls back before the tag key is deleted.
class WatchedKeys final : public support::WatchedRegistry {
 public:
  WatchedKeys(platform::Registry& inner, std::function<void()> goes)
      : WatchedRegistry(inner), m_goes(std::move(goes)) {}

  [[nodiscard]] platform::Result<void, platform::RegistryError> DeleteKey(
      std::u16string_view path) override {
    if (path == kTagKey) {
      m_goes();
    }
    return WatchedRegistry::DeleteKey(path);
  }

 private:
  const std::function<void()> m_goes;
};

class StoreContentsTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(CreateStoreFolders(m_files)); }

  void PutFiles(std::u16string_view name) {
    ASSERT_TRUE(m_files.PutFile(WavePath(name), {}));
    ASSERT_TRUE(m_files.PutFile(TemplatePath(name), {}));
  }
  void PutTag(std::u16string_view name) {
    PutFiles(name);
    ASSERT_EQ(support::ErrorOf(TagStore(m_files, m_registry).WriteEntry(name, 1, u"Car")),
              std::nullopt);
  }
  /// Reads a file, as the companion does.
  [[nodiscard]] std::unique_ptr<platform::File> Share(const std::u16string& path) {
    return m_files
        .Open(path, {platform::FileAccess::kRead, platform::FileShare::kRead,
                     platform::FileCreation::kOpenExisting})
        .value();
  }

  DeletedAll DeleteAll(platform::FileSystem& files) {
    m_problems.clear();
    const TagTrash trash(files, m_failingRegistry, m_clock);
    return DeleteAllTags(
        files, m_failingRegistry, trash,
        [](std::u16string_view name) { return std::u16string(name) + u" M"; },
        [this](DeletionProblem problem) { m_problems.push_back(problem); });
  }
  DeletedAll DeleteAll() { return DeleteAll(m_files); }

  [[nodiscard]] std::vector<std::u16string> Entries() {
    return support::SubkeyNames(m_registry, kTagKey);
  }
  /// Files outside the trash.
  [[nodiscard]] std::vector<std::u16string> Files() {
    std::vector<std::u16string> files = m_files.ListFiles();
    std::erase_if(files, [](const auto& path) { return path.starts_with(kTrashFolder); });
    return files;
  }
  [[nodiscard]] std::vector<TrashedTag> Trashed() {
    return TagTrash(m_files, m_registry, m_clock).List().value();
  }

  machine::MemoryFileSystem m_files;
  machine::MemoryRegistry m_registry;
  support::WatchedRegistry m_failingRegistry{m_registry};
  machine::Simulation m_clock;
  std::vector<DeletionProblem> m_problems;
};

}  // namespace

TEST_F(StoreContentsTest, AreTheTagsAndTheFilesOfNoTag) {
  PutTag(u"2");
  PutTag(u"1");
  PutFiles(u"stray");
  for (const auto* const name : {u".voxtrel-trimmed-0123456789abcdef", u"UPPER.WAV"}) {
    ASSERT_TRUE(m_files.PutFile(InWaveFolder(name), {}));
  }
  ASSERT_TRUE(m_files.PutFile(InWaveFolder(u"notes.txt"), {}));
  ASSERT_TRUE(m_files.CreateFolder(InWaveFolder(u"folder.wav")));
  const auto contents = ListStore(m_files, m_registry);
  ASSERT_TRUE(contents);
  EXPECT_EQ(contents->failedSearches, 0U);
  ASSERT_EQ(contents->tags.size(), 2U);
  EXPECT_EQ(contents->tags[0].name, u"2");
  EXPECT_EQ(contents->tags[0].templateFile, u"2.st");
  EXPECT_TRUE(contents->tags[1].hasEntry);
  std::vector<std::u16string> orphans;
  for (const TagParts& parts : contents->orphans) {
    orphans.push_back(parts.name);
    EXPECT_FALSE(parts.hasEntry);
  }
  EXPECT_THAT(orphans,
              UnorderedElementsAre(u"stray", u"UPPER", u".voxtrel-trimmed-0123456789abcdef"));
}

TEST_F(StoreContentsTest, LetterCaseCountsForNothing) {
  ASSERT_EQ(support::ErrorOf(TagStore(m_files, m_registry).WriteEntry(u"a", 1, u"Car")),
            std::nullopt);
  ASSERT_TRUE(m_files.PutFile(WavePath(u"A"), {}));
  const auto contents = ListStore(m_files, m_registry);
  ASSERT_TRUE(contents);
  ASSERT_EQ(contents->tags.size(), 1U);
  EXPECT_EQ(contents->tags[0].waveFile, u"A.wav");
  EXPECT_THAT(contents->orphans, IsEmpty());
}

TEST_F(StoreContentsTest, AFolderThatCannotBeReadIsCountedAndTheRestIsListed) {
  PutTag(u"1");
  PutFiles(u"stray");
  support::WatchedFileSystem failing(m_files);
  failing.FailCall(1, Failing::kOnce);
  const auto contents = ListStore(failing, m_registry);
  ASSERT_TRUE(contents);
  EXPECT_EQ(contents->failedSearches, 1U);
  ASSERT_EQ(contents->tags.size(), 1U);
  EXPECT_EQ(contents->tags[0].waveFile, u"");
  EXPECT_EQ(contents->tags[0].templateFile, u"1.st");
  EXPECT_EQ(contents->orphans.size(), 1U);
}

TEST_F(StoreContentsTest, AreUnknownWithoutTheRegistry) {
  PutTag(u"1");
  m_failingRegistry.FailCall(1, Failing::kOnce, RegistryError::kBusy);
  EXPECT_EQ(support::ErrorOf(ListStore(m_files, m_failingRegistry)), RegistryError::kBusy);
}

using DeleteAllTagsTest = StoreContentsTest;

TEST_F(DeleteAllTagsTest, TakesEveryRecordingEveryTemplateAndTheKeyToTheTrash) {
  PutTag(u"1");
  PutTag(u"2");
  PutFiles(u"without an entry");
  ASSERT_TRUE(m_files.PutFile(InWaveFolder(u".voxtrel-trimmed-0123456789abcdef"), {}));
  ASSERT_TRUE(m_files.PutFile(InWaveFolder(u"notes.txt"), {}));
  ASSERT_EQ(support::ErrorOf(m_registry.CreateKey(kSetupKey)), std::nullopt);
  const DeletedAll deleted = DeleteAll();
  EXPECT_TRUE(deleted.isDone);
  EXPECT_EQ(deleted.destroyedCount, 0);
  EXPECT_THAT(m_problems, IsEmpty());
  EXPECT_THAT(Files(), ElementsAre(InWaveFolder(u"notes.txt")));
  EXPECT_FALSE(KeyExists(m_registry, kTagKey));
  EXPECT_TRUE(KeyExists(m_registry, kSetupKey));
  const auto trashed = Trashed();
  ASSERT_EQ(trashed.size(), 4U);
  EXPECT_EQ(trashed[0].item.text, u"1 M");
  EXPECT_EQ(trashed[2].item.text, u"") << "It is a file of no tag.";
  for (const TrashedTag& tag : trashed) {
    EXPECT_EQ(tag.item.by, DeletionReason::kDeleteAll);
    EXPECT_EQ(tag.deletion, trashed[0].deletion);
  }
}

TEST_F(DeleteAllTagsTest, WithoutAFileStillTakesTheKey) {
  ASSERT_EQ(support::ErrorOf(TagStore(m_files, m_registry).WriteEntry(u"1", 1, u"Car")),
            std::nullopt);
  EXPECT_TRUE(DeleteAll().isDone);
  EXPECT_FALSE(KeyExists(m_registry, kTagKey));
}

TEST_F(DeleteAllTagsTest, WithoutAKeyIsDone) {
  PutFiles(u"stray");
  EXPECT_TRUE(DeleteAll().isDone);
  EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(DeleteAllTagsTest, ReportsEachFileInUseAndGoesOn) {
  for (const auto* const name : {u"1", u"2", u"3"}) {
    PutTag(name);
  }
  const auto wave = Share(WavePath(u"1"));
  const auto first = Share(TemplatePath(u"1"));
  const auto last = Share(TemplatePath(u"3"));
  EXPECT_TRUE(DeleteAll().isDone);
  EXPECT_THAT(m_problems, ElementsAre(DeletionProblem::kFileInUse, DeletionProblem::kFileInUse,
                                      DeletionProblem::kFileInUse));
  EXPECT_THAT(Files(),
              UnorderedElementsAre(WavePath(u"1"), TemplatePath(u"1"), TemplatePath(u"3")));
  EXPECT_THAT(Entries(), IsEmpty());
  EXPECT_EQ(Trashed().size(), 3U);
}

TEST_F(DeleteAllTagsTest, EndsBeforeTheFirstFileGoesIfOneCannotBeKept) {
  PutTag(u"1");
  PutTag(u"2");
  const auto held = m_files.Open(TemplatePath(u"2"), {});
  EXPECT_FALSE(DeleteAll().isDone);
  EXPECT_THAT(m_problems, ElementsAre(DeletionProblem::kFileInUse));
  EXPECT_EQ(Files().size(), 4U);
  EXPECT_THAT(Entries(), ElementsAre(u"1", u"2"));
  EXPECT_THAT(Trashed(), IsEmpty());
}

TEST_F(DeleteAllTagsTest, EndsBeforeTheFirstFileGoesIfASearchFails) {
  PutTag(u"1");
  PutTag(u"2");
  support::WatchedFileSystem failing(m_files);
  // The searches of the four kinds of names make at least one call each.
  for (std::size_t call = 1; call <= 4; ++call) {
    SCOPED_TRACE(call);
    failing.FailCall(call, Failing::kOnce);
    EXPECT_FALSE(DeleteAll(failing).isDone);
    EXPECT_THAT(m_problems, ElementsAre(DeletionProblem::kSearchFailed));
    EXPECT_EQ(Files().size(), 4U);
    EXPECT_THAT(Entries(), ElementsAre(u"1", u"2"));
  }
}

TEST_F(DeleteAllTagsTest, ComesToAnEndWhateverFails) {
  PutTag(u"1");
  PutTag(u"2");
  support::WatchedFileSystem failing(m_files);
  bool hasFailed = true;
  for (std::size_t call = 1; hasFailed; ++call) {
    failing.FailCall(call, Failing::kFromThenOn);
    static_cast<void>(DeleteAll(failing));
    hasFailed = failing.HasFailed();
    TagTrash(m_files, m_registry, m_clock).Recover();
    EXPECT_EQ(Trashed().size() + Entries().size(), 2U) << call;
    for (const TrashedTag& tag : Trashed()) {
      EXPECT_TRUE(TagTrash(m_files, m_registry, m_clock).Restore(tag));
    }
  }
}

TEST_F(DeleteAllTagsTest, ReportsAKeyThatStays) {
  PutTag(u"1");
  bool saw = false;
  for (std::size_t call = 1; call < 40 && !saw; ++call) {
    m_failingRegistry.FailCall(call, Failing::kOnce, RegistryError::kBusy);
    EXPECT_FALSE(DeleteAll().isDone);
    ASSERT_FALSE(m_problems.empty());
    EXPECT_THAT(Entries(), ElementsAre(u"1"));
    saw = Files().empty();
  }
  EXPECT_TRUE(saw) << "The files went, and then the key did not.";
  EXPECT_THAT(m_problems, ElementsAre(DeletionProblem::kFileInUse));
}

TEST_F(DeleteAllTagsTest, CountsWhatAFullDiskHadNoRoomToKeep) {
  ASSERT_TRUE(support::WriteWhole(m_files, WavePath(u"1"), std::string(50'000, 'w')));
  PutTag(u"2");
  m_files.SetCapacity(60'000);
  const DeletedAll deleted = DeleteAll();
  EXPECT_TRUE(deleted.isDone);
  EXPECT_EQ(deleted.destroyedCount, 1);
  ASSERT_EQ(Trashed().size(), 1U);
  EXPECT_EQ(Trashed()[0].item.parts.name, u"2");
}

TEST_F(DeleteAllTagsTest, TheKeyGoesWhenTheLastTemplateHasGone) {
  PutTag(u"1");
  PutTag(u"2");
  std::vector<std::vector<std::u16string>> left;
  WatchedKeys keys(m_registry, [&] { left.push_back(Files()); });
  const TagTrash trash(m_files, keys, m_clock);
  const DeletedAll deleted = DeleteAllTags(
      m_files, keys, trash, [](std::u16string_view name) { return std::u16string(name); },
      [](DeletionProblem) { FAIL(); });
  EXPECT_TRUE(deleted.isDone);
  EXPECT_THAT(left, ElementsAre(IsEmpty())) << "The files that were there when the key went.";
}

}  // namespace storage
