#include "tests/support/watched_file_system.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <vector>

#include "tests/machine/memory_file_system.h"
#include "tests/support/file_bytes.h"
#include "tests/support/results.h"

namespace {

using platform::Durability;
using platform::FileAccess;
using platform::FileCreation;
using platform::FileError;
using platform::FileShare;
using platform::OpenMode;
using support::Failing;
using support::ReadWhole;
using support::ToBytes;
using support::WatchedFileSystem;
using support::WriteWhole;

constexpr OpenMode kReadWrite{FileAccess::kReadWrite, FileShare::kNone, FileCreation::kOpenAlways};

/// Keeps what an operation gave. Returns false if it failed.
template <typename Value>
bool Keeps(Value& kept, platform::Result<Value, FileError> result) {
  if (!result) {
    return false;
  }
  kept = std::move(*result);
  return true;
}

class WatchedFileSystemTest : public testing::Test {
 protected:
  machine::MemoryFileSystem m_files;
  WatchedFileSystem m_failing{m_files};
};

TEST_F(WatchedFileSystemTest, ForwardsEverythingWhileNothingIsToFail) {
  EXPECT_TRUE(m_failing.CreateFolder(u"\\a"));
  EXPECT_TRUE(WriteWhole(m_failing, u"\\a\\f", "abc"));
  EXPECT_EQ(ReadWhole(m_failing, u"\\a\\f"), "abc");
  const auto replacement = m_failing.OpenReplacement(u"\\a\\f").value();
  EXPECT_TRUE(replacement->GetFile().Write(ToBytes("new")));
  EXPECT_TRUE(replacement->Publish(Durability::kLater));
  EXPECT_TRUE(m_failing.FlushFolder(u"\\a"));
  EXPECT_EQ(ReadWhole(m_failing, u"\\a\\f"), "new");
  EXPECT_EQ(support::FindNames(m_failing, u"\\a\\*"), std::vector<std::u16string>{u"f"});
  EXPECT_TRUE(m_failing.Delete(u"\\a\\f"));
  EXPECT_FALSE(m_failing.HasFailed());
  EXPECT_EQ(m_files.CountOpenHandles(), 0U);
}

TEST_F(WatchedFileSystemTest, ErrorsOfTheFilesComeThrough) {
  EXPECT_EQ(support::ErrorOf(m_failing.Delete(u"\\f")), FileError::kNotFound);
  EXPECT_FALSE(m_failing.Open(u"\\f", {}));
  EXPECT_FALSE(m_failing.Find(u"\\f"));
}

TEST_F(WatchedFileSystemTest, EachKindOfCallCountsAndFailsInItsTurn) {
  m_files.PutFile(u"\\f", ToBytes("abcdef"));
  m_files.PutFile(u"\\fellow", {});
  std::array<std::byte, 2> into{};
  std::unique_ptr<platform::File> file;
  std::unique_ptr<platform::FileSearch> search;
  std::unique_ptr<platform::Replacement> replacement;
  // Each says whether its call succeeded.
  const std::vector<std::function<bool()>> calls = {
      [&] { return Keeps(file, m_failing.Open(u"\\f", kReadWrite)); },
      [&] { return file->GetLength().has_value(); },
      [&] { return file->Seek(1).has_value(); },
      [&] { return file->Read(into).has_value(); },
      [&] { return file->Write(ToBytes("xy")).has_value(); },
      [&] { return file->SetLength(3).has_value(); },
      [&] { return file->Flush().has_value(); },
      [&] { return file->Close().has_value(); },
      [&] { return Keeps(search, m_failing.Find(u"\\f*")); },
      [&] { return search->Next().has_value(); },
      [&] { return Keeps(replacement, m_failing.OpenReplacement(u"\\f")); },
      [&] { return replacement->GetFile().Write(ToBytes("new")).has_value(); },
      [&] { return replacement->Publish(Durability::kNow).has_value(); },
      [&] { return m_failing.FlushFolder(u"\\").has_value(); },
      [&] { return m_failing.Delete(u"\\f").has_value(); },
      [&] { return m_failing.CreateFolder(u"\\folder").has_value(); },
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

TEST_F(WatchedFileSystemTest, TheErrorIsTheOneThatWasAskedFor) {
  m_failing.FailCall(1, Failing::kFromThenOn, FileError::kReadOnly);
  EXPECT_EQ(support::ErrorOf(m_failing.Open(u"\\f", kReadWrite)), FileError::kReadOnly);
  EXPECT_EQ(support::ErrorOf(m_failing.Delete(u"\\f")), FileError::kReadOnly);
  EXPECT_EQ(support::ErrorOf(m_failing.Find(u"\\f")), FileError::kReadOnly);
}

TEST_F(WatchedFileSystemTest, AFailedWriteWritesItsFirstHalf) {
  const auto file = m_failing.Open(u"\\f", kReadWrite).value();
  m_failing.FailCall(1, Failing::kOnce, FileError::kDiskFull);
  EXPECT_EQ(support::ErrorOf(file->Write(ToBytes("abcdef"))), FileError::kDiskFull);
  EXPECT_EQ(file->GetLength(), 3U);
}

TEST_F(WatchedFileSystemTest, AFailedCloseHasGivenUpTheFile) {
  const auto file = m_failing.Open(u"\\f", kReadWrite).value();
  m_failing.FailCall(1, Failing::kOnce);
  EXPECT_EQ(support::ErrorOf(file->Close()), FileError::kOther);
  EXPECT_EQ(m_files.CountOpenHandles(), 0U);
}

TEST_F(WatchedFileSystemTest, OtherFailedCallsDoNothing) {
  m_files.PutFile(u"\\f", ToBytes("abc"));
  m_failing.FailCall(1, Failing::kFromThenOn);
  EXPECT_EQ(support::ErrorOf(m_failing.Delete(u"\\f")), FileError::kOther);
  EXPECT_EQ(support::ErrorOf(m_failing.OpenReplacement(u"\\f")), FileError::kOther);
  EXPECT_EQ(support::ErrorOf(WriteWhole(m_failing, u"\\f", "xyz")), FileError::kOther);
  EXPECT_EQ(m_files.ListFiles(), std::vector<std::u16string>{u"\\f"});
  EXPECT_EQ(ReadWhole(m_files, u"\\f"), "abc");
}

TEST_F(WatchedFileSystemTest, OnceLeavesLaterCallsAlone) {
  m_failing.FailCall(2, Failing::kOnce);
  EXPECT_TRUE(m_failing.CreateFolder(u"\\a"));
  EXPECT_EQ(support::ErrorOf(m_failing.CreateFolder(u"\\b")), FileError::kOther);
  EXPECT_TRUE(m_failing.CreateFolder(u"\\b"));
}

TEST_F(WatchedFileSystemTest, AfterAPowerFailureNothingReachesTheFiles) {
  const auto file = m_failing.Open(u"\\f", kReadWrite).value();
  m_failing.FailCall(1, Failing::kPowerFailure);
  EXPECT_EQ(support::ErrorOf(file->Write(ToBytes("abcdef"))), FileError::kOther);
  EXPECT_EQ(support::ErrorOf(file->Write(ToBytes("ghijkl"))), FileError::kOther);
  EXPECT_EQ(support::ErrorOf(file->Close()), FileError::kOther);
  EXPECT_EQ(m_files.CountOpenHandles(), 1U);
  EXPECT_EQ(m_files.GetFile(u"\\f"), ToBytes("abc"));
}

TEST_F(WatchedFileSystemTest, ASearchThatFailsOnceLosesNoName) {
  m_files.PutFile(u"\\a", {});
  m_files.PutFile(u"\\b", {});
  const auto search = m_failing.Find(u"\\*").value();
  m_failing.FailCall(1, Failing::kOnce);
  EXPECT_EQ(support::ErrorOf(search->Next()), FileError::kOther);
  EXPECT_EQ(search->Next().value().value().name, u"a");
}

TEST_F(WatchedFileSystemTest, ASearchThatGoesOnFailingEnds) {
  m_files.PutFile(u"\\a", {});
  m_files.PutFile(u"\\b", {});
  m_files.PutFile(u"\\c", {});
  const auto search = m_failing.Find(u"\\*").value();
  m_failing.FailCall(1, Failing::kFromThenOn);
  int calls = 1;
  for (auto found = search->Next(); (!found || *found) && calls < 100; found = search->Next()) {
    ++calls;
  }
  EXPECT_EQ(calls, 5);
}

TEST_F(WatchedFileSystemTest, ALoopOverTheCallsEndsIfARunNeedsNoMore) {
  std::size_t number = 1;
  for (;; ++number) {
    m_failing.FailCall(number, Failing::kOnce);
    const auto error = WriteWhole(m_failing, u"\\f", "abc");
    ASSERT_EQ(m_files.CountOpenHandles(), 0U);
    if (!m_failing.HasFailed()) {
      EXPECT_TRUE(error);
      break;
    }
    EXPECT_EQ(support::ErrorOf(error), FileError::kOther) << number;
  }
  EXPECT_EQ(number, 4U);  // Open, write and close can fail.
}

}  // namespace
