#include "tests/machine/memory_file_system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/file_bytes.h"
#include "tests/support/results.h"

namespace {

using machine::MemoryFileSystem;
using platform::FileAccess;
using platform::FileCreation;
using platform::FileError;
using platform::FileShare;
using platform::OpenMode;
using support::ReadWhole;
using support::ToBytes;
using support::WriteWhole;
using testing::ElementsAre;

constexpr OpenMode kReadWrite{FileAccess::kReadWrite, FileShare::kNone, FileCreation::kOpenAlways};

TEST(MemoryFileSystem, PutFileMakesTheFoldersOnItsWay) {
  MemoryFileSystem files;
  EXPECT_TRUE(files.PutFile(u"\\A\\B\\f", ToBytes("abc")));
  EXPECT_EQ(ReadWhole(files, u"\\a\\b\\F"), "abc");
  EXPECT_EQ(files.GetFile(u"\\a\\b\\F"), ToBytes("abc"));
}

TEST(MemoryFileSystem, PutFileGivesAFileNewContent) {
  MemoryFileSystem files;
  EXPECT_TRUE(files.PutFile(u"\\f", ToBytes("abc")));
  EXPECT_TRUE(files.PutFile(u"\\F", ToBytes("x")));
  EXPECT_THAT(files.ListFiles(), ElementsAre(u"\\f"));
  EXPECT_EQ(files.GetFile(u"\\f"), ToBytes("x"));
}

TEST(MemoryFileSystem, PutFileAndGetFileWantAFile) {
  MemoryFileSystem files;
  EXPECT_TRUE(files.PutFile(u"\\a\\f", {}));
  EXPECT_FALSE(files.PutFile(u"\\a", {}));
  EXPECT_FALSE(files.PutFile(u"\\a\\f\\g", {}));
  EXPECT_FALSE(files.PutFile(u"\\..\\f", {}));
  EXPECT_FALSE(files.GetFile(u"\\a").has_value());
  EXPECT_FALSE(files.GetFile(u"\\no").has_value());
}

TEST(MemoryFileSystem, DeviceAndHostPathsAreApart) {
  MemoryFileSystem files;
  files.PutFile(u"\\a\\f", ToBytes("device"));
  files.PutFile(u"/a/f", ToBytes("host"));
  files.PutFile(u"/A/f", ToBytes("other"));
  EXPECT_THAT(files.ListFiles(), ElementsAre(u"\\a\\f", u"/A/f", u"/a/f"));
  EXPECT_EQ(files.GetFile(u"\\a\\f"), ToBytes("device"));
  EXPECT_EQ(files.GetFile(u"/a/f"), ToBytes("host"));
}

TEST(MemoryFileSystem, HostPathsAreTakenFromTheRoot) {
  MemoryFileSystem files;
  files.PutFile(u"a/f", ToBytes("abc"));
  for (const char16_t* path : {u"a/f", u"/a/f", u"./a//f", u"/a/./f", u"/a/b/../f", u"/../a/f"}) {
    EXPECT_EQ(files.GetFile(path), ToBytes("abc"));
  }
}

TEST(MemoryFileSystem, AFullDiskTakesAFirstPart) {
  MemoryFileSystem files;
  files.SetCapacity(10);
  ASSERT_TRUE(WriteWhole(files, u"\\a", "1234"));
  EXPECT_EQ(support::ErrorOf(WriteWhole(files, u"\\b", "12345678")), FileError::kDiskFull);
  EXPECT_EQ(ReadWhole(files, u"\\b"), "123456");
  EXPECT_TRUE(WriteWhole(files, u"\\c", ""));
  EXPECT_EQ(support::ErrorOf(WriteWhole(files, u"\\c", "x")), FileError::kDiskFull);
}

TEST(MemoryFileSystem, AFullDiskStillTakesOverwrites) {
  MemoryFileSystem files;
  files.PutFile(u"\\a", ToBytes("abcd"));
  files.SetCapacity(4);
  const auto file = files.Open(u"\\a", kReadWrite).value();
  EXPECT_TRUE(file->Write(ToBytes("WXYZ")));
  EXPECT_EQ(support::ErrorOf(file->Write(ToBytes("!"))), FileError::kDiskFull);
  EXPECT_EQ(support::ErrorOf(file->SetLength(5)), FileError::kDiskFull);
  EXPECT_EQ(files.GetFile(u"\\a"), ToBytes("WXYZ"));
}

TEST(MemoryFileSystem, AGapNeedsRoomAsWell) {
  MemoryFileSystem files;
  files.SetCapacity(5);
  const auto file = files.Open(u"\\a", kReadWrite).value();
  ASSERT_TRUE(file->Seek(3));
  EXPECT_EQ(support::ErrorOf(file->Write(ToBytes("abc"))), FileError::kDiskFull);
  EXPECT_EQ(file->GetLength(), 5U);
  ASSERT_TRUE(file->SetLength(0));
  ASSERT_TRUE(file->Seek(5));
  EXPECT_EQ(support::ErrorOf(file->Write(ToBytes("a"))), FileError::kDiskFull);
  EXPECT_EQ(file->GetLength(), 0U);
}

TEST(MemoryFileSystem, WhatGoesMakesRoom) {
  MemoryFileSystem files;
  files.SetCapacity(4);
  ASSERT_TRUE(WriteWhole(files, u"\\a", "1234"));
  ASSERT_TRUE(files.Delete(u"\\a"));
  ASSERT_TRUE(WriteWhole(files, u"\\b", "1234"));
  ASSERT_TRUE(WriteWhole(files, u"\\b", "12"));
  auto replacement = files.OpenReplacement(u"\\b").value();
  ASSERT_TRUE(replacement->GetFile().Write(ToBytes("34")));
  EXPECT_EQ(support::ErrorOf(replacement->GetFile().Write(ToBytes("5"))), FileError::kDiskFull);
  replacement = files.OpenReplacement(u"\\b").value();  // The one before takes no room now.
  ASSERT_TRUE(replacement->GetFile().Write(ToBytes("34")));
  ASSERT_TRUE(replacement->Publish(platform::Durability::kNow));
  ASSERT_TRUE(WriteWhole(files, u"\\d", "12"));
  EXPECT_EQ(support::ErrorOf(WriteWhole(files, u"\\e", "1")), FileError::kDiskFull);
}

TEST(MemoryFileSystem, AFileThatIsNoLongerProtectedIsWritten) {
  MemoryFileSystem files;
  files.PutFile(u"\\a", {});
  EXPECT_TRUE(files.SetReadOnly(u"\\a", true));
  EXPECT_EQ(support::ErrorOf(WriteWhole(files, u"\\a", "x")), FileError::kAccessDenied);
  EXPECT_TRUE(files.SetReadOnly(u"\\a", false));
  EXPECT_TRUE(WriteWhole(files, u"\\a", "x"));
  EXPECT_FALSE(files.SetReadOnly(u"\\no", true));
}

TEST(MemoryFileSystem, OpenFilesAndSearchesAreCounted) {
  MemoryFileSystem files;
  files.PutFile(u"\\a", {});
  auto first = files.Open(u"\\a", {FileAccess::kRead, FileShare::kRead}).value();
  auto second = files.Open(u"\\a", {FileAccess::kRead, FileShare::kRead}).value();
  auto search = files.Find(u"\\*").value();
  auto replacement = files.OpenReplacement(u"\\b").value();
  EXPECT_EQ(files.CountOpenHandles(), 4U);
  replacement.reset();
  EXPECT_EQ(files.CountOpenHandles(), 3U);
  ASSERT_TRUE(first->Close());
  first.reset();
  second.reset();
  EXPECT_EQ(files.CountOpenHandles(), 1U);
  search.reset();
  EXPECT_EQ(files.CountOpenHandles(), 0U);
}

TEST(MemoryFileSystem, AFileMayOutliveIt) {
  auto files = std::make_unique<MemoryFileSystem>();
  const auto file = files->Open(u"\\a", kReadWrite).value();
  files.reset();
  EXPECT_TRUE(file->Write(ToBytes("abc")));
  EXPECT_EQ(file->GetLength(), 3U);
}

}  // namespace
