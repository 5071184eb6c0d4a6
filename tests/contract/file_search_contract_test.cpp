#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/contract/file_backends.h"
#include "tests/support/file_bytes.h"
#include "tests/support/results.h"

namespace contract {
namespace {

using platform::FileError;
using platform::FoundFile;
using support::ErrorOf;
using support::FindNames;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class FileSearching : public FileContract {
 protected:
  [[nodiscard]] std::vector<std::u16string> Find(std::u16string_view pattern) {
    return FindNames(Files(), Path(pattern));
  }
  [[nodiscard]] static FoundFile MustFind(platform::FileSearch& search) {
    return search.Next().value().value();
  }
  [[nodiscard]] static bool IsAtEnd(platform::FileSearch& search) {
    return !search.Next().value().has_value();
  }
};

TEST_P(FileSearching, APatternFindsWhatMatchesInAnyCase) {
  Write(u"1.wav", "");
  Write(u"22.WAV", "");
  Write(u"1.st", "");
  ASSERT_TRUE(Files().CreateFolder(Path(u"sub.wav")));
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
  EXPECT_EQ(ErrorOf(Files().Find(Path(u"*.wav"))), FileError::kNotFound);
}

TEST_P(FileSearching, AMissingOrEmptyFolderHasNothing) {
  EXPECT_EQ(ErrorOf(Files().Find(Path(u"no/*.wav"))), FileError::kNotFound);
  EXPECT_EQ(ErrorOf(Files().Find(Path(u"no/f"))), FileError::kNotFound);
  EXPECT_THAT(Find(u"*"), IsEmpty());
}

TEST_P(FileSearching, AFileIsNoFolderToSearchIn) {
  Write(u"f", "");
  EXPECT_EQ(ErrorOf(Files().Find(Path(u"f/*"))), FileError::kNotFound);
}

TEST_P(FileSearching, ANameWithoutWildcardsAsksWhetherItIsThere) {
  Write(u"f", "");
  ASSERT_TRUE(Files().CreateFolder(Path(u"folder")));
  const auto file = Files().Find(Path(u"f")).value();
  const FoundFile first = MustFind(*file);
  EXPECT_EQ(first.name, u"f");
  EXPECT_FALSE(first.isFolder);
  EXPECT_TRUE(IsAtEnd(*file));
  EXPECT_TRUE(MustFind(*Files().Find(Path(u"folder")).value()).isFolder);
  EXPECT_EQ(ErrorOf(Files().Find(Path(u"g"))), FileError::kNotFound);
}

TEST_P(FileSearching, FoldersAreKnownFromFiles) {
  ASSERT_TRUE(Files().CreateFolder(Path(u"folder")));
  const FoundFile found = MustFind(*Files().Find(Path(u"*")).value());
  EXPECT_EQ(found.name, u"folder");
  EXPECT_TRUE(found.isFolder);
}

TEST_P(FileSearching, TheEndStaysTheEnd) {
  Write(u"f", "");
  const auto search = Files().Find(Path(u"*")).value();
  EXPECT_EQ(MustFind(*search).name, u"f");
  EXPECT_TRUE(IsAtEnd(*search));
  EXPECT_TRUE(IsAtEnd(*search));
}

TEST_P(FileSearching, FilesMayBeDeletedAndMadeOnTheWay) {
  constexpr int kFiles = 50;
  for (int i = 0; i < kFiles; ++i) {
    Write(std::u16string(u"f") + static_cast<char16_t>(u'A' + i / 26) +
              static_cast<char16_t>(u'a' + i % 26),
          "");
  }
  const auto search = Files().Find(Path(u"f*")).value();
  int count = 0;
  auto found = search->Next();
  for (; found && *found; found = search->Next()) {
    EXPECT_TRUE(Files().Delete(Path((*found)->name)));
    Write(u"fnew" + (*found)->name, "");
    ++count;
  }
  EXPECT_TRUE(found);
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
