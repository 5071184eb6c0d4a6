#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "platform/posix/posix_file_system.h"
#include "tests/posix/child_process.h"
#include "tests/support/file_bytes.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;
using platform::FileError;
using posix_test::ChildProcess;
using posix_test::ToTest;
using support::FindNames;
using support::ReadWhole;
using support::WriteWhole;
using testing::AnyOf;
using testing::UnorderedElementsAre;

class ReplaceFile : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(WriteWhole(m_files, u"\\new", "new"), FileError::kNone);
    ASSERT_EQ(m_files.CreateFolder(u"\\folder"), FileError::kNone);
  }

  support::TempFolder m_root;
  posix::PosixFileSystem m_files{m_root.Text()};
};

TEST_F(ReplaceFile, AKillAtAnyMomentLeavesTheOldFileOrTheNewOne) {
  const std::string first(50'000, 'a');
  const std::string second(70'000, 'b');
  ASSERT_EQ(WriteWhole(m_files, u"\\f", first), FileError::kNone);
  for (int i = 0; i < 25; ++i) {
    ChildProcess replacer([&](const ToTest& test) {
      for (bool odd = false;; odd = !odd) {
        const bool works =
            WriteWhole(m_files, u"\\temp", odd ? first : second) == FileError::kNone &&
            m_files.Replace(u"\\temp", u"\\f") == FileError::kNone;
        if (!works) {
          return 1;
        }
        test.Say('y');
      }
    });
    for (int step = 0; step <= i % 4; ++step) {
      ASSERT_EQ(replacer.Hear(), 'y');
    }
    replacer.Kill();
    ASSERT_THAT(ReadWhole(m_files, u"\\f").value_or("(not readable)"), AnyOf(first, second));
  }
}

TEST_F(ReplaceFile, ALinkStaysAndItsFileIsReplaced) {
  ASSERT_EQ(WriteWhole(m_files, u"\\folder\\target", "old"), FileError::kNone);
  fs::create_symlink("folder/target", m_root.Path() / "link");
  EXPECT_EQ(m_files.Replace(u"\\new", u"\\link"), FileError::kNone);
  EXPECT_TRUE(fs::is_symlink(m_root.Path() / "link"));
  EXPECT_FALSE(fs::is_symlink(m_root.Path() / "folder/target"));
  EXPECT_EQ(ReadWhole(m_files, u"\\folder\\target"), "new");
  EXPECT_EQ(m_files.Open(u"\\new", {}).error, FileError::kNotFound);
}

TEST_F(ReplaceFile, ALinkToAFileThatIsNotThereYetLeadsToTheNewOne) {
  fs::create_symlink("folder/target", m_root.Path() / "link");
  EXPECT_EQ(m_files.Replace(u"\\new", u"\\link"), FileError::kNone);
  EXPECT_EQ(ReadWhole(m_files, u"\\folder\\target"), "new");
  EXPECT_TRUE(fs::is_symlink(m_root.Path() / "link"));
}

TEST_F(ReplaceFile, AChainOfLinksIsFollowedToItsEnd) {
  ASSERT_EQ(WriteWhole(m_files, u"\\folder\\target", "old"), FileError::kNone);
  fs::create_symlink("target", m_root.Path() / "folder/inner");
  fs::create_symlink(m_root.Path() / "folder/inner", m_root.Path() / "outer");
  EXPECT_EQ(m_files.Replace(u"\\new", u"\\outer"), FileError::kNone);
  EXPECT_EQ(ReadWhole(m_files, u"\\folder\\target"), "new");
}

TEST_F(ReplaceFile, AnotherNameOfTheSameFileChangesNothing) {
  fs::create_hard_link(m_root.Path() / "new", m_root.Path() / "same");
  EXPECT_EQ(m_files.Replace(u"\\new", u"\\same"), FileError::kNone);
  EXPECT_EQ(ReadWhole(m_files, u"\\same"), "new");
}

TEST_F(ReplaceFile, AFailedReplaceKeepsBothFiles) {
  if (::geteuid() != 0) {
    GTEST_SKIP() << "the files of another user are needed";
  }
  ASSERT_EQ(WriteWhole(m_files, u"\\folder\\old", "old"), FileError::kNone);
  ASSERT_EQ(::chmod(m_root.Path().c_str(), 0777), 0);
  ASSERT_EQ(::chmod((m_root.Path() / "folder").c_str(), 0755), 0);
  ASSERT_EQ(::chown((m_root.Path() / "new").c_str(), 65534, 65534), 0);
  const int error = posix_test::RunAsOrdinaryUser(
      [&] { return static_cast<int>(m_files.Replace(u"\\new", u"\\folder\\old")); });
  EXPECT_EQ(error, static_cast<int>(FileError::kAccessDenied));
  EXPECT_EQ(ReadWhole(m_files, u"\\folder\\old"), "old");
  EXPECT_EQ(ReadWhole(m_files, u"\\new"), "new");
}

/// A link to a folder of another file system than the one of temporary files.
class ReplaceFileAcross : public ReplaceFile {
 protected:
  void SetUp() override {
    ReplaceFile::SetUp();
    std::string path = "/dev/shm/voxtrel-test-XXXXXX";
    struct stat here {};
    struct stat there {};
    if (::mkdtemp(path.data()) == nullptr) {
      GTEST_SKIP() << "no second file system";
    }
    m_other = path;
    if (::stat(m_root.Path().c_str(), &here) != 0 || ::stat(path.c_str(), &there) != 0 ||
        here.st_dev == there.st_dev) {
      GTEST_SKIP() << "no second file system";
    }
    fs::create_directory_symlink(m_other, m_root.Path() / "other");
  }

  void TearDown() override {
    if (!m_other.empty()) {
      fs::remove_all(m_other);
    }
  }

  fs::path m_other;
};

TEST_F(ReplaceFileAcross, AFileOfAnotherFileSystemIsReplacedAsWell) {
  const std::string content(200'000, 'x');
  ASSERT_EQ(WriteWhole(m_files, u"\\new", content), FileError::kNone);
  ASSERT_EQ(WriteWhole(m_files, u"\\other\\f", "old"), FileError::kNone);
  ASSERT_EQ(::chmod((m_other / "f").c_str(), 0604), 0);
  EXPECT_EQ(m_files.Replace(u"\\new", u"\\other\\f"), FileError::kNone);
  EXPECT_EQ(ReadWhole(m_files, u"\\other\\f"), content);
  EXPECT_THAT(FindNames(m_files, u"\\other\\*"), UnorderedElementsAre(u"f"));
  EXPECT_THAT(FindNames(m_files, u"\\*"), UnorderedElementsAre(u"folder", u"other"));
  EXPECT_EQ(static_cast<unsigned>(fs::status(m_other / "f").permissions()), 0604U);
}

TEST_F(ReplaceFileAcross, AFileMovesThere) {
  EXPECT_EQ(m_files.Replace(u"\\new", u"\\other\\f"), FileError::kNone);
  EXPECT_EQ(ReadWhole(m_files, u"\\other\\f"), "new");
}

TEST_F(ReplaceFileAcross, AFailedCopyLeavesNothingBehind) {
  EXPECT_EQ(m_files.Replace(u"\\new", u"\\other\\no\\f"), FileError::kNotFound);
  EXPECT_EQ(ReadWhole(m_files, u"\\new"), "new");
  EXPECT_TRUE(fs::is_empty(m_other));
}

}  // namespace
