#include "backends/posix/posix_replacement.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "backends/posix/posix_file_system.h"
#include "tests/backends/posix/child_process.h"
#include "tests/support/file_bytes.h"
#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;
using platform::Durability;
using platform::FileError;
using posix::PosixReplacement;
using posix_test::ChildProcess;
using posix_test::ToTest;
using support::FindNames;
using support::ReadWhole;
using support::ToBytes;
using support::WriteWhole;
using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

using Making = PosixReplacement::Making;

/// Both ways of making a file that has no name yet.
class PosixReplacements : public testing::TestWithParam<Making> {
 protected:
  [[nodiscard]] auto Open(const std::string& name,
                          posix::Others others = posix::Others::kKeepRights) {
    return PosixReplacement::Open({m_root.Path().native() + "/", name}, others, GetParam());
  }
  [[nodiscard]] platform::Result<void, FileError> Publish(
      const std::string& name, const std::string& content,
      posix::Others others = posix::Others::kKeepRights) {
    const auto opened = Open(name, others);
    if (!opened) {
      return platform::Failure(opened.error());
    }
    EXPECT_TRUE((*opened)->GetFile().Write(ToBytes(content)));
    return (*opened)->Publish(Durability::kNow);
  }
  [[nodiscard]] unsigned ModeOf(const char* name) const {
    return static_cast<unsigned>(fs::status(m_root.Path() / name).permissions());
  }

  support::TempFolder m_root;
  posix::PosixFileSystem m_files{m_root.Text()};
};

