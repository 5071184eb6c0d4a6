#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "backends/posix/posix_file_system.h"
#include "backends/text/utf.h"
#include "tests/backends/posix/child_process.h"
#include "tests/support/file_bytes.h"
#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace {

using platform::FileAccess;
using platform::FileError;
using platform::FileShare;
using support::WriteWhole;

mode_t ModeOf(const std::filesystem::path& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

class PosixFileSystemRights : public testing::Test {
 protected:
  PosixFileSystemRights() {
    // So that a child process of another user reaches it.
    std::filesystem::permissions(m_root.Path(), std::filesystem::perms(0755));
  }

  support::TempFolder m_root;
  posix::PosixFileSystem m_files{m_root.Text()};
};

TEST_F(PosixFileSystemRights, NewFilesAndFoldersBelongToTheirUserAloneWhateverTheMask) {
  for (const mode_t mask : {0U, 027U, 0277U}) {
    const mode_t before = ::umask(mask);
    EXPECT_TRUE(WriteWhole(m_files, u"\\f", "abc"));
    EXPECT_TRUE(WriteWhole(m_files, m_root.Text() + u"/g", "abc"));
    EXPECT_TRUE(m_files.CreateFolder(u"\\d"));
    ::umask(before);
    EXPECT_EQ(ModeOf(m_root.Path() / "f"), 0600U);
    EXPECT_EQ(ModeOf(m_root.Path() / "g"), 0600U);
    EXPECT_EQ(ModeOf(m_root.Path() / "d"), 0700U);
    for (const char* name : {"f", "g", "d"}) {
      ASSERT_TRUE(std::filesystem::remove(m_root.Path() / name));
    }
  }
}

TEST_F(PosixFileSystemRights, AnOlderFileOfTheDeviceLosesTheRightsOfOthersBeforeItIsWritten) {
  ASSERT_TRUE(WriteWhole(m_files, u"\\f", "abc"));
  const std::filesystem::path file = m_root.Path() / "f";
  ASSERT_EQ(::chmod(file.c_str(), 0664), 0);
  ASSERT_TRUE(m_files.Open(u"\\f", {FileAccess::kRead, FileShare::kNone}));
  EXPECT_EQ(ModeOf(file), 0664U);
  ASSERT_TRUE(m_files.Open(u"\\f", {FileAccess::kWrite, FileShare::kNone}));
  EXPECT_EQ(ModeOf(file), 0600U);
  ASSERT_EQ(::chmod(file.c_str(), 0664), 0);
  EXPECT_TRUE(WriteWhole(m_files, m_root.Text() + u"/f", "xyz"));
  EXPECT_EQ(ModeOf(file), 0664U);
}

TEST_F(PosixFileSystemRights, AFileMadeWithoutAnyRightIsStillWrittenByItsMaker) {
  const mode_t before = ::umask(0777);
  EXPECT_TRUE(WriteWhole(m_files, u"\\f", "abc"));
  ::umask(before);
  EXPECT_EQ(std::filesystem::file_size(m_root.Path() / "f"), 3U);
}

TEST_F(PosixFileSystemRights, WhatTheUserMayNotReachIsDenied) {
  ASSERT_TRUE(WriteWhole(m_files, u"\\f", "abc"));
  ASSERT_TRUE(m_files.CreateFolder(u"\\locked"));
  ASSERT_TRUE(WriteWhole(m_files, u"\\locked\\f", "abc"));
  ASSERT_EQ(::chmod((m_root.Path() / "f").c_str(), 0200), 0);
  ASSERT_EQ(::chmod((m_root.Path() / "locked").c_str(), 0200), 0);
  ASSERT_EQ(::chmod(m_root.Path().c_str(), 0555), 0);
  const int step = posix_test::RunAsOrdinaryUser([&] {
    if (support::ErrorOf(m_files.Open(u"\\f", {FileAccess::kRead, FileShare::kNone})) !=
        FileError::kAccessDenied) {
      return 1;
    }
    if (support::ErrorOf(WriteWhole(m_files, u"\\new", "abc")) != FileError::kAccessDenied) {
      return 2;
    }
    if (support::ErrorOf(m_files.CreateFolder(u"\\d")) != FileError::kAccessDenied) {
      return 3;
    }
    if (support::ErrorOf(m_files.Delete(u"\\f")) != FileError::kAccessDenied) {
      return 4;
    }
    return support::ErrorOf(m_files.Find(u"\\locked\\*")) == FileError::kAccessDenied ? 0 : 5;
  });
  EXPECT_EQ(step, 0);
}

TEST_F(PosixFileSystemRights, AFileThatMayOnlyBeWrittenIsThereAllTheSame) {
  ASSERT_TRUE(WriteWhole(m_files, u"\\f", "abc"));
  ASSERT_EQ(::chmod((m_root.Path() / "f").c_str(), 0222), 0);
  const int step = posix_test::RunAsOrdinaryUser([&] {
    return m_files.Open(u"\\f", {FileAccess::kNone, FileShare::kNone}) ? 0 : 1;
  });
  EXPECT_EQ(step, 0);
}

TEST_F(PosixFileSystemRights, WhatLiesInAFolderIsKeptFromOthersAndStaysProtected) {
  const std::filesystem::path folder = m_root.Path() / "Voices";
  std::filesystem::create_directory(folder);
  std::filesystem::create_directory(folder / "inner");
  for (const char* name : {"a.wav", "b.wav"}) {
    ASSERT_TRUE(WriteWhole(m_files, u"\\voices\\" + text::FromHostName(name), "abc"));
  }
  const support::TempFolder elsewhere;
  std::filesystem::create_symlink(elsewhere.Path(), folder / "link");
  ASSERT_EQ(::chmod(elsewhere.Path().c_str(), 0755), 0);
  ASSERT_EQ(::chmod(folder.c_str(), 0755), 0);
  ASSERT_EQ(::chmod((folder / "inner").c_str(), 0755), 0);
  ASSERT_EQ(::chmod((folder / "a.wav").c_str(), 0644), 0);
  ASSERT_EQ(::chmod((folder / "b.wav").c_str(), 0444), 0);
  m_files.KeepFromOthers(u"\\VOICES");
  m_files.KeepFromOthers(u"\\voices\\nothing");
  EXPECT_EQ(ModeOf(folder), 0700U);
  EXPECT_EQ(ModeOf(folder / "a.wav"), 0600U);
  EXPECT_EQ(ModeOf(folder / "b.wav"), 0400U);
  EXPECT_EQ(ModeOf(folder / "inner"), 0755U);
  EXPECT_EQ(ModeOf(elsewhere.Path()), 0755U);
}

TEST_F(PosixFileSystemRights, TheFileOfALinkKeepsItsRights) {
  const support::TempFolder elsewhere;
  const std::filesystem::path target = elsewhere.Path() / "f";
  std::ofstream(target) << "abc";
  ASSERT_EQ(::chmod(target.c_str(), 0644), 0);
  std::filesystem::create_symlink(target, m_root.Path() / "link");
  m_files.KeepFromOthers(u"\\link");
  EXPECT_EQ(ModeOf(target), 0644U);
}

TEST_F(PosixFileSystemRights, TheRootIsKeptFromOthersUnlessItBelongsToAll) {
  ASSERT_TRUE(WriteWhole(m_files, u"\\f", "abc"));
  ASSERT_EQ(::chmod((m_root.Path() / "f").c_str(), 0644), 0);
  ASSERT_EQ(::chmod(m_root.Path().c_str(), 01777), 0);
  m_files.KeepFromOthers(u"\\");
  EXPECT_EQ(ModeOf(m_root.Path()), 01777U);
  ASSERT_EQ(::chmod(m_root.Path().c_str(), 0755), 0);
  m_files.KeepFromOthers(u"\\");
  EXPECT_EQ(ModeOf(m_root.Path()), 0700U);
  EXPECT_EQ(ModeOf(m_root.Path() / "f"), 0644U) << "Not everything there need be the applet's.";
  m_files.KeepFromOthers(u"\\F");
  EXPECT_EQ(ModeOf(m_root.Path() / "f"), 0600U);
}

}  // namespace
