#include "framework/file.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "tests/machine/memory_file_system.h"
#include "tests/support/results.h"

namespace {

using framework::CFile;
using support::ErrorOf;

std::vector<std::byte> FileBytes(std::initializer_list<int> values) {
  std::vector<std::byte> bytes;
  for (const int value : values) {
    bytes.push_back(static_cast<std::byte>(value));
  }
  return bytes;
}

class CFileTest : public testing::Test {
 protected:
  machine::MemoryFileSystem m_files;
  CFile m_file{m_files};
};

TEST_F(CFileTest, OpensOnlyWhatExistsUnlessAskedToMakeIt) {
  EXPECT_FALSE(m_file.Open(u"/a", CFile::modeRead));
  EXPECT_FALSE(m_file.Open(u"/a", CFile::modeWrite));
  EXPECT_FALSE(m_file.IsOpen());
  EXPECT_TRUE(m_file.Open(u"/a", CFile::modeCreate | CFile::modeWrite));
  EXPECT_TRUE(m_file.IsOpen());
  EXPECT_EQ(m_file.GetFilePath(), u"/a");
}

TEST_F(CFileTest, CreateEmptiesAnExistingFile) {
  ASSERT_TRUE(m_files.PutFile(u"/a", FileBytes({1, 2, 3})));
  ASSERT_TRUE(m_file.Open(u"/a", CFile::modeCreate | CFile::modeWrite));
  EXPECT_EQ(m_file.GetLength(), 0U);
}

TEST_F(CFileTest, WriteModeLeavesWhatItDoesNotWrite) {
  ASSERT_TRUE(m_files.PutFile(u"/a", FileBytes({1, 2, 3})));
  ASSERT_TRUE(m_file.Open(u"/a", CFile::modeWrite));
  EXPECT_TRUE(m_file.Write(FileBytes({9})));
  EXPECT_TRUE(m_file.Close());
  EXPECT_EQ(m_files.GetFile(u"/a"), FileBytes({9, 2, 3}));
}

TEST_F(CFileTest, ReadersShareAWriterDoesNot) {
  ASSERT_TRUE(m_files.PutFile(u"/a", FileBytes({1})));
  CFile other(m_files);
  ASSERT_TRUE(m_file.Open(u"/a", CFile::modeRead));
  EXPECT_TRUE(other.Open(u"/a", CFile::modeRead));
  EXPECT_FALSE(other.Open(u"/a", CFile::modeReadWrite));
  m_file.Close();
  EXPECT_TRUE(other.Open(u"/a", CFile::modeReadWrite));
  EXPECT_FALSE(m_file.Open(u"/a", CFile::modeRead));
}

TEST_F(CFileTest, OpeningAgainClosesTheEarlierFile) {
  ASSERT_TRUE(m_files.PutFile(u"/a", FileBytes({1})));
  ASSERT_TRUE(m_files.PutFile(u"/b", FileBytes({2})));
  ASSERT_TRUE(m_file.Open(u"/a", CFile::modeReadWrite));
  ASSERT_TRUE(m_file.Open(u"/b", CFile::modeReadWrite));
  EXPECT_EQ(m_files.CountOpenHandles(), 1U);
}

TEST_F(CFileTest, EveryOperationFailsOnAFileThatIsNotOpen) {
  std::array<std::byte, 1> byte{};
  using platform::FileError;
  EXPECT_EQ(ErrorOf(m_file.GetLength()), FileError::kClosed);
  EXPECT_EQ(ErrorOf(m_file.Seek(0)), FileError::kClosed);
  EXPECT_EQ(ErrorOf(m_file.Read(byte)), FileError::kClosed);
  EXPECT_EQ(ErrorOf(m_file.Write(byte)), FileError::kClosed);
  EXPECT_EQ(ErrorOf(m_file.SetLength(0)), FileError::kClosed);
  EXPECT_EQ(ErrorOf(m_file.Flush()), FileError::kClosed);
  EXPECT_TRUE(m_file.Close());
}

TEST_F(CFileTest, SaysWhyTheLastOperationThatFailedDidSo) {
  EXPECT_EQ(m_file.GetError(), std::nullopt);
  EXPECT_EQ(ErrorOf(m_file.Open(u"/a", CFile::modeRead)), platform::FileError::kNotFound);
  EXPECT_EQ(m_file.GetError(), platform::FileError::kNotFound);
  ASSERT_TRUE(m_file.Open(u"/a", CFile::modeCreate | CFile::modeWrite));
  EXPECT_EQ(m_file.GetError(), std::nullopt) << "That of another file does not count.";
  m_files.SetCapacity(2);
  EXPECT_FALSE(m_file.Write(FileBytes({1, 2, 3})));
  EXPECT_TRUE(m_file.Flush());
  EXPECT_EQ(m_file.GetError(), platform::FileError::kDiskFull);
}

TEST_F(CFileTest, CloseFreesTheFileAndThePath) {
  ASSERT_TRUE(m_files.PutFile(u"/a", FileBytes({1})));
  ASSERT_TRUE(m_file.Open(u"/a", CFile::modeReadWrite));
  EXPECT_TRUE(m_file.Close());
  EXPECT_EQ(m_file.GetFilePath(), u"");
  EXPECT_EQ(m_files.CountOpenHandles(), 0U);
}

}  // namespace