TEST_P(PosixReplacements, AKillAtAnyMomentLeavesTheOldFileOrTheNewOne) {
  const std::string first(50'000, 'a');
  const std::string second(70'000, 'b');
  ASSERT_TRUE(WriteWhole(m_files, u"\\f", first));
  for (int i = 0; i < 25; ++i) {
    ChildProcess replacer([&](const ToTest& test) {
      for (bool odd = false;; odd = !odd) {
        if (!Publish("f", odd ? first : second)) {
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
    for (const std::u16string& name : FindNames(m_files, u"\\*")) {
      ASSERT_TRUE(name == u"f" || name.starts_with(platform::kUnfinishedPrefix));
    }
  }
}

TEST_P(PosixReplacements, AKillWhileTheFileIsWrittenLeavesAtMostAnUnfinishedName) {
  ChildProcess writer([&](const ToTest& test) {
    const auto opened = Open("f");
    test.Say(opened ? 'y' : 'n');
    for (;;) {
      ::pause();
    }
    return 0;
  });
  ASSERT_EQ(writer.Hear(), 'y');
  writer.Kill();
  for (const auto& entry : fs::directory_iterator(m_root.Path())) {
    EXPECT_EQ(GetParam(), Making::kWithRandomName);
    EXPECT_THAT(entry.path().filename().string(), StartsWith(".voxtrel-"));
  }
}

TEST_P(PosixReplacements, ALinkIsRefusedAndItsFileStays) {
  ASSERT_TRUE(WriteWhole(m_files, u"\\private", "mine"));
  fs::create_symlink("private", m_root.Path() / "link");
  fs::create_symlink("nothing", m_root.Path() / "dangling");
  EXPECT_EQ(support::ErrorOf(Open("link")), FileError::kLink);
  EXPECT_EQ(support::ErrorOf(Open("dangling")), FileError::kLink);
  EXPECT_EQ(ReadWhole(m_files, u"\\private"), "mine");
  EXPECT_FALSE(fs::exists(m_root.Path() / "nothing"));
}

TEST_P(PosixReplacements, ALinkThatIsPlantedMeanwhileIsRefusedAsWell) {
  ASSERT_TRUE(WriteWhole(m_files, u"\\private", "mine"));
  const auto opened = Open("f");
  ASSERT_TRUE(opened);
  fs::create_symlink("private", m_root.Path() / "f");
  EXPECT_EQ(support::ErrorOf((*opened)->Publish(Durability::kNow)), FileError::kLink);
  EXPECT_EQ(ReadWhole(m_files, u"\\private"), "mine");
  ASSERT_TRUE(fs::remove(m_root.Path() / "f"));
  EXPECT_TRUE((*opened)->Publish(Durability::kNow));
}

TEST_P(PosixReplacements, ANewFileBelongsToItsUserAloneFromTheBeginning) {
  const mode_t before = ::umask(0);
  const auto opened = Open("f");
  ::umask(before);
  ASSERT_TRUE(opened);
  for (const auto& entry : fs::directory_iterator(m_root.Path())) {
    EXPECT_EQ(ModeOf(entry.path().filename().c_str()), 0600U);
  }
  EXPECT_TRUE((*opened)->Publish(Durability::kNow));
  EXPECT_EQ(ModeOf("f"), 0600U);
}

TEST_P(PosixReplacements, TheUmaskTakesNoRightFromTheOwner) {
  const mode_t before = ::umask(0777);
  EXPECT_TRUE(Publish("f", "abc"));
  ::umask(before);
  EXPECT_EQ(ModeOf("f"), 0600U);
}

TEST_P(PosixReplacements, AFileOfTheUsersKeepsItsPermissions) {
  ASSERT_TRUE(WriteWhole(m_files, u"\\f", "old"));
  ASSERT_EQ(::chmod((m_root.Path() / "f").c_str(), 0664), 0);
  EXPECT_TRUE(Publish("f", "new"));
  EXPECT_EQ(ModeOf("f"), 0664U);
  EXPECT_TRUE(Publish("f", "new", posix::Others::kLoseRights));
  EXPECT_EQ(ModeOf("f"), 0600U);
}

TEST_P(PosixReplacements, AnAdministratorLeavesTheFileToItsOwner) {
  if (::geteuid() != 0) {
    GTEST_SKIP() << "only an administrator can give files away";
  }
  constexpr uid_t kOwner = 1234;
  constexpr gid_t kGroup = 4321;
  ASSERT_TRUE(WriteWhole(m_files, u"\\f", "old"));
  ASSERT_EQ(::chown((m_root.Path() / "f").c_str(), kOwner, kGroup), 0);
  ASSERT_TRUE(Publish("f", "new"));
  struct stat status {};
  ASSERT_EQ(::stat((m_root.Path() / "f").c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, kOwner);
  EXPECT_EQ(status.st_gid, kGroup);
}

TEST_P(PosixReplacements, AFolderWhoseNamesAreForbiddenIsLeftAsItWas) {
  if (::geteuid() != 0) {
    GTEST_SKIP() << "the files of another user are needed";
  }
  ASSERT_TRUE(WriteWhole(m_files, u"\\f", "old"));
  fs::permissions(m_root.Path(), fs::perms(0755));
  const int step = posix_test::RunAsOrdinaryUser(
      [&] { return support::ErrorOf(Publish("f", "new")) == FileError::kAccessDenied ? 0 : 1; });
  EXPECT_EQ(step, 0);
  EXPECT_EQ(ReadWhole(m_files, u"\\f"), "old");
}

TEST_P(PosixReplacements, AFileOfAnotherNameKeepsWhatItWas) {
  ASSERT_TRUE(WriteWhole(m_files, u"\\f", "old"));
  fs::create_hard_link(m_root.Path() / "f", m_root.Path() / "same");
  EXPECT_TRUE(Publish("f", "new"));
  EXPECT_EQ(ReadWhole(m_files, u"\\f"), "new");
  EXPECT_EQ(ReadWhole(m_files, u"\\same"), "old");
}

TEST_P(PosixReplacements, ThePathOfTheLongestNameIsReplaced) {
  const std::string longest(255, 'x');
  EXPECT_TRUE(Publish(longest, "one"));
  EXPECT_TRUE(Publish(longest, "two"));
  EXPECT_EQ(ReadWhole(m_files, u"\\" + std::u16string(255, u'x')), "two");
  EXPECT_EQ(support::ErrorOf(Open(std::string(256, 'x'))), FileError::kNotFound);
}

TEST_P(PosixReplacements, ADroppedFileLeavesNoName) {
  static_cast<void>(Open("f"));
  EXPECT_THAT(FindNames(m_files, u"\\*"), IsEmpty());
  EXPECT_TRUE(Publish("f", "abc"));
  EXPECT_THAT(FindNames(m_files, u"\\*"), ElementsAre(u"f"));
}

INSTANTIATE_TEST_SUITE_P(EachWay, PosixReplacements,
                         testing::Values(Making::kWithoutName, Making::kWithRandomName),
                         [](const testing::TestParamInfo<Making>& making) {
                           return making.param == Making::kWithoutName ? "WithoutName"
                                                                       : "WithRandomName";
                         });

}  // namespace
