#include "framework/archive.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <vector>

#include "tests/machine/memory_file_system.h"
#include "tests/support/results.h"

namespace {

using framework::ArchiveError;
using framework::CArchive;
using framework::CFile;

std::vector<std::byte> Bytes(std::initializer_list<int> values) {
  std::vector<std::byte> bytes;
  for (const int value : values) {
    bytes.push_back(static_cast<std::byte>(value));
  }
  return bytes;
}

class CArchiveTest : public testing::Test {
 protected:
  void OpenForWriting() { ASSERT_TRUE(m_file.Open(u"/a", CFile::modeCreate | CFile::modeWrite)); }
  void OpenForReading(const std::vector<std::byte>& content) {
    ASSERT_TRUE(m_files.PutFile(u"/a", content));
    ASSERT_TRUE(m_file.Open(u"/a", CFile::modeRead));
  }

  machine::MemoryFileSystem m_files;
  CFile m_file{m_files};
};

TEST_F(CArchiveTest, StoresLittleEndianBytesAndNothingElse) {
  OpenForWriting();
  CArchive archive(m_file, CArchive::Mode::kStore);
  EXPECT_TRUE(archive.IsStoring());
  archive << std::uint32_t{0x04030201} << std::uint16_t{0x0605} << 1.0F;
  EXPECT_TRUE(archive.Close());
  EXPECT_EQ(m_files.GetFile(u"/a"), Bytes({1, 2, 3, 4, 5, 6, 0, 0, 0x80, 0x3F}));
}

TEST_F(CArchiveTest, HandsItsBytesToTheFileOnlyInFullBuffersAndAtTheEnd) {
  OpenForWriting();
  CArchive archive(m_file, CArchive::Mode::kStore, 4);
  archive << std::uint16_t{0x0201};
  EXPECT_EQ(m_file.GetLength(), 0U);
  archive << std::uint32_t{0x06050403};
  EXPECT_EQ(m_file.GetLength(), 4U);
  EXPECT_TRUE(archive.Close());
  EXPECT_EQ(m_files.GetFile(u"/a"), Bytes({1, 2, 3, 4, 5, 6}));
}

TEST_F(CArchiveTest, LoadsAcrossTheEdgesOfItsBuffer) {
  OpenForReading(Bytes({1, 2, 3, 4, 5, 6, 0, 0, 0x80, 0x3F}));
  CArchive archive(m_file, CArchive::Mode::kLoad, 3);
  std::uint32_t wide = 0;
  std::uint16_t narrow = 0;
  float number = 0.0F;
  archive >> wide >> narrow >> number;
  EXPECT_TRUE(archive.Close());
  EXPECT_EQ(wide, 0x04030201U);
  EXPECT_EQ(narrow, 0x0605U);
  EXPECT_EQ(number, 1.0F);
}

TEST_F(CArchiveTest, KeepsTheBitsOfEveryFloat) {
  OpenForWriting();
  const auto oddNan = std::bit_cast<float>(0xFFC12345U);
  CArchive storing(m_file, CArchive::Mode::kStore);
  storing << oddNan;
  ASSERT_TRUE(storing.Close());
  ASSERT_TRUE(m_file.Open(u"/a", CFile::modeRead));
  CArchive loading(m_file, CArchive::Mode::kLoad);
  float read = 0.0F;
  loading >> read;
  EXPECT_EQ(std::bit_cast<std::uint32_t>(read), 0xFFC12345U);
}

TEST_F(CArchiveTest, SaysHowMuchIsLeftWhileItsBufferReadsAhead) {
  OpenForReading(Bytes({1, 2, 3, 4, 5, 6, 7}));
  CArchive archive(m_file, CArchive::Mode::kLoad, 4);
  EXPECT_EQ(archive.GetRemaining(), 7U);
  std::uint16_t value = 0;
  archive >> value;
  EXPECT_EQ(archive.GetRemaining(), 5U);
}

TEST_F(CArchiveTest, AShortFileGivesZerosAndTheEndOfFileStatus) {
  OpenForReading(Bytes({1, 2, 3}));
  CArchive archive(m_file, CArchive::Mode::kLoad);
  std::uint16_t first = 0;
  std::uint32_t second = 7;
  std::uint32_t third = 7;
  archive >> first >> second >> third;
  EXPECT_EQ(first, 0x0201U);
  EXPECT_EQ(third, 0U);
  EXPECT_EQ(archive.GetRemaining(), 0U);
  EXPECT_EQ(support::ErrorOf(archive.Close()), ArchiveError::kEndOfFile);
}

TEST_F(CArchiveTest, AFullDiskIsAFileFailureThatStays) {
  m_files.SetCapacity(4);
  OpenForWriting();
  CArchive archive(m_file, CArchive::Mode::kStore, 4);
  archive << std::uint32_t{1} << std::uint32_t{2} << std::uint32_t{3};
  EXPECT_EQ(support::ErrorOf(archive.GetStatus()), ArchiveError::kFileFailure);
  EXPECT_EQ(support::ErrorOf(archive.Close()), ArchiveError::kFileFailure);
}

TEST_F(CArchiveTest, TheFirstFailureStays) {
  OpenForReading(Bytes({1}));
  CArchive archive(m_file, CArchive::Mode::kLoad);
  archive.Fail(ArchiveError::kBadFormat);
  std::uint32_t value = 7;
  archive >> value;
  EXPECT_EQ(value, 0U);
  EXPECT_EQ(support::ErrorOf(archive.Close()), ArchiveError::kBadFormat);
}

TEST_F(CArchiveTest, RefusesToStoreIntoALoadingArchiveAndTheOtherWayRound) {
  OpenForReading(Bytes({1, 2}));
  CArchive loading(m_file, CArchive::Mode::kLoad);
  loading << std::uint16_t{5};
  EXPECT_EQ(support::ErrorOf(loading.Close()), ArchiveError::kBadFormat);

  OpenForWriting();
  CArchive storing(m_file, CArchive::Mode::kStore);
  std::uint16_t value = 7;
  storing >> value;
  EXPECT_EQ(support::ErrorOf(storing.Close()), ArchiveError::kBadFormat);
}

TEST_F(CArchiveTest, WhatIsNotClosedIsDropped) {
  OpenForWriting();
  {
    CArchive archive(m_file, CArchive::Mode::kStore);
    archive << std::uint32_t{1};
  }
  EXPECT_EQ(m_file.GetLength(), 0U);
}

}  // namespace
