#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <thread>

#include "backends/posix/posix_file_system.h"
#include "tests/backends/posix/child_process.h"
#include "tests/support/file_bytes.h"
#include "tests/support/results.h"
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
  void SetUp() override { ASSERT_TRUE(WriteWhole(m_files, u"\\f", "abc")); }

  /// A process that holds the file until it is killed.
  [[nodiscard]] std::unique_ptr<ChildProcess> Hold(const OpenMode& mode) {
    auto child = std::make_unique<ChildProcess>([&](const ToTest& test) {
      const auto opened = m_files.Open(u"\\f", mode);
      test.Say(opened ? 'y' : 'n');
      for (;;) {
        ::pause();
      }
      return 0;
    });
    EXPECT_EQ(child->Hear(), 'y');
    return child;
  }

  [[nodiscard]] platform::Result<void, FileError> Replace(const std::string& content) {
    const auto replacement = m_files.OpenReplacement(u"\\f").value();
    EXPECT_TRUE(replacement->GetFile().Write(support::ToBytes(content)));
    return replacement->Publish(platform::Durability::kNow);
  }

  support::TempFolder m_root;
  posix::PosixFileSystem m_files{m_root.Text()};
};

TEST_F(PosixFileSystemLocks, AHolderInAnotherProcessIsRespected) {
  const auto holder = Hold(kAlone);
  EXPECT_EQ(support::ErrorOf(m_files.Open(u"\\f", kTogether)), FileError::kSharingViolation);
  EXPECT_EQ(support::ErrorOf(WriteWhole(m_files, u"\\f", "xyz")), FileError::kSharingViolation);
  EXPECT_EQ(support::ErrorOf(m_files.Delete(u"\\f")), FileError::kSharingViolation);
  EXPECT_EQ(support::ErrorOf(Replace("new")), FileError::kSharingViolation);
  holder->Kill();
  EXPECT_EQ(ReadWhole(m_files, u"\\f"), "abc");
}

TEST_F(PosixFileSystemLocks, AReaderInAnotherProcessGoesTogetherWithReaders) {
  const auto holder = Hold(kTogether);
  EXPECT_TRUE(m_files.Open(u"\\f", kTogether));
  EXPECT_EQ(support::ErrorOf(m_files.Delete(u"\\f")), FileError::kSharingViolation);
}

TEST_F(PosixFileSystemLocks, AKilledHolderIsNone) {
  Hold(kAlone)->Kill();
  EXPECT_TRUE(m_files.Delete(u"\\f"));
}

TEST_F(PosixFileSystemLocks, NobodySeesAFileThatAnotherProcessIsWriting) {
  constexpr std::size_t kLength = 100'000;
  ASSERT_TRUE(WriteWhole(m_files, u"\\f", std::string(kLength, 'a')));
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
  // A busy machine may stop the other process between its two steps for as long as it likes, so
  // what counts is how often the file was held and not how often it was asked for.
  for (int held = 0; held < 1000;) {
    const auto opened = m_files.Open(u"\\f", kAlone);
    if (!opened) {
      std::this_thread::yield();
      continue;
    }
    ++held;
    ASSERT_EQ(support::ErrorOf(m_files.Open(u"\\f", kAlone)), FileError::kSharingViolation) << held;
  }
}

TEST_F(PosixFileSystemLocks, AFileThatAnotherProcessReplacesIsAlwaysThereAndWhole) {
  constexpr std::size_t kLength = 10'000;
  ASSERT_TRUE(WriteWhole(m_files, u"\\f", std::string(kLength, 'a')));
  ChildProcess replacer([&](const ToTest& test) {
    for (;;) {
      if (Replace(std::string(kLength, 'b'))) {
        test.Say('y');
      }
    }
    return 0;
  });
  for (int round = 0; round < 20; ++round) {
    ASSERT_EQ(replacer.Hear(), 'y');
    for (int i = 0; i < 50; ++i) {
      const auto opened = m_files.Open(u"\\f", kAlone);
      if (support::ErrorOf(opened) != FileError::kSharingViolation) {
        ASSERT_TRUE(opened);
        EXPECT_EQ((*opened)->GetLength(), kLength);
      }
    }
  }
}

}  // namespace
