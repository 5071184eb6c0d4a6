#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/contract/file_backends.h"
#include "tests/support/file_bytes.h"
#include "tests/support/results.h"

namespace contract {
namespace {

using platform::FileAccess;
using platform::FileCreation;
using platform::FileError;
using platform::FileShare;
using platform::OpenMode;
using support::FindNames;
using testing::UnorderedElementsAre;

class FileSystemCalls : public FileContract {};

constexpr OpenMode kAllModes[] = {kReadAlone, kReadTogether, kWriteExisting, kReadWrite,
                                  kCreate,    kLook,         kMake};

TEST_P(FileSystemCalls, OpenExistingFindsOnlyWhatIsThere) {
  EXPECT_EQ(support::ErrorOf(Open(u"f", kReadAlone)), FileError::kNotFound);
  EXPECT_EQ(support::ErrorOf(Open(u"f", kWriteExisting)), FileError::kNotFound);
  EXPECT_EQ(support::ErrorOf(Open(u"f", kLook)), FileError::kNotFound);
  Write(u"f", "abc");
  EXPECT_TRUE(Open(u"f", kReadAlone));
  EXPECT_TRUE(Open(u"f", kLook));
}

TEST_P(FileSystemCalls, OpenAlwaysMakesAndKeeps) {
  EXPECT_TRUE(Open(u"f", kMake));
  EXPECT_EQ(Read(u"f"), "");
  Write(u"f", "abc");
  EXPECT_TRUE(Open(u"f", kMake));
  EXPECT_TRUE(Open(u"f", kReadWrite));
  EXPECT_EQ(Read(u"f"), "abc");
}

TEST_P(FileSystemCalls, CreateAlwaysMakesAndEmpties) {
  EXPECT_TRUE(Open(u"f", kCreate));
  EXPECT_EQ(Read(u"f"), "");
  for (const FileAccess access :
       {FileAccess::kNone, FileAccess::kRead, FileAccess::kWrite, FileAccess::kReadWrite}) {
    Write(u"f", "abc");
    EXPECT_TRUE(Open(u"f", {access, FileShare::kNone, FileCreation::kCreateAlways}));
    EXPECT_EQ(Read(u"f"), "");
  }
}

TEST_P(FileSystemCalls, NothingIsMadeInAMissingFolder) {
  for (const OpenMode& mode : kAllModes) {
    EXPECT_EQ(support::ErrorOf(Open(u"no/f", mode)), FileError::kNotFound);
  }
  Write(u"f", "abc");
  EXPECT_EQ(support::ErrorOf(Open(u"f/g", kCreate)), FileError::kNotFound);
}

TEST_P(FileSystemCalls, AFailedOpenGivesNoFile) {
  const auto opened = Files().Open(Path(u"f"), kReadAlone);
  EXPECT_FALSE(opened);
}

TEST_P(FileSystemCalls, AFolderIsNoFile) {
  ASSERT_TRUE(Files().CreateFolder(Path(u"folder")));
  Write(u"f", "abc");
  for (const OpenMode& mode : kAllModes) {
    EXPECT_EQ(support::ErrorOf(Open(u"folder", mode)), FileError::kAccessDenied);
  }
  EXPECT_EQ(support::ErrorOf(Files().Delete(Path(u"folder"))), FileError::kAccessDenied);
  EXPECT_THAT(FindNames(Files(), Path(u"*")), UnorderedElementsAre(u"folder", u"f"));
}

TEST_P(FileSystemCalls, DeleteTakesTheFileAway) {
  Write(u"f", "abc");
  EXPECT_TRUE(Files().Delete(Path(u"f")));
  EXPECT_EQ(support::ErrorOf(Open(u"f", kLook)), FileError::kNotFound);
  EXPECT_EQ(support::ErrorOf(Files().Delete(Path(u"f"))), FileError::kNotFound);
  EXPECT_EQ(support::ErrorOf(Files().Delete(Path(u"no/f"))), FileError::kNotFound);
}

TEST_P(FileSystemCalls, AProtectedFileIsOnlyRead) {
  Write(u"f", "abc");
  Protect(u"f");
  for (const OpenMode& mode : {kWriteExisting, kReadWrite, kCreate}) {
    EXPECT_EQ(support::ErrorOf(Open(u"f", mode)), FileError::kAccessDenied);
  }
  EXPECT_EQ(support::ErrorOf(
                Open(u"f", {FileAccess::kNone, FileShare::kNone, FileCreation::kCreateAlways})),
            FileError::kAccessDenied);
  EXPECT_EQ(support::ErrorOf(Files().Delete(Path(u"f"))), FileError::kAccessDenied);
  EXPECT_TRUE(Open(u"f", kMake));
  EXPECT_EQ(Read(u"f"), "abc");
}

TEST_P(FileSystemCalls, CreateFolderMakesOneFolder) {
  EXPECT_EQ(support::ErrorOf(Files().CreateFolder(Path(u"a/b"))), FileError::kNotFound);
  EXPECT_TRUE(Files().CreateFolder(Path(u"a")));
  EXPECT_TRUE(Files().CreateFolder(Path(u"a/b")));
  EXPECT_EQ(support::ErrorOf(Files().CreateFolder(Path(u"a"))), FileError::kAlreadyExists);
  Write(u"a/b/f", "abc");
  EXPECT_EQ(support::ErrorOf(Files().CreateFolder(Path(u"a/b/f"))), FileError::kAlreadyExists);
  EXPECT_EQ(support::ErrorOf(Files().CreateFolder(Path(u"a/b/f/g"))), FileError::kNotFound);
}

TEST_P(FileSystemCalls, NamesOfTheDeviceAreComparedWithoutCaseAndKeptAsWritten) {
  ASSERT_TRUE(Files().CreateFolder(Path(u"Folder Ä")));
  Write(u"Folder Ä/One.Wav", "one");
  const bool isCaseBlind = GetParam().isCaseBlind;
  EXPECT_EQ(support::ErrorOf(Open(u"FOLDER ä/one.wav", kReadAlone)),
            isCaseBlind ? std::nullopt : std::optional(FileError::kNotFound));
  EXPECT_EQ(support::ErrorOf(Files().CreateFolder(Path(u"folder ä"))),
            isCaseBlind ? std::optional(FileError::kAlreadyExists) : std::nullopt);
  if (isCaseBlind) {
    Write(u"folder ä/ONE.WAV", "two");
    Write(u"folder ä/NEW", "three");
    EXPECT_THAT(FindNames(Files(), Path(u"folder ä/*")), UnorderedElementsAre(u"One.Wav", u"NEW"));
    EXPECT_TRUE(Files().Delete(Path(u"FOLDER Ä/ONE.WAV")));
  }
  EXPECT_EQ(FindNames(Files(), Path(u"Folder Ä")), std::vector<std::u16string>{u"Folder Ä"});
}

TEST_P(FileSystemCalls, PathsThatNameNothingAreNotFound) {
  const std::u16string zero = Path(u"f") + std::u16string(1, u'\0') + u"g";
  Write(u"f", "abc");
  for (const std::u16string& path : {std::u16string(), zero}) {
    for (const OpenMode& mode : kAllModes) {
      EXPECT_EQ(support::ErrorOf(Files().Open(path, mode)), FileError::kNotFound);
    }
    EXPECT_EQ(support::ErrorOf(Files().Delete(path)), FileError::kNotFound);
    EXPECT_EQ(support::ErrorOf(Files().OpenReplacement(path)), FileError::kNotFound);
    EXPECT_EQ(support::ErrorOf(Files().CreateFolder(path)), FileError::kNotFound);
    EXPECT_EQ(support::ErrorOf(Files().Find(path)), FileError::kNotFound);
  }
}

TEST_P(FileSystemCalls, DevicePathsNeverLeaveTheRoot) {
  for (const std::u16string_view path :
       {u"\\", u"\\..", u"\\..\\x", u"\\.\\x", u"\\\\x", u"\\x\\", u"\\../x", u"\\x/y"}) {
    for (const OpenMode& mode : kAllModes) {
      EXPECT_EQ(support::ErrorOf(Files().Open(path, mode)), FileError::kNotFound);
    }
    EXPECT_EQ(support::ErrorOf(Files().Delete(path)), FileError::kNotFound);
    EXPECT_EQ(support::ErrorOf(Files().CreateFolder(path)), FileError::kNotFound);
    EXPECT_EQ(support::ErrorOf(Files().Find(path)), FileError::kNotFound);
  }
  EXPECT_EQ(support::ErrorOf(Files().Find(u"\\..\\*")), FileError::kNotFound);
}

INSTANTIATE_TEST_SUITE_P(EachBackend, FileSystemCalls, testing::ValuesIn(AllFileBackends()),
                         BackendName);

}  // namespace
}  // namespace contract
