#include "storage/tar.h"

#include <gtest/gtest.h>

#include "tests/machine/memory_file_system.h"
#include "tests/support/file_bytes.h"

namespace storage {
namespace {

using platform::FileError;

class TarTest : public testing::Test {
 protected:
  static constexpr const char16_t* kPath = u"\\a.tar";

  [[nodiscard]] std::unique_ptr<platform::File> Open() {
    return m_files
        .Open(kPath, {platform::FileAccess::kReadWrite, platform::FileShare::kNone,
                      platform::FileCreation::kOpenAlways})
        .file;
  }

  /// Two members, "a" of three bytes and "b" of exactly one block.
  void WriteTwo() {
    const auto file = Open();
    TarWriter tar(*file);
    ASSERT_EQ(tar.Add("a", support::ToBytes("abc")), FileError::kNone);
    ASSERT_EQ(tar.Add("b", support::ToBytes(std::string(512, 'x'))), FileError::kNone);
    ASSERT_EQ(tar.End(), FileError::kNone);
  }

  [[nodiscard]] std::string Content() { return support::ReadWhole(m_files, kPath).value_or(""); }

  machine::MemoryFileSystem m_files;
};

TEST_F(TarTest, AMemberIsAHeaderAndItsBytesInWholeBlocks) {
  WriteTwo();
  const std::string content = Content();
  ASSERT_EQ(content.size(), 6U * 512);
  EXPECT_EQ(content.substr(0, 2), std::string("a\0", 2));
  EXPECT_EQ(content.substr(100, 8), std::string("0000600\0", 8));
  EXPECT_EQ(content.substr(124, 12), std::string("00000000003\0", 12));
  EXPECT_EQ(content[156], '0');
  EXPECT_EQ(content.substr(257, 8), std::string("ustar\0"
                                                "00",
                                                8));
  EXPECT_EQ(content.substr(512, 5), std::string("abc\0\0", 5));
  EXPECT_EQ(content.substr(1536, 512), std::string(512, 'x'));
  EXPECT_EQ(content.substr(2048), std::string(1024, '\0'));
}

TEST_F(TarTest, WhatIsWrittenIsReadInItsOrder) {
  WriteTwo();
  const auto file = Open();
  TarReader tar(*file);
  std::vector<std::byte> bytes;
  ASSERT_EQ(tar.Next(), FileError::kNone);
  EXPECT_EQ(tar.GetName(), "a");
  EXPECT_EQ(tar.GetLength(), 3U);
  ASSERT_EQ(tar.ReadAll(bytes, 3), FileError::kNone);
  EXPECT_EQ(support::ToText(bytes), "abc");
  EXPECT_EQ(tar.ReadAll(bytes, 2), FileError::kOther) << "It is longer than that.";
  ASSERT_EQ(tar.Next(), FileError::kNone);
  EXPECT_EQ(tar.GetName(), "b");
  const platform::OpenedFile copy =
      m_files.Open(u"\\copy", {platform::FileAccess::kReadWrite, platform::FileShare::kNone,
                               platform::FileCreation::kCreateAlways});
  ASSERT_EQ(tar.CopyTo(*copy.file), FileError::kNone);
  EXPECT_EQ(copy.file->GetLength(), 512U);
  EXPECT_EQ(tar.Next(), FileError::kNoMoreFiles);
}

TEST_F(TarTest, AFileIsAddedWholeWhereverItsPositionIs) {
  ASSERT_EQ(support::WriteWhole(m_files, u"\\source", std::string(40000, 's')), FileError::kNone);
  {
    const auto source = m_files.Open(u"\\source", {}).file;
    ASSERT_EQ(source->Seek(17), FileError::kNone);
    const auto file = Open();
    TarWriter tar(*file);
    ASSERT_EQ(tar.AddFile("s", *source), FileError::kNone);
    ASSERT_EQ(tar.End(), FileError::kNone);
  }
  const auto file = Open();
  TarReader tar(*file);
  std::vector<std::byte> bytes;
  ASSERT_EQ(tar.Next(), FileError::kNone);
  ASSERT_EQ(tar.ReadAll(bytes, 40000), FileError::kNone);
  EXPECT_EQ(support::ToText(bytes), std::string(40000, 's'));
}

TEST_F(TarTest, ANameThatDoesNotFitIsRefused) {
  const auto file = Open();
  TarWriter tar(*file);
  EXPECT_EQ(tar.Add(std::string(100, 'n'), {}), FileError::kOther);
  EXPECT_EQ(tar.Add("", {}), FileError::kOther);
  EXPECT_EQ(tar.Add(std::string(99, 'n'), {}), FileError::kNone);
}

TEST_F(TarTest, ATornArchiveHasNoMemberBeyondTheTear) {
  WriteTwo();
  const std::string whole = Content();
  for (const std::size_t length : {0U, 1U, 511U, 513U, 514U}) {
    ASSERT_EQ(support::WriteWhole(m_files, kPath, whole.substr(0, length)), FileError::kNone);
    const auto file = Open();
    EXPECT_EQ(TarReader(*file).Next(), FileError::kOther) << length;
  }
  ASSERT_EQ(support::WriteWhole(m_files, kPath, whole.substr(0, 2047)), FileError::kNone);
  const auto file = Open();
  TarReader tar(*file);
  EXPECT_EQ(tar.Next(), FileError::kNone);
  EXPECT_EQ(tar.Next(), FileError::kOther);
}

TEST_F(TarTest, AHeaderWithAnyByteChangedIsRefused) {
  WriteTwo();
  const std::string whole = Content();
  for (std::size_t i = 0; i < 512; ++i) {
    std::string changed = whole;
    changed[i] = static_cast<char>(changed[i] + 1);
    ASSERT_EQ(support::WriteWhole(m_files, kPath, changed), FileError::kNone);
    const auto file = Open();
    EXPECT_NE(TarReader(*file).Next(), FileError::kNone) << i;
  }
}

}  // namespace
}  // namespace storage
