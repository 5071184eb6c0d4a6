#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <utility>

#include "tests/contract/file_backends.h"
#include "tests/support/file_bytes.h"
#include "tests/support/results.h"

namespace contract {
namespace {

using platform::Durability;
using platform::FileAccess;
using platform::FileCreation;
using platform::FileError;
using platform::FileShare;
using platform::OpenMode;
using support::FindNames;
using support::ToBytes;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr OpenMode kNew{FileAccess::kWrite, FileShare::kNone, FileCreation::kCreateNew};

class FileReplacement : public FileContract {
 protected:
  /// A replacement of `name` that holds `content`.
  [[nodiscard]] std::unique_ptr<platform::Replacement> Begin(std::u16string_view name,
                                                             std::string_view content) {
    auto opened = Files().OpenReplacement(Path(name));
    EXPECT_TRUE(opened);
    if (!opened) {
      throw std::runtime_error("a replacement of the test does not open");
    }
    EXPECT_TRUE((*opened)->GetFile().Write(ToBytes(std::string(content))));
    return std::move(*opened);
  }
  [[nodiscard]] platform::Result<void, FileError> Publish(std::u16string_view name,
                                                          std::string_view content) {
    return Begin(name, content)->Publish(Durability::kNow);
  }
  [[nodiscard]] std::vector<std::u16string> Names() { return FindNames(Files(), Path(u"*")); }
};

TEST_P(FileReplacement, TakesThePlaceOfTheEarlierFile) {
  Write(u"f", "a long earlier content");
  for (const Durability durability : {Durability::kNow, Durability::kLater}) {
    EXPECT_TRUE(Begin(u"f", "new")->Publish(durability));
    EXPECT_EQ(Read(u"f"), "new");
    Write(u"f", "a long earlier content");
  }
  EXPECT_THAT(Names(), UnorderedElementsAre(u"f"));
}

TEST_P(FileReplacement, IsMadeWhereNothingWas) {
  EXPECT_TRUE(Publish(u"f", "new"));
  EXPECT_EQ(Read(u"f"), "new");
  EXPECT_THAT(Names(), UnorderedElementsAre(u"f"));
}

TEST_P(FileReplacement, ChangesNothingBeforeItIsPublished) {
  Write(u"f", "old");
  const auto one = Begin(u"f", "new");
  const auto other = Begin(u"g", "new");
  EXPECT_EQ(Read(u"f"), "old");
  EXPECT_EQ(support::ErrorOf(Open(u"g", kLook)), FileError::kNotFound);
}

TEST_P(FileReplacement, LeavesNothingIfItIsDropped) {
  Write(u"f", "old");
  Begin(u"f", "new").reset();
  Begin(u"g", "new").reset();
  EXPECT_EQ(Read(u"f"), "old");
  EXPECT_THAT(Names(), UnorderedElementsAre(u"f"));
}

TEST_P(FileReplacement, IsReadAndWrittenAndCutLikeAnyFile) {
  const auto replacement = Begin(u"f", "abcdef");
  platform::File& file = replacement->GetFile();
  std::array<std::byte, 4> bytes{};
  EXPECT_TRUE(file.Seek(2));
  EXPECT_EQ(file.Read(bytes), 4U);
  EXPECT_EQ(bytes[0], std::byte{'c'});
  EXPECT_TRUE(file.SetLength(3));
  EXPECT_EQ(file.GetLength(), 3U);
  EXPECT_TRUE(file.Flush());
  EXPECT_TRUE(replacement->Publish(Durability::kLater));
  EXPECT_EQ(Read(u"f"), "abc");
}

TEST_P(FileReplacement, IsClosedOncePublished) {
  const auto replacement = Begin(u"f", "abc");
  ASSERT_TRUE(replacement->Publish(Durability::kNow));
  EXPECT_EQ(support::ErrorOf(replacement->GetFile().Write(ToBytes("more"))), FileError::kClosed);
  EXPECT_TRUE(Open(u"f", kWriteExisting));
}

TEST_P(FileReplacement, IsNotPublishedOnceItIsClosed) {
  const auto replacement = Begin(u"f", "abc");
  ASSERT_TRUE(replacement->GetFile().Close());
  EXPECT_EQ(support::ErrorOf(replacement->Publish(Durability::kNow)), FileError::kClosed);
  EXPECT_THAT(Names(), IsEmpty());
}

TEST_P(FileReplacement, WaitsForTheHolderOfTheEarlierFile) {
  Write(u"f", "old");
  const auto replacement = Begin(u"f", "new");
  for (const OpenMode& mode : {kReadTogether, kReadAlone, kWriteExisting, kLook}) {
    const auto holder = MustOpen(u"f", mode);
    EXPECT_EQ(support::ErrorOf(replacement->Publish(Durability::kNow)),
              FileError::kSharingViolation);
  }
  EXPECT_EQ(Read(u"f"), "old");
  EXPECT_TRUE(replacement->Publish(Durability::kNow));
  EXPECT_EQ(Read(u"f"), "new");
}

TEST_P(FileReplacement, BeginsWhileTheEarlierFileIsHeld) {
  Write(u"f", "old");
  auto holder = MustOpen(u"f", kReadWrite);
  const auto replacement = Begin(u"f", "new");
  holder.reset();
  EXPECT_TRUE(replacement->Publish(Durability::kNow));
  EXPECT_EQ(Read(u"f"), "new");
}

TEST_P(FileReplacement, LeavesAProtectedFileAndAFolder) {
  Write(u"f", "old");
  Write(u"g", "old");
  const auto begun = Begin(u"g", "new");
  Protect(u"f");
  Protect(u"g");
  ASSERT_TRUE(Files().CreateFolder(Path(u"folder")));
  EXPECT_EQ(support::ErrorOf(Files().OpenReplacement(Path(u"f"))), FileError::kAccessDenied);
  EXPECT_EQ(support::ErrorOf(Files().OpenReplacement(Path(u"folder"))), FileError::kAccessDenied);
  EXPECT_EQ(support::ErrorOf(begun->Publish(Durability::kNow)), FileError::kAccessDenied);
  EXPECT_EQ(Read(u"f"), "old");
  EXPECT_EQ(Read(u"g"), "old");
}

TEST_P(FileReplacement, NeedsAFolder) {
  EXPECT_EQ(support::ErrorOf(Files().OpenReplacement(Path(u"no/f"))), FileError::kNotFound);
  EXPECT_EQ(support::ErrorOf(Files().OpenReplacement(u"")), FileError::kNotFound);
  EXPECT_EQ(support::ErrorOf(Files().OpenReplacement(u"\\..\\f")), FileError::kNotFound);
}

TEST_P(FileReplacement, OfTheSameFileAgainAndAgainIsTheLatest) {
  for (int i = 0; i < 20; ++i) {
    const std::string content(static_cast<std::size_t>(i), 'x');
    ASSERT_TRUE(Publish(u"f", content));
    ASSERT_EQ(Read(u"f"), content);
  }
}

TEST_P(FileReplacement, KeepsTheSpellingOfTheEarlierName) {
  if (!GetParam().isCaseBlind) {
    return;
  }
  Write(u"One.Wav", "old");
  EXPECT_TRUE(Publish(u"oNE.wAV", "new"));
  EXPECT_THAT(Names(), UnorderedElementsAre(u"One.Wav"));
  EXPECT_EQ(Read(u"one.wav"), "new");
}

TEST_P(FileReplacement, OfTwoTheOnePublishedLastStays) {
  const auto first = Begin(u"f", "first");
  const auto second = Begin(u"f", "second");
  EXPECT_TRUE(second->Publish(Durability::kNow));
  EXPECT_TRUE(first->Publish(Durability::kNow));
  EXPECT_EQ(Read(u"f"), "first");
}

class FileNames : public FileContract {};

TEST_P(FileNames, CreateNewMakesAFileOrRefuses) {
  EXPECT_TRUE(Open(u"f", kNew));
  EXPECT_EQ(Read(u"f"), "");
  Write(u"f", "abc");
  EXPECT_EQ(support::ErrorOf(Open(u"f", kNew)), FileError::kAlreadyExists);
  EXPECT_EQ(Read(u"f"), "abc");
  EXPECT_EQ(support::ErrorOf(Open(u"no/f", kNew)), FileError::kNotFound);
  ASSERT_TRUE(Files().CreateFolder(Path(u"folder")));
  EXPECT_EQ(support::ErrorOf(Open(u"folder", kNew)), FileError::kAlreadyExists);
}

TEST_P(FileNames, CreateNewRefusesAFileThatSomebodyHolds) {
  Write(u"f", "abc");
  const auto holder = MustOpen(u"f", kReadAlone);
  EXPECT_EQ(support::ErrorOf(Open(u"f", kNew)), FileError::kAlreadyExists);
}

TEST_P(FileNames, AFolderIsFlushedAndWhatIsNoneIsNot) {
  ASSERT_TRUE(Files().CreateFolder(Path(u"folder")));
  Write(u"f", "abc");
  EXPECT_TRUE(Files().FlushFolder(Path(u"folder")));
  EXPECT_TRUE(Files().FlushFolder(u"\\"));
  EXPECT_EQ(support::ErrorOf(Files().FlushFolder(Path(u"f"))), FileError::kNotFound);
  EXPECT_EQ(support::ErrorOf(Files().FlushFolder(Path(u"no"))), FileError::kNotFound);
  EXPECT_EQ(support::ErrorOf(Files().FlushFolder(u"\\..")), FileError::kNotFound);
  EXPECT_EQ(support::ErrorOf(Files().FlushFolder(u"")), FileError::kNotFound);
}

INSTANTIATE_TEST_SUITE_P(EachBackend, FileReplacement, testing::ValuesIn(AllFileBackends()),
                         BackendName);
INSTANTIATE_TEST_SUITE_P(EachBackend, FileNames, testing::ValuesIn(AllFileBackends()), BackendName);

}  // namespace
}  // namespace contract
