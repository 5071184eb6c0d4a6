#include <gtest/gtest.h>

#include "tests/contract/file_backends.h"
#include "tests/support/results.h"

namespace contract {
namespace {

using platform::FileAccess;
using platform::FileCreation;
using platform::FileError;
using platform::FileShare;
using platform::OpenMode;

class FileSharing : public FileContract {
 protected:
  void SetUp() override { Write(u"f", "abc"); }
};

constexpr OpenMode kLookTogether{FileAccess::kNone, FileShare::kRead, FileCreation::kOpenExisting};
constexpr OpenMode kWriteTogether{FileAccess::kWrite, FileShare::kRead,
                                  FileCreation::kOpenExisting};
constexpr OpenMode kReadEmptiedTogether{FileAccess::kRead, FileShare::kRead,
                                        FileCreation::kCreateAlways};

TEST_P(FileSharing, ReadersThatShareGoTogether) {
  const auto first = MustOpen(u"f", kReadTogether);
  const auto second = MustOpen(u"f", kReadTogether);
  EXPECT_TRUE(Open(u"f", kReadTogether));
  EXPECT_TRUE(Open(u"f", kLookTogether));
}

TEST_P(FileSharing, AHolderThatSharesNothingIsAlone) {
  const auto first = MustOpen(u"f", kReadAlone);
  for (const OpenMode& mode : {kReadTogether, kReadAlone, kWriteExisting, kLook, kMake, kCreate}) {
    EXPECT_EQ(support::ErrorOf(Open(u"f", mode)), FileError::kSharingViolation);
  }
}

TEST_P(FileSharing, NobodyIsAloneNextToAReader) {
  const auto first = MustOpen(u"f", kReadTogether);
  for (const OpenMode& mode : {kReadAlone, kWriteExisting, kReadWrite, kLook, kCreate}) {
    EXPECT_EQ(support::ErrorOf(Open(u"f", mode)), FileError::kSharingViolation);
  }
  EXPECT_EQ(Read(u"f"), "abc");
}

TEST_P(FileSharing, NobodyReadsNextToAWriter) {
  const auto first = MustOpen(u"f", kWriteTogether);
  EXPECT_EQ(support::ErrorOf(Open(u"f", kReadTogether)), FileError::kSharingViolation);
}

TEST_P(FileSharing, NobodyWritesOrEmptiesNextToAReader) {
  const auto first = MustOpen(u"f", kReadTogether);
  EXPECT_EQ(support::ErrorOf(Open(u"f", kWriteTogether)), FileError::kSharingViolation);
  EXPECT_EQ(support::ErrorOf(Open(u"f", kReadEmptiedTogether)), FileError::kSharingViolation);
  EXPECT_EQ(Read(u"f"), "abc");
}

TEST_P(FileSharing, ARefusedHolderDoesNotEmptyTheFile) {
  {
    const auto first = MustOpen(u"f", kReadAlone);
    EXPECT_EQ(support::ErrorOf(Open(u"f", kCreate)), FileError::kSharingViolation);
  }
  EXPECT_EQ(Read(u"f"), "abc");
}

TEST_P(FileSharing, ClosingLetsTheNextIn) {
  const auto first = MustOpen(u"f", kReadAlone);
  ASSERT_TRUE(first->Close());
  EXPECT_TRUE(Open(u"f", kWriteExisting));
}

TEST_P(FileSharing, ADestroyedHolderIsNone) {
  MustOpen(u"f", kReadAlone).reset();
  EXPECT_TRUE(Open(u"f", kWriteExisting));
}

TEST_P(FileSharing, TheLastReaderToLeaveLetsAWriterIn) {
  auto first = MustOpen(u"f", kReadTogether);
  auto second = MustOpen(u"f", kReadTogether);
  first.reset();
  EXPECT_EQ(support::ErrorOf(Open(u"f", kWriteExisting)), FileError::kSharingViolation);
  second.reset();
  EXPECT_TRUE(Open(u"f", kWriteExisting));
}

TEST_P(FileSharing, AHeldFileIsNotDeleted) {
  for (const OpenMode& mode : {kReadTogether, kReadAlone, kWriteExisting, kLook}) {
    const auto holder = MustOpen(u"f", mode);
    EXPECT_EQ(support::ErrorOf(Files().Delete(Path(u"f"))), FileError::kSharingViolation);
  }
  EXPECT_EQ(Read(u"f"), "abc");
}

TEST_P(FileSharing, HoldersOfOneFileDoNotMatterToAnother) {
  const auto first = MustOpen(u"f", kReadAlone);
  EXPECT_TRUE(Open(u"g", kCreate));
  EXPECT_TRUE(Files().Delete(Path(u"g")));
}

INSTANTIATE_TEST_SUITE_P(EachBackend, FileSharing, testing::ValuesIn(AllFileBackends()),
                         BackendName);

}  // namespace
}  // namespace contract
