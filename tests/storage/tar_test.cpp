#include "storage/tar.h"

#include <gtest/gtest.h>

#include "tests/machine/memory_file_system.h"
#include "tests/support/file_bytes.h"
#include "tests/support/results.h"

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
        .value();
  }

  /// Two members, "a" of three bytes and "b" of exactly one block.
  void WriteTwo() {
    const auto file = Open();
    TarWriter tar(*file);
    ASSERT_TRUE(tar.Add("a", support::ToBytes("abc")));
    ASSERT_TRUE(tar.Add("b", support::ToBytes(std::string(512, 'x'))));
    ASSERT_TRUE(tar.End());
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
  ASSERT_EQ(tar.Next(), true);
  EXPECT_EQ(tar.GetName(), "a");
  EXPECT_EQ(tar.GetLength(), 3U);
  EXPECT_EQ(support::ToText(tar.ReadAll(3).value()), "abc");
  EXPECT_EQ(support::ErrorOf(tar.ReadAll(2)), TarError::kTorn) << "It is longer than that.";
  ASSERT_EQ(tar.Next(), true);
  EXPECT_EQ(tar.GetName(), "b");
  const auto copy =
      m_files.Open(u"\\copy", {platform::FileAccess::kReadWrite, platform::FileShare::kNone,
                               platform::FileCreation::kCreateAlways});
  ASSERT_TRUE(tar.CopyTo(**copy));
  EXPECT_EQ((*copy)->GetLength(), 512U);
  EXPECT_EQ(tar.Next(), false);
}

TEST_F(TarTest, AFileIsAddedWholeWhateverItsPositionIs) {
  ASSERT_TRUE(support::WriteWhole(m_files, u"\\source", std::string(40000, 's')));
  {
    const auto source = m_files.Open(u"\\source", {}).value();
    ASSERT_TRUE(source->Seek(17));
    const auto file = Open();
    TarWriter tar(*file);
    ASSERT_TRUE(tar.AddFile("s", *source));
    ASSERT_TRUE(tar.End());
  }
  const auto file = Open();
  TarReader tar(*file);
  ASSERT_EQ(tar.Next(), true);
  EXPECT_EQ(support::ToText(tar.ReadAll(40000).value()), std::string(40000, 's'));
}

TEST_F(TarTest, ANameThatDoesNotFitIsRefused) {
  const auto file = Open();
  TarWriter tar(*file);
  EXPECT_EQ(support::ErrorOf(tar.Add(std::string(100, 'n'), {})), FileError::kOther);
  EXPECT_EQ(support::ErrorOf(tar.Add("", {})), FileError::kOther);
  EXPECT_TRUE(tar.Add(std::string(99, 'n'), {}));
}

TEST_F(TarTest, ATornArchiveHasNoMemberBeyondTheTear) {
  WriteTwo();
  const std::string whole = Content();
  for (const std::size_t length : {0U, 1U, 511U, 513U, 514U}) {
    ASSERT_TRUE(support::WriteWhole(m_files, kPath, whole.substr(0, length)));
    const auto file = Open();
    EXPECT_EQ(support::ErrorOf(TarReader(*file).Next()), TarError::kTorn) << length;
  }
  ASSERT_TRUE(support::WriteWhole(m_files, kPath, whole.substr(0, 2047)));
  const auto file = Open();
  TarReader tar(*file);
  EXPECT_EQ(tar.Next(), true);
  EXPECT_EQ(support::ErrorOf(tar.Next()), TarError::kTorn);
}

TEST_F(TarTest, AHeaderWithAnyByteChangedIsRefused) {
  WriteTwo();
  const std::string whole = Content();
  for (std::size_t i = 0; i < 512; ++i) {
    std::string changed = whole;
    changed[i] = static_cast<char>(changed[i] + 1);
    ASSERT_TRUE(support::WriteWhole(m_files, kPath, changed));
    const auto file = Open();
    EXPECT_FALSE(TarReader(*file).Next()) << i;
  }
}

}  // namespace
}  // namespace storage
