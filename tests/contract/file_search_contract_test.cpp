#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/contract/file_backends.h"
#include "tests/support/file_bytes.h"

namespace contract {
namespace {

using platform::FileError;
using platform::FoundFile;
using platform::StartedSearch;
using support::FindNames;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class FileSearching : public FileContract {
 protected:
  [[nodiscard]] std::vector<std::u16string> Find(std::u16string_view pattern) {
    return FindNames(Files(), Path(pattern));
  }
};

TEST_P(FileSearching, APatternFindsWhatMatchesInAnyCase) {
  Write(u"1.wav", "");
  Write(u"22.WAV", "");
  Write(u"1.st", "");
  ASSERT_EQ(Files().CreateFolder(Path(u"sub.wav")), FileError::kNone);
  EXPECT_THAT(Find(u"*.wav"), UnorderedElementsAre(u"1.wav", u"22.WAV", u"sub.wav"));
  EXPECT_THAT(Find(u"*.ST"), UnorderedElementsAre(u"1.st"));
  EXPECT_THAT(Find(u"?.wav"), UnorderedElementsAre(u"1.wav"));
}

TEST_P(FileSearching, AStarFindsEverythingButTheFolderItself) {
  Write(u"a", "");
  Write(u".hidden", "");
  EXPECT_THAT(Find(u"*"), UnorderedElementsAre(u"a", u".hidden"));
}

TEST_P(FileSearching, NothingThatMatchesIsNotFound) {
  Write(u"a", "");
  const StartedSearch started = Files().FindFirst(Path(u"*.wav"));
  EXPECT_EQ(started.error, FileError::kNotFound);
  EXPECT_EQ(started.search, nullptr);
}

TEST_P(FileSearching, AMissingOrEmptyFolderHasNothing) {
  EXPECT_EQ(Files().FindFirst(Path(u"no/*.wav")).error, FileError::kNotFound);
  EXPECT_EQ(Files().FindFirst(Path(u"no/f")).error, FileError::kNotFound);
  EXPECT_THAT(Find(u"*"), IsEmpty());
}

TEST_P(FileSearching, AFileIsNoFolderToSearchIn) {
  Write(u"f", "");
  EXPECT_EQ(Files().FindFirst(Path(u"f/*")).error, FileError::kNotFound);
}

TEST_P(FileSearching, ANameWithoutWildcardsAsksWhetherItIsThere) {
  Write(u"f", "");
  ASSERT_EQ(Files().CreateFolder(Path(u"folder")), FileError::kNone);
  StartedSearch file = Files().FindFirst(Path(u"f"));
  ASSERT_EQ(file.error, FileError::kNone);
  EXPECT_EQ(file.first.name, u"f");
  EXPECT_FALSE(file.first.isFolder);
  FoundFile next;
  EXPECT_EQ(file.search->Next(next), FileError::kNoMoreFiles);
  const StartedSearch folder = Files().FindFirst(Path(u"folder"));
  ASSERT_EQ(folder.error, FileError::kNone);
  EXPECT_TRUE(folder.first.isFolder);
  EXPECT_EQ(Files().FindFirst(Path(u"g")).error, FileError::kNotFound);
}

TEST_P(FileSearching, FoldersAreToldFromFiles) {
  ASSERT_EQ(Files().CreateFolder(Path(u"folder")), FileError::kNone);
  const StartedSearch started = Files().FindFirst(Path(u"*"));
  ASSERT_EQ(started.error, FileError::kNone);
  EXPECT_EQ(started.first.name, u"folder");
  EXPECT_TRUE(started.first.isFolder);
}

TEST_P(FileSearching, TheEndStaysTheEnd) {
  Write(u"f", "");
  const StartedSearch started = Files().FindFirst(Path(u"*"));
  ASSERT_EQ(started.error, FileError::kNone);
  FoundFile found;
  EXPECT_EQ(started.search->Next(found), FileError::kNoMoreFiles);
  EXPECT_EQ(started.search->Next(found), FileError::kNoMoreFiles);
}

TEST_P(FileSearching, FilesMayBeDeletedAndMadeOnTheWay) {
  constexpr int kFiles = 50;
  for (int i = 0; i < kFiles; ++i) {
    Write(std::u16string(u"f") + static_cast<char16_t>(u'A' + i / 26) +
              static_cast<char16_t>(u'a' + i % 26),
          "");
  }
  const StartedSearch started = Files().FindFirst(Path(u"f*"));
  ASSERT_EQ(started.error, FileError::kNone);
  int count = 0;
  FoundFile found = started.first;
  do {
    EXPECT_EQ(Files().Delete(Path(found.name)), FileError::kNone);
    Write(u"fnew" + found.name, "");
    ++count;
  } while (started.search->Next(found) == FileError::kNone);
  EXPECT_EQ(count, kFiles);
}

TEST_P(FileSearching, NamesOfAllScriptsComeBack) {
  const std::u16string name = u"имя \U0001F600 é.wav";
  Write(name, "x");
  EXPECT_THAT(Find(u"ИМЯ*"), UnorderedElementsAre(name));
  EXPECT_EQ(Read(name), "x");
}

INSTANTIATE_TEST_SUITE_P(EachBackend, FileSearching, testing::ValuesIn(AllFileBackends()),
                         BackendName);

}  // namespace
}  // namespace contract
