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
  [[nodiscard]] platform::OpenedReplacement Open(
      const std::string& name, posix::Others others = posix::Others::kKeepRights) {
    return PosixReplacement::Open({m_root.Path().native() + "/", name}, others, GetParam());
  }
  [[nodiscard]] FileError Publish(const std::string& name, const std::string& content,
                                  posix::Others others = posix::Others::kKeepRights) {
    const platform::OpenedReplacement opened = Open(name, others);
    if (opened.error != FileError::kNone) {
      return opened.error;
    }
    EXPECT_EQ(opened.replacement->GetFile().Write(ToBytes(content)), FileError::kNone);
    return opened.replacement->Publish(Durability::kNow);
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
  ASSERT_EQ(WriteWhole(m_files, u"\\f", first), FileError::kNone);
  for (int i = 0; i < 25; ++i) {
    ChildProcess replacer([&](const ToTest& test) {
      for (bool odd = false;; odd = !odd) {
        if (Publish("f", odd ? first : second) != FileError::kNone) {
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
    const platform::OpenedReplacement opened = Open("f");
    test.Say(opened.error == FileError::kNone ? 'y' : 'n');
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
  ASSERT_EQ(WriteWhole(m_files, u"\\private", "mine"), FileError::kNone);
  fs::create_symlink("private", m_root.Path() / "link");
  fs::create_symlink("nothing", m_root.Path() / "dangling");
  EXPECT_EQ(Open("link").error, FileError::kLink);
  EXPECT_EQ(Open("dangling").error, FileError::kLink);
  EXPECT_EQ(ReadWhole(m_files, u"\\private"), "mine");
  EXPECT_FALSE(fs::exists(m_root.Path() / "nothing"));
}

TEST_P(PosixReplacements, ALinkThatIsPlantedMeanwhileIsRefusedAsWell) {
  ASSERT_EQ(WriteWhole(m_files, u"\\private", "mine"), FileError::kNone);
  const platform::OpenedReplacement opened = Open("f");
  ASSERT_EQ(opened.error, FileError::kNone);
  fs::create_symlink("private", m_root.Path() / "f");
  EXPECT_EQ(opened.replacement->Publish(Durability::kNow), FileError::kLink);
  EXPECT_EQ(ReadWhole(m_files, u"\\private"), "mine");
  ASSERT_TRUE(fs::remove(m_root.Path() / "f"));
  EXPECT_EQ(opened.replacement->Publish(Durability::kNow), FileError::kNone);
}

TEST_P(PosixReplacements, ANewFileBelongsToItsUserAloneFromTheBeginning) {
  const mode_t before = ::umask(0);
  const platform::OpenedReplacement opened = Open("f");
  ::umask(before);
  ASSERT_EQ(opened.error, FileError::kNone);
  for (const auto& entry : fs::directory_iterator(m_root.Path())) {
    EXPECT_EQ(ModeOf(entry.path().filename().c_str()), 0600U);
  }
  EXPECT_EQ(opened.replacement->Publish(Durability::kNow), FileError::kNone);
  EXPECT_EQ(ModeOf("f"), 0600U);
}

TEST_P(PosixReplacements, TheUmaskTakesNoRightFromTheOwner) {
  const mode_t before = ::umask(0777);
  EXPECT_EQ(Publish("f", "abc"), FileError::kNone);
  ::umask(before);
  EXPECT_EQ(ModeOf("f"), 0600U);
}

TEST_P(PosixReplacements, AFileOfTheUsersKeepsItsPermissions) {
  ASSERT_EQ(WriteWhole(m_files, u"\\f", "old"), FileError::kNone);
  ASSERT_EQ(::chmod((m_root.Path() / "f").c_str(), 0664), 0);
  EXPECT_EQ(Publish("f", "new"), FileError::kNone);
  EXPECT_EQ(ModeOf("f"), 0664U);
  EXPECT_EQ(Publish("f", "new", posix::Others::kLoseRights), FileError::kNone);
  EXPECT_EQ(ModeOf("f"), 0600U);
}

TEST_P(PosixReplacements, AnAdministratorLeavesTheFileToItsOwner) {
  if (::geteuid() != 0) {
    GTEST_SKIP() << "only an administrator can give files away";
  }
  constexpr uid_t kOwner = 1234;
  constexpr gid_t kGroup = 4321;
  ASSERT_EQ(WriteWhole(m_files, u"\\f", "old"), FileError::kNone);
  ASSERT_EQ(::chown((m_root.Path() / "f").c_str(), kOwner, kGroup), 0);
  ASSERT_EQ(Publish("f", "new"), FileError::kNone);
  struct stat status {};
  ASSERT_EQ(::stat((m_root.Path() / "f").c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, kOwner);
  EXPECT_EQ(status.st_gid, kGroup);
}

TEST_P(PosixReplacements, AFolderWhoseNamesAreForbiddenIsLeftAsItWas) {
  if (::geteuid() != 0) {
    GTEST_SKIP() << "the files of another user are needed";
  }
  ASSERT_EQ(WriteWhole(m_files, u"\\f", "old"), FileError::kNone);
  fs::permissions(m_root.Path(), fs::perms(0755));
  const int error =
      posix_test::RunAsOrdinaryUser([&] { return static_cast<int>(Publish("f", "new")); });
  EXPECT_EQ(error, static_cast<int>(FileError::kAccessDenied));
  EXPECT_EQ(ReadWhole(m_files, u"\\f"), "old");
}

TEST_P(PosixReplacements, AFileOfAnotherNameKeepsWhatItWas) {
  ASSERT_EQ(WriteWhole(m_files, u"\\f", "old"), FileError::kNone);
  fs::create_hard_link(m_root.Path() / "f", m_root.Path() / "same");
  EXPECT_EQ(Publish("f", "new"), FileError::kNone);
  EXPECT_EQ(ReadWhole(m_files, u"\\f"), "new");
  EXPECT_EQ(ReadWhole(m_files, u"\\same"), "old");
}

TEST_P(PosixReplacements, ThePathOfTheLongestNameIsReplaced) {
  const std::string longest(255, 'x');
  EXPECT_EQ(Publish(longest, "one"), FileError::kNone);
  EXPECT_EQ(Publish(longest, "two"), FileError::kNone);
  EXPECT_EQ(ReadWhole(m_files, u"\\" + std::u16string(255, u'x')), "two");
  EXPECT_EQ(Open(std::string(256, 'x')).error, FileError::kNotFound);
}

TEST_P(PosixReplacements, ADroppedFileLeavesNoName) {
  static_cast<void>(Open("f"));
  EXPECT_THAT(FindNames(m_files, u"\\*"), IsEmpty());
  EXPECT_EQ(Publish("f", "abc"), FileError::kNone);
  EXPECT_THAT(FindNames(m_files, u"\\*"), ElementsAre(u"f"));
}

INSTANTIATE_TEST_SUITE_P(EachWay, PosixReplacements,
                         testing::Values(Making::kWithoutName, Making::kWithRandomName),
                         [](const testing::TestParamInfo<Making>& making) {
                           return making.param == Making::kWithoutName ? "WithoutName"
                                                                       : "WithRandomName";
                         });

}  // namespace
