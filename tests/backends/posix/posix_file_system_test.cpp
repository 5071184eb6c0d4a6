#include "backends/posix/posix_file_system.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <filesystem>
#include <fstream>

#include "tests/backends/posix/child_process.h"
#include "tests/support/file_bytes.h"
#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;
using platform::FileAccess;
using platform::FileCreation;
using platform::FileError;
using platform::FileShare;
using platform::OpenMode;
using support::FindNames;
using support::ReadWhole;
using support::ToBytes;
using support::WriteWhole;
using testing::UnorderedElementsAre;

constexpr OpenMode kRead{FileAccess::kRead, FileShare::kRead, FileCreation::kOpenExisting};
constexpr OpenMode kAllModes[] = {
    kRead,
    {FileAccess::kNone, FileShare::kNone, FileCreation::kOpenAlways},
    {FileAccess::kWrite, FileShare::kNone, FileCreation::kOpenExisting},
    {FileAccess::kWrite, FileShare::kNone, FileCreation::kCreateAlways},
    {FileAccess::kReadWrite, FileShare::kNone, FileCreation::kOpenAlways}};

class PosixFileSystem : public testing::Test {
 protected:
  [[nodiscard]] fs::path Host(const char* name) const { return m_root.Path() / name; }
  void Put(const char* name, const std::string& content) {
    std::ofstream(Host(name), std::ios::binary) << content;
  }
  [[nodiscard]] std::string Get(const char* name) const {
    std::ifstream stream(Host(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  support::TempFolder m_root;
  posix::PosixFileSystem m_files{m_root.Text()};
};

TEST_F(PosixFileSystem, DevicePathsLieBelowTheRoot) {
  ASSERT_TRUE(m_files.CreateFolder(u"\\Program Files"));
  ASSERT_TRUE(WriteWhole(m_files, u"\\Program Files\\f", "abc"));
  EXPECT_EQ(Get("Program Files/f"), "abc");
}

TEST_F(PosixFileSystem, ARootThatIsNotThereHasNothingAndTakesNothing) {
  posix::PosixFileSystem files(m_root.Text() + u"/no");
  EXPECT_EQ(support::ErrorOf(files.CreateFolder(u"\\a")), FileError::kNotFound);
  EXPECT_EQ(support::ErrorOf(WriteWhole(files, u"\\f", "abc")), FileError::kNotFound);
  EXPECT_EQ(support::ErrorOf(files.Find(u"\\*")), FileError::kNotFound);
}

TEST_F(PosixFileSystem, TheExactSpellingComesFirst) {
  Put("Name", "one");
  Put("NAME", "two");
  Put("name", "three");
  EXPECT_EQ(ReadWhole(m_files, u"\\Name"), "one");
  EXPECT_EQ(ReadWhole(m_files, u"\\NAME"), "two");
  EXPECT_EQ(ReadWhole(m_files, u"\\name"), "three");
}

TEST_F(PosixFileSystem, NamesWithStrayBytesAreFoundOpenedAndDeleted) {
  Put("caf\xE9.wav", "abc");
  const std::vector<std::u16string> names = FindNames(m_files, u"\\CAF?.wav");
  ASSERT_EQ(names.size(), 1U);
  EXPECT_EQ(ReadWhole(m_files, u"\\" + names[0]), "abc");
  EXPECT_TRUE(m_files.Delete(u"\\" + names[0]));
  EXPECT_TRUE(fs::is_empty(m_root.Path()));
}

TEST_F(PosixFileSystem, ATooLongNameIsNotFound) {
  const std::u16string path = u"\\" + std::u16string(300, u'x');
  EXPECT_EQ(support::ErrorOf(m_files.Open(path, kRead)), FileError::kNotFound);
  EXPECT_EQ(support::ErrorOf(WriteWhole(m_files, path, "abc")), FileError::kNotFound);
  EXPECT_EQ(support::ErrorOf(m_files.CreateFolder(path)), FileError::kNotFound);
}

TEST_F(PosixFileSystem, APipeIsNoFileAndNobodyWaitsForItsOtherEnd) {
  ASSERT_EQ(::mkfifo(Host("pipe").c_str(), 0666), 0);
  for (const OpenMode& mode : kAllModes) {
    EXPECT_EQ(support::ErrorOf(m_files.Open(u"\\pipe", mode)), FileError::kAccessDenied);
  }
  EXPECT_EQ(support::ErrorOf(m_files.Delete(u"\\pipe")), FileError::kAccessDenied);
  EXPECT_EQ(support::ErrorOf(m_files.OpenReplacement(u"\\pipe")), FileError::kAccessDenied);
  EXPECT_TRUE(fs::is_fifo(Host("pipe")));
}

TEST_F(PosixFileSystem, ADeviceIsNoFile) {
  for (const OpenMode& mode : kAllModes) {
    EXPECT_EQ(support::ErrorOf(m_files.Open(u"/dev/null", mode)), FileError::kAccessDenied);
  }
}

TEST_F(PosixFileSystem, ASocketIsNoFile) {
  const posix::Descriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  Host("s").string().copy(address.sun_path, sizeof address.sun_path - 1);
  const void* const plain = &address;
  ASSERT_EQ(::bind(socket.Get(), static_cast<const sockaddr*>(plain), sizeof address), 0);
  for (const OpenMode& mode : kAllModes) {
    EXPECT_EQ(support::ErrorOf(m_files.Open(u"\\s", mode)), FileError::kAccessDenied);
  }
}

TEST_F(PosixFileSystem, ALinkLeadsToItsFileForReaders) {
  Put("f", "abc");
  fs::create_symlink("f", Host("link"));
  fs::create_symlink("nowhere", Host("dangling"));
  EXPECT_EQ(ReadWhole(m_files, u"\\LINK"), "abc");
  EXPECT_EQ(ReadWhole(m_files, m_root.Text() + u"/link"), "abc");
  EXPECT_EQ(support::ErrorOf(m_files.Open(u"\\dangling", kRead)), FileError::kNotFound);
}

TEST_F(PosixFileSystem, ALinkIsNeverWrittenThrough) {
  Put("f", "abc");
  fs::create_symlink("f", Host("link"));
  fs::create_symlink("nowhere", Host("dangling"));
  for (const std::u16string& folder : {std::u16string(u"\\"), m_root.Text() + u"/"}) {
    for (const std::u16string_view name : {u"link", u"dangling"}) {
      const std::u16string path = folder + std::u16string(name);
      for (std::size_t i = 1; i < std::size(kAllModes); ++i) {
        EXPECT_EQ(support::ErrorOf(m_files.Open(path, kAllModes[i])), FileError::kLink) << i;
      }
      EXPECT_EQ(support::ErrorOf(m_files.OpenReplacement(path)), FileError::kLink);
      constexpr OpenMode kNew{FileAccess::kWrite, FileShare::kNone, FileCreation::kCreateNew};
      EXPECT_EQ(support::ErrorOf(m_files.Open(path, kNew)), FileError::kAlreadyExists);
    }
  }
  EXPECT_EQ(Get("f"), "abc");
  EXPECT_FALSE(fs::exists(Host("nowhere")));
}

TEST_F(PosixFileSystem, AFolderMayBeALink) {
  const support::TempFolder elsewhere;
  fs::create_directory_symlink(elsewhere.Path(), Host("Waves"));
  EXPECT_TRUE(WriteWhole(m_files, u"\\waves\\f", "abc"));
  EXPECT_TRUE(fs::exists(elsewhere.Path() / "f"));
  EXPECT_TRUE(m_files.Find(u"\\waves").value()->Next().value().value().isFolder);
  EXPECT_THAT(FindNames(m_files, u"\\waves\\*"), UnorderedElementsAre(u"f"));
}

TEST_F(PosixFileSystem, DeleteLeavesALinkOnAPathOfTheHost) {
  Put("f", "abc");
  fs::create_symlink("f", Host("link"));
  EXPECT_EQ(support::ErrorOf(m_files.Delete(m_root.Text() + u"/link")), FileError::kLink);
  EXPECT_THAT(FindNames(m_files, u"\\*"), UnorderedElementsAre(u"f", u"link"));
}

TEST_F(PosixFileSystem, DeleteTakesTheLinkOfTheDeviceAndNotItsFile) {
  Put("f", "abc");
  fs::create_symlink("f", Host("link"));
  fs::create_symlink("nowhere", Host("dangling"));
  EXPECT_TRUE(m_files.Delete(u"\\link"));
  EXPECT_TRUE(m_files.Delete(u"\\dangling"));
  EXPECT_THAT(FindNames(m_files, u"\\*"), UnorderedElementsAre(u"f"));
}

TEST_F(PosixFileSystem, LinksInACircleLeadNowhere) {
  fs::create_symlink("b", Host("a"));
  fs::create_symlink("a", Host("b"));
  EXPECT_EQ(support::ErrorOf(m_files.Open(u"\\a", kRead)), FileError::kOther);
  EXPECT_EQ(support::ErrorOf(WriteWhole(m_files, u"\\a", "abc")), FileError::kLink);
  fs::create_directory_symlink("loop", Host("loop"));
  EXPECT_EQ(support::ErrorOf(WriteWhole(m_files, u"\\loop\\f", "abc")), FileError::kOther);
}

TEST_F(PosixFileSystem, ALinkToNothingIsFoundSinceItsNameIsTaken) {
  fs::create_symlink("nowhere", Host("link"));
  const auto search = m_files.Find(u"\\link");
  ASSERT_TRUE(search);
  EXPECT_FALSE((*search)->Next().value().value().isFolder);
  EXPECT_EQ(support::ErrorOf(m_files.CreateFolder(u"\\link")), FileError::kAlreadyExists);
}

TEST_F(PosixFileSystem, AFolderThatCannotBeReadIsNotAnEmptyOne) {
  Put("f", "abc");
  fs::create_directory(Host("blind"));
  Put("blind/One.wav", "abc");
  fs::permissions(m_root.Path(), fs::perms(0755));
  fs::permissions(Host("blind"), fs::perms(0444));
  const int step = posix_test::RunAsOrdinaryUser([&] {
    if (support::ErrorOf(m_files.Find(u"\\blind\\*.wav")) != FileError::kAccessDenied ||
        support::ErrorOf(m_files.Find(u"\\blind\\one.wav")) != FileError::kAccessDenied) {
      return 1;
    }
    return support::ErrorOf(m_files.Delete(u"\\blind\\one.wav")) == FileError::kAccessDenied ? 0
                                                                                             : 2;
  });
  EXPECT_EQ(step, 0);
  fs::permissions(Host("blind"), fs::perms(0111));
  const int spelling = posix_test::RunAsOrdinaryUser([&] {
    if (ReadWhole(m_files, u"\\blind\\One.wav") != "abc") {
      return 1;
    }
    return support::ErrorOf(m_files.Open(u"\\blind\\one.wav", kRead)) == FileError::kAccessDenied
               ? 0
               : 2;
  });
  EXPECT_EQ(spelling, 0);
}

TEST_F(PosixFileSystem, WithoutDescriptorsASearchFailsAndFindsNothingMissing) {
  Put("One.wav", "abc");
  posix_test::ChildProcess child([&](const posix_test::ToTest&) {
    const rlimit limit{0, 0};
    if (::setrlimit(RLIMIT_NOFILE, &limit) != 0) {
      return 1;
    }
    if (support::ErrorOf(m_files.Find(u"\\*.wav")) != FileError::kOther) {
      return 2;
    }
    return support::ErrorOf(m_files.Find(u"\\one.wav")) == FileError::kOther ? 0 : 3;
  });
  EXPECT_EQ(child.Wait(), 0);
}

TEST_F(PosixFileSystem, OpenFilesAreNotInheritedByPrograms) {
  const auto opened = m_files.Open(u"\\f", kAllModes[4]);
  ASSERT_TRUE(opened);
  int files = 0;
  for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    if (fs::read_symlink(entry.path(), gone) == Host("f")) {
      ++files;
      const int flags = ::fcntl(std::stoi(entry.path().filename()), F_GETFD);
      EXPECT_NE(flags & FD_CLOEXEC, 0);
    }
  }
  EXPECT_EQ(files, 1);
}

TEST_F(PosixFileSystem, AWriteBeyondTheLimitOfTheUserFailsAndTheProcessGoesOn) {
  constexpr rlim_t kLimit = 1000;
  posix_test::ChildProcess child([&](const posix_test::ToTest&) {
    const rlimit limit{kLimit, kLimit};
    if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) {
      return 1;
    }
    const auto file = m_files.Open(u"\\f", kAllModes[4]).value();
    if (support::ErrorOf(file->Write(ToBytes(std::string(1500, 'x')))) != FileError::kDiskFull) {
      return 2;
    }
    if (support::ErrorOf(file->SetLength(2000)) != FileError::kDiskFull ||
        file->GetLength() != kLimit) {
      return 3;
    }
    sigset_t signals{};
    if (::sigpending(&signals) != 0 || ::sigismember(&signals, SIGXFSZ) != 0 ||
        ::pthread_sigmask(SIG_SETMASK, nullptr, &signals) != 0 ||
        ::sigismember(&signals, SIGXFSZ) != 0) {
      return 4;
    }
    return file->Close() ? 0 : 5;
  });
  EXPECT_EQ(child.Wait(), 0);
  EXPECT_EQ(Get("f"), std::string(kLimit, 'x'));
}

}  // namespace
