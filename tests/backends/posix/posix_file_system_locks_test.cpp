#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "backends/posix/posix_file_system.h"
#include "tests/backends/posix/child_process.h"
#include "tests/support/file_bytes.h"
#include "tests/support/temp_folder.h"

namespace {

using platform::FileAccess;
using platform::FileCreation;
using platform::FileError;
using platform::FileShare;
using platform::OpenMode;
using posix_test::ChildProcess;
using posix_test::ToTest;
using support::ReadWhole;
using support::WriteWhole;

constexpr OpenMode kAlone{FileAccess::kRead, FileShare::kNone, FileCreation::kOpenExisting};
constexpr OpenMode kTogether{FileAccess::kRead, FileShare::kRead, FileCreation::kOpenExisting};

class PosixFileSystemLocks : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(WriteWhole(m_files, u"\\f", "abc"), FileError::kNone); }

  /// A process that holds the file until it is killed.
  [[nodiscard]] std::unique_ptr<ChildProcess> Hold(const OpenMode& mode) {
    auto child = std::make_unique<ChildProcess>([&](const ToTest& test) {
      const platform::OpenedFile opened = m_files.Open(u"\\f", mode);
      test.Say(opened.error == FileError::kNone ? 'y' : 'n');
      for (;;) {
        ::pause();
      }
      return 0;
    });
    EXPECT_EQ(child->Hear(), 'y');
    return child;
  }

  [[nodiscard]] FileError Replace(const std::string& content) {
    const auto replacement = m_files.OpenReplacement(u"\\f").replacement;
    EXPECT_EQ(replacement->GetFile().Write(support::ToBytes(content)), FileError::kNone);
    return replacement->Publish(platform::Durability::kNow);
  }

  support::TempFolder m_root;
  posix::PosixFileSystem m_files{m_root.Text()};
};

TEST_F(PosixFileSystemLocks, AHolderInAnotherProcessIsRespected) {
  const auto holder = Hold(kAlone);
  EXPECT_EQ(m_files.Open(u"\\f", kTogether).error, FileError::kSharingViolation);
  EXPECT_EQ(WriteWhole(m_files, u"\\f", "xyz"), FileError::kSharingViolation);
  EXPECT_EQ(m_files.Delete(u"\\f"), FileError::kSharingViolation);
  EXPECT_EQ(Replace("new"), FileError::kSharingViolation);
  holder->Kill();
  EXPECT_EQ(ReadWhole(m_files, u"\\f"), "abc");
}

TEST_F(PosixFileSystemLocks, AReaderInAnotherProcessGoesTogetherWithReaders) {
  const auto holder = Hold(kTogether);
  EXPECT_EQ(m_files.Open(u"\\f", kTogether).error, FileError::kNone);
  EXPECT_EQ(m_files.Delete(u"\\f"), FileError::kSharingViolation);
}

TEST_F(PosixFileSystemLocks, AKilledHolderIsNone) {
  Hold(kAlone)->Kill();
  EXPECT_EQ(m_files.Delete(u"\\f"), FileError::kNone);
}

TEST_F(PosixFileSystemLocks, NobodySeesAFileThatAnotherProcessIsWriting) {
  constexpr std::size_t kLength = 100'000;
  ASSERT_EQ(WriteWhole(m_files, u"\\f", std::string(kLength, 'a')), FileError::kNone);
  ChildProcess writer([&](const ToTest& test) {
    test.Say('y');
    for (int i = 0;; ++i) {
      static_cast<void>(
          WriteWhole(m_files, u"\\f", std::string(kLength, static_cast<char>('a' + i % 26))));
    }
    return 0;
  });
  ASSERT_EQ(writer.Hear(), 'y');
  for (int i = 0; i < 500; ++i) {
    if (const auto content = ReadWhole(m_files, u"\\f")) {
      ASSERT_EQ(*content, std::string(kLength, content->empty() ? '?' : content->front()));
    }
  }
}

TEST_F(PosixFileSystemLocks, WhoHoldsAFileThatAnotherProcessDeletesAndMakesHoldsTheOneAtThePath) {
  ChildProcess other([&](const ToTest& test) {
    test.Say('y');
    for (;;) {
      static_cast<void>(m_files.Delete(u"\\f"));
      static_cast<void>(WriteWhole(m_files, u"\\f", "abc"));
    }
    return 0;
  });
  ASSERT_EQ(other.Hear(), 'y');
  int held = 0;
  for (int i = 0; i < 30'000; ++i) {
    const platform::OpenedFile opened = m_files.Open(u"\\f", kAlone);
    if (opened.error == FileError::kNone) {
      ++held;
      ASSERT_EQ(m_files.Open(u"\\f", kAlone).error, FileError::kSharingViolation) << i;
    }
  }
  EXPECT_GT(held, 0);
}

TEST_F(PosixFileSystemLocks, AFileThatAnotherProcessReplacesIsAlwaysThereAndWhole) {
  constexpr std::size_t kLength = 10'000;
  ASSERT_EQ(WriteWhole(m_files, u"\\f", std::string(kLength, 'a')), FileError::kNone);
  ChildProcess replacer([&](const ToTest& test) {
    for (;;) {
      if (Replace(std::string(kLength, 'b')) == FileError::kNone) {
        test.Say('y');
      }
    }
    return 0;
  });
  for (int round = 0; round < 20; ++round) {
    ASSERT_EQ(replacer.Hear(), 'y');
    for (int i = 0; i < 50; ++i) {
      const platform::OpenedFile opened = m_files.Open(u"\\f", kAlone);
      if (opened.error != FileError::kSharingViolation) {
        ASSERT_EQ(opened.error, FileError::kNone);
        EXPECT_EQ(opened.file->GetLength(), kLength);
      }
    }
  }
}

}  // namespace
