#include "tests/support/failing_file_system.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <vector>

#include "tests/machine/memory_file_system.h"
#include "tests/support/file_bytes.h"

namespace {

using platform::Durability;
using platform::FileAccess;
using platform::FileCreation;
using platform::FileError;
using platform::FileShare;
using platform::FoundFile;
using platform::OpenMode;
using support::Failing;
using support::FailingFileSystem;
using support::ReadWhole;
using support::ToBytes;
using support::WriteWhole;

constexpr OpenMode kReadWrite{FileAccess::kReadWrite, FileShare::kNone, FileCreation::kOpenAlways};

class FailingFileSystemTest : public testing::Test {
 protected:
  machine::MemoryFileSystem m_files;
  FailingFileSystem m_failing{m_files};
};

TEST_F(FailingFileSystemTest, ForwardsEverythingWhileNothingIsToFail) {
  EXPECT_EQ(m_failing.CreateFolder(u"\\a"), FileError::kNone);
  EXPECT_EQ(WriteWhole(m_failing, u"\\a\\f", "abc"), FileError::kNone);
  EXPECT_EQ(ReadWhole(m_failing, u"\\a\\f"), "abc");
  const auto replacement = m_failing.OpenReplacement(u"\\a\\f").replacement;
  EXPECT_EQ(replacement->GetFile().Write(ToBytes("new")), FileError::kNone);
  EXPECT_EQ(replacement->Publish(Durability::kLater), FileError::kNone);
  EXPECT_EQ(m_failing.FlushFolder(u"\\a"), FileError::kNone);
  EXPECT_EQ(ReadWhole(m_failing, u"\\a\\f"), "new");
  EXPECT_EQ(support::FindNames(m_failing, u"\\a\\*"), std::vector<std::u16string>{u"f"});
  EXPECT_EQ(m_failing.Delete(u"\\a\\f"), FileError::kNone);
  EXPECT_FALSE(m_failing.HasFailed());
  EXPECT_EQ(m_files.CountOpenHandles(), 0U);
}

TEST_F(FailingFileSystemTest, ErrorsOfTheFilesComeThrough) {
  EXPECT_EQ(m_failing.Delete(u"\\f"), FileError::kNotFound);
  EXPECT_EQ(m_failing.Open(u"\\f", {}).file, nullptr);
  EXPECT_EQ(m_failing.FindFirst(u"\\f").search, nullptr);
}

TEST_F(FailingFileSystemTest, EachKindOfCallCountsAndFailsInItsTurn) {
  m_files.PutFile(u"\\f", ToBytes("abcdef"));
  m_files.PutFile(u"\\fellow", {});
  std::array<std::byte, 2> into{};
  FoundFile found;
  std::unique_ptr<platform::File> file;
  std::unique_ptr<platform::FileSearch> search;
  std::unique_ptr<platform::Replacement> replacement;
  // Each says whether its call succeeded.
  const std::vector<std::function<bool()>> calls = {
      [&] { return (file = m_failing.Open(u"\\f", kReadWrite).file) != nullptr; },
      [&] { return file->GetLength().has_value(); },
      [&] { return file->Seek(1) == FileError::kNone; },
      [&] { return file->Read(into).has_value(); },
      [&] { return file->Write(ToBytes("xy")) == FileError::kNone; },
      [&] { return file->SetLength(3) == FileError::kNone; },
      [&] { return file->Flush() == FileError::kNone; },
      [&] { return file->Close() == FileError::kNone; },
      [&] { return (search = m_failing.FindFirst(u"\\f*").search) != nullptr; },
      [&] { return search->Next(found) == FileError::kNone; },
      [&] { return (replacement = m_failing.OpenReplacement(u"\\f").replacement) != nullptr; },
      [&] { return replacement->GetFile().Write(ToBytes("new")) == FileError::kNone; },
      [&] { return replacement->Publish(Durability::kNow) == FileError::kNone; },
      [&] { return m_failing.FlushFolder(u"\\") == FileError::kNone; },
      [&] { return m_failing.Delete(u"\\f") == FileError::kNone; },
      [&] { return m_failing.CreateFolder(u"\\folder") == FileError::kNone; },
  };
  for (std::size_t i = 0; i < calls.size(); ++i) {
    m_failing.FailCall(1, Failing::kOnce);
    EXPECT_FALSE(calls[i]()) << i;
    EXPECT_EQ(m_failing.CountCalls(), 1U) << i;
    EXPECT_TRUE(m_failing.HasFailed()) << i;
    EXPECT_TRUE(calls[i]()) << i;
    EXPECT_EQ(m_failing.CountCalls(), 2U) << i;
  }
}

TEST_F(FailingFileSystemTest, TheErrorIsTheOneThatWasAskedFor) {
  m_failing.FailCall(1, Failing::kFromThenOn, FileError::kReadOnly);
  EXPECT_EQ(m_failing.Open(u"\\f", kReadWrite).error, FileError::kReadOnly);
  EXPECT_EQ(m_failing.Delete(u"\\f"), FileError::kReadOnly);
  EXPECT_EQ(m_failing.FindFirst(u"\\f").error, FileError::kReadOnly);
}

TEST_F(FailingFileSystemTest, AFailedWriteWritesItsFirstHalf) {
  const auto file = m_failing.Open(u"\\f", kReadWrite).file;
  m_failing.FailCall(1, Failing::kOnce, FileError::kDiskFull);
  EXPECT_EQ(file->Write(ToBytes("abcdef")), FileError::kDiskFull);
  EXPECT_EQ(file->GetLength(), 3U);
}

TEST_F(FailingFileSystemTest, AFailedCloseHasGivenUpTheFile) {
  const auto file = m_failing.Open(u"\\f", kReadWrite).file;
  m_failing.FailCall(1, Failing::kOnce);
  EXPECT_EQ(file->Close(), FileError::kOther);
  EXPECT_EQ(m_files.CountOpenHandles(), 0U);
}

TEST_F(FailingFileSystemTest, OtherFailedCallsDoNothing) {
  m_files.PutFile(u"\\f", ToBytes("abc"));
  m_failing.FailCall(1, Failing::kFromThenOn);
  EXPECT_EQ(m_failing.Delete(u"\\f"), FileError::kOther);
  EXPECT_EQ(m_failing.OpenReplacement(u"\\f").error, FileError::kOther);
  EXPECT_EQ(WriteWhole(m_failing, u"\\f", "xyz"), FileError::kOther);
  EXPECT_EQ(m_files.ListFiles(), std::vector<std::u16string>{u"\\f"});
  EXPECT_EQ(ReadWhole(m_files, u"\\f"), "abc");
}

TEST_F(FailingFileSystemTest, OnceLeavesLaterCallsAlone) {
  m_failing.FailCall(2, Failing::kOnce);
  EXPECT_EQ(m_failing.CreateFolder(u"\\a"), FileError::kNone);
  EXPECT_EQ(m_failing.CreateFolder(u"\\b"), FileError::kOther);
  EXPECT_EQ(m_failing.CreateFolder(u"\\b"), FileError::kNone);
}

TEST_F(FailingFileSystemTest, AfterAPowerFailureNothingReachesTheFiles) {
  const auto file = m_failing.Open(u"\\f", kReadWrite).file;
  m_failing.FailCall(1, Failing::kPowerFailure);
  EXPECT_EQ(file->Write(ToBytes("abcdef")), FileError::kOther);
  EXPECT_EQ(file->Write(ToBytes("ghijkl")), FileError::kOther);
  EXPECT_EQ(file->Close(), FileError::kOther);
  EXPECT_EQ(m_files.CountOpenHandles(), 1U);
  EXPECT_EQ(m_files.GetFile(u"\\f"), ToBytes("abc"));
}

TEST_F(FailingFileSystemTest, ASearchThatFailsOnceLosesNoName) {
  m_files.PutFile(u"\\a", {});
  m_files.PutFile(u"\\b", {});
  const auto search = m_failing.FindFirst(u"\\*").search;
  m_failing.FailCall(1, Failing::kOnce);
  FoundFile found;
  EXPECT_EQ(search->Next(found), FileError::kOther);
  EXPECT_EQ(search->Next(found), FileError::kNone);
  EXPECT_EQ(found.name, u"b");
}

TEST_F(FailingFileSystemTest, ASearchThatGoesOnFailingEnds) {
  m_files.PutFile(u"\\a", {});
  m_files.PutFile(u"\\b", {});
  m_files.PutFile(u"\\c", {});
  const auto search = m_failing.FindFirst(u"\\*").search;
  m_failing.FailCall(1, Failing::kFromThenOn);
  FoundFile found;
  int calls = 1;
  while (search->Next(found) != FileError::kNoMoreFiles && calls < 100) {
    ++calls;
  }
  EXPECT_EQ(calls, 4);
}

TEST_F(FailingFileSystemTest, ALoopOverTheCallsEndsWhereARunNeedsNoMore) {
  std::size_t number = 1;
  for (;; ++number) {
    m_failing.FailCall(number, Failing::kOnce);
    const FileError error = WriteWhole(m_failing, u"\\f", "abc");
    ASSERT_EQ(m_files.CountOpenHandles(), 0U);
    if (!m_failing.HasFailed()) {
      EXPECT_EQ(error, FileError::kNone);
      break;
    }
    EXPECT_EQ(error, FileError::kOther) << number;
  }
  EXPECT_EQ(number, 4U);  // Open, write and close can fail.
}

}  // namespace
