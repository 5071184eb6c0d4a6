#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <limits>
#include <vector>

#include "tests/contract/file_backends.h"
#include "tests/support/file_bytes.h"
#include "tests/support/results.h"

namespace contract {
namespace {

using platform::FileError;
using support::ToBytes;
using support::ToText;

class FileCalls : public FileContract {
 protected:
  [[nodiscard]] static std::string ReadText(platform::File& file, std::size_t count) {
    std::vector<std::byte> bytes(count);
    const auto read = file.Read(bytes);
    bytes.resize(read.value_or(0));
    return read ? ToText(bytes) : "(failed)";
  }
};

TEST_P(FileCalls, WriteAndReadAdvanceThePosition) {
  const auto file = MustOpen(u"f", kReadWrite);
  EXPECT_TRUE(file->Write(ToBytes("abc")));
  EXPECT_TRUE(file->Write(ToBytes("def")));
  EXPECT_TRUE(file->Seek(1));
  EXPECT_EQ(ReadText(*file, 2), "bc");
  EXPECT_EQ(ReadText(*file, 2), "de");
}

TEST_P(FileCalls, AFileThatHasChangedHasAnotherVersion) {
  Write(u"f", "abc");
  const auto look = [this] { return MustOpen(u"f", kReadAlone)->GetVersion(); };
  if (!look()) {
    GTEST_SKIP() << "this system does not know versions";
  }
  // Until the clock of the files has gone on.
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (!look()->isSettled) {
    ASSERT_LT(std::chrono::steady_clock::now(), limit);
  }
  const auto before = look();
  EXPECT_EQ(before->length, 3U);
  EXPECT_EQ(look(), before);
  Write(u"f", "xyz");
  EXPECT_NE(look(), before);
  while (!look()->isSettled) {
    ASSERT_LT(std::chrono::steady_clock::now(), limit);
  }
  EXPECT_NE(look(), before);
}

TEST_P(FileCalls, AReadReturnsLessOnlyAtTheEnd) {
  Write(u"f", "abc");
  const auto file = MustOpen(u"f", kReadAlone);
  EXPECT_EQ(ReadText(*file, 10), "abc");
  EXPECT_EQ(ReadText(*file, 10), "");
  EXPECT_EQ(ReadText(*file, 0), "");
}

TEST_P(FileCalls, AReadAfterTheEndFindsNothing) {
  Write(u"f", "abc");
  const auto file = MustOpen(u"f", kReadAlone);
  for (const std::uint64_t offset :
       {std::uint64_t{3}, std::uint64_t{1} << 33, (std::uint64_t{1} << 63) - 1,
        std::uint64_t{1} << 63, std::numeric_limits<std::uint64_t>::max()}) {
    ASSERT_TRUE(file->Seek(offset));
    EXPECT_EQ(ReadText(*file, 4), "") << offset;
  }
}

TEST_P(FileCalls, AnOverwriteKeepsTheRest) {
  Write(u"f", "abcdef");
  {
    const auto file = MustOpen(u"f", kWriteExisting);
    ASSERT_TRUE(file->Seek(2));
    EXPECT_TRUE(file->Write(ToBytes("XY")));
  }
  EXPECT_EQ(Read(u"f"), "abXYef");
}

TEST_P(FileCalls, AGapAfterTheEndReadsAsZeros) {
  {
    const auto file = MustOpen(u"f", kCreate);
    ASSERT_TRUE(file->Write(ToBytes("a")));
    ASSERT_TRUE(file->Seek(4));
    EXPECT_EQ(file->GetLength(), 1U);
    EXPECT_TRUE(file->Write(ToBytes("b")));
    EXPECT_EQ(file->GetLength(), 5U);
  }
  EXPECT_EQ(Read(u"f"), std::string("a\0\0\0b", 5));
}

TEST_P(FileCalls, AnEmptyWriteChangesNothingEvenAfterTheEnd) {
  const auto file = MustOpen(u"f", kCreate);
  ASSERT_TRUE(file->Seek(100));
  EXPECT_TRUE(file->Write({}));
  EXPECT_EQ(file->GetLength(), 0U);
}

TEST_P(FileCalls, AWriteThatNoFileCanHoldFails) {
  const auto file = MustOpen(u"f", kCreate);
  for (const std::uint64_t offset : {(std::uint64_t{1} << 63) - 1, std::uint64_t{1} << 63,
                                     std::numeric_limits<std::uint64_t>::max()}) {
    ASSERT_TRUE(file->Seek(offset));
    EXPECT_EQ(support::ErrorOf(file->Write(ToBytes("abcd"))), FileError::kDiskFull) << offset;
  }
  EXPECT_EQ(file->GetLength(), 0U);
}

TEST_P(FileCalls, SetLengthCutsAndFillsWithZerosAndKeepsThePosition) {
  const auto file = MustOpen(u"f", kReadWrite);
  ASSERT_TRUE(file->Write(ToBytes("abcdef")));
  EXPECT_TRUE(file->SetLength(2));
  EXPECT_EQ(file->GetLength(), 2U);
  EXPECT_TRUE(file->SetLength(4));
  EXPECT_TRUE(file->Write(ToBytes("Z")));
  ASSERT_TRUE(file->Seek(0));
  EXPECT_EQ(ReadText(*file, 10), std::string("ab\0\0\0\0Z", 7));
}

TEST_P(FileCalls, ALengthThatNoFileCanHaveIsRefused) {
  const auto file = MustOpen(u"f", kReadWrite);
  ASSERT_TRUE(file->Write(ToBytes("abc")));
  EXPECT_EQ(support::ErrorOf(file->SetLength(std::numeric_limits<std::uint64_t>::max())),
            FileError::kDiskFull);
  EXPECT_EQ(file->GetLength(), 3U);
}

TEST_P(FileCalls, AFileOpenedForReadingTakesNoWrites) {
  Write(u"f", "abc");
  const auto file = MustOpen(u"f", kReadAlone);
  EXPECT_EQ(support::ErrorOf(file->Write(ToBytes("x"))), FileError::kAccessDenied);
  EXPECT_EQ(support::ErrorOf(file->SetLength(0)), FileError::kAccessDenied);
  EXPECT_EQ(ReadText(*file, 3), "abc");
}

TEST_P(FileCalls, AFileOpenedForWritingGivesNoReads) {
  Write(u"f", "abc");
  const auto file = MustOpen(u"f", kWriteExisting);
  std::array<std::byte, 1> into{};
  EXPECT_FALSE(file->Read(into).has_value());
}

TEST_P(FileCalls, AFileOpenedWithoutAccessGivesItsLengthOnly) {
  Write(u"f", "abc");
  const auto file = MustOpen(u"f", kLook);
  std::array<std::byte, 1> into{};
  EXPECT_EQ(file->GetLength(), 3U);
  EXPECT_FALSE(file->Read(into).has_value());
  EXPECT_EQ(support::ErrorOf(file->Write(ToBytes("x"))), FileError::kAccessDenied);
}

TEST_P(FileCalls, FlushedBytesAreThere) {
  const auto file = MustOpen(u"f", kCreate);
  ASSERT_TRUE(file->Write(ToBytes("abc")));
  EXPECT_TRUE(file->Flush());
  EXPECT_TRUE(file->Flush());
}

TEST_P(FileCalls, ClosingTwiceSucceeds) {
  const auto file = MustOpen(u"f", kCreate);
  EXPECT_TRUE(file->Close());
  EXPECT_TRUE(file->Close());
}

TEST_P(FileCalls, AClosedFileDoesNothingMore) {
  Write(u"f", "abc");
  const auto file = MustOpen(u"f", kReadWrite);
  ASSERT_TRUE(file->Close());
  std::array<std::byte, 1> into{};
  EXPECT_FALSE(file->GetLength().has_value());
  EXPECT_EQ(support::ErrorOf(file->Seek(0)), FileError::kClosed);
  EXPECT_FALSE(file->Read(into).has_value());
  EXPECT_EQ(support::ErrorOf(file->Write(ToBytes("x"))), FileError::kClosed);
  EXPECT_EQ(support::ErrorOf(file->SetLength(0)), FileError::kClosed);
  EXPECT_EQ(support::ErrorOf(file->Flush()), FileError::kClosed);
  EXPECT_EQ(Read(u"f"), "abc");
}

INSTANTIATE_TEST_SUITE_P(EachBackend, FileCalls, testing::ValuesIn(AllFileBackends()), BackendName);

}  // namespace
}  // namespace contract
