#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/host/cli/command_fixture.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// A folder that others may write in, where one of them planted "target", a link to a private file.
class LinkTargets : public CommandFixture {
 protected:
  LinkTargets() {
    fs::copy_file(std::string(VOXTREL_SAMPLES_DIR) + "/anna_1.wav", m_private);
    m_content = Read(m_private);
    fs::create_directory(Path("shared"));
    fs::create_symlink(m_private, m_link);
  }

  void ExpectRefusal(const std::vector<std::string>& arguments) const {
    const auto run = Run(arguments);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr(m_link)) << run.err;
    EXPECT_THAT(run.err, HasSubstr("link")) << run.err;
    EXPECT_EQ(Read(m_private), m_content);
    EXPECT_TRUE(fs::is_symlink(m_link));
    EXPECT_EQ(std::distance(fs::directory_iterator(Path("shared")), {}), 1);
  }

  [[nodiscard]] static std::string Read(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  // Of its own: to play a file keeps everybody else from opening it.
  const std::string m_sample = CopySample("anna_1.wav");
  const std::string m_private = Path("private.wav");
  const std::string m_link = Path("shared/target.wav");
  std::string m_content;
};

TEST_F(LinkTargets, ARegistryExportLeavesTheFileOfALinkAlone) {
  ExpectRefusal({"registry", "export", m_link});
  EXPECT_THAT(Run({"registry", "export", m_link}).err,
              HasSubstr(m_link + " is a link to " + m_private + ": not written"));
}

TEST_F(LinkTargets, ASpeakerFileLeavesTheFileOfALinkAlone) {
  ExpectRefusal({"--speaker", m_link, "wave", "play", m_sample});
}

TEST_F(LinkTargets, ALinkToNothingMakesNoFile) {
  fs::remove(m_private);
  EXPECT_EQ(Run({"registry", "export", m_link}).exitCode, 1);
  EXPECT_EQ(
      Run({"--microphone", m_sample, "wave", "record", m_link, "--milliseconds", "100"}).exitCode,
      1);
  EXPECT_FALSE(fs::exists(m_private));
}

TEST_F(LinkTargets, ARecordingLeavesTheFileOfALinkAlone) {
  ExpectRefusal({"--microphone", m_sample, "wave", "record", m_link, "--milliseconds", "100"});
}

TEST_F(LinkTargets, LearningLeavesTheRecordingOfALinkAlone) {
  ExpectRefusal({"template", "learn", m_link, Path("name.st")});
}

TEST_F(LinkTargets, ATemplateLeavesTheFileOfALinkAlone) {
  const std::string wave = CopySample("anna_2.wav");
  ExpectRefusal({"template", "learn", wave, m_link});
}

TEST_F(LinkTargets, SettingsThatAreALinkAreNeitherReadNorWritten) {
  ASSERT_EQ(Run({"connection", "set", "port=COM1"}).exitCode, 0);
  const std::string store = Path("root/registry.db");
  ASSERT_TRUE(fs::exists(store));
  const std::string target = Path("other.db");
  fs::rename(store, target);
  fs::permissions(target, fs::perms(0644));
  const std::string content = Read(target);
  for (const std::string suffix : {"", "-wal", "-shm", "-journal"}) {
    const std::string link = store + suffix;
    fs::create_symlink(target, link);
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{"connection", "set", "port=COM7"},
                                               {"--yes", "tags", "delete-all"},
                                               {"check", "--repair"},
                                               {"tags", "list"},
                                               {"contacts", "list"}}) {
      const auto run = Run(command);
      EXPECT_EQ(run.exitCode, 1) << command.front();
      EXPECT_THAT(run.err, HasSubstr(link + " is a link to " + target));
    }
    EXPECT_EQ(Read(target), content);
    EXPECT_EQ(fs::status(target).permissions(), fs::perms(0644));
    fs::remove(link);
  }
}

TEST_F(LinkTargets, ARootThatIsALinkToAFolderIsUsed) {
  fs::create_directory(Path("elsewhere"));
  fs::create_directory_symlink(Path("elsewhere"), Path("root"));
  EXPECT_EQ(Run({"connection", "set", "port=COM7"}).exitCode, 0);
  EXPECT_TRUE(fs::exists(Path("elsewhere/registry.db")));
  EXPECT_THAT(Run({"connection", "show"}).out, HasSubstr("COM7:"));
}

TEST_F(LinkTargets, AFolderThatIsALinkIsWrittenIn) {
  fs::create_directory(Path("real"));
  fs::create_directory_symlink(Path("real"), Path("folder"));
  const auto run = Run({"registry", "export", Path("folder/a.reg")});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_TRUE(fs::exists(Path("real/a.reg")));
}

/// Rights of what commands write, whatever the umask.
class NewFiles : public CommandFixture {};

TEST_F(NewFiles, BelongToTheirUserAlone) {
  const std::string sample = std::string(VOXTREL_SAMPLES_DIR) + "/anna_1.wav";
  const mode_t before = ::umask(0);
  const std::string wave = Path("a.wav");
  EXPECT_EQ(Run({"--microphone", sample, "wave", "record", wave}).exitCode, 0);
  EXPECT_EQ(Run({"template", "learn", wave, Path("a.st")}).exitCode, 0);
  EXPECT_EQ(Run({"registry", "export", Path("a.reg")}).exitCode, 0);
  EXPECT_EQ(Run({"--speaker", Path("heard.wav"), "wave", "play", wave}).exitCode, 0);
  ::umask(before);
  for (const char* name : {"a.wav", "a.st", "a.reg", "heard.wav"}) {
    EXPECT_EQ(fs::status(Path(name)).permissions(), fs::perms(0600)) << name;
  }
}

TEST_F(NewFiles, TakeNoFileOfTheUsersNextToThem) {
  // A copy, since other tests use the sample and the player has its file for itself.
  const std::string sample = Path("sample.wav");
  fs::copy_file(std::string(VOXTREL_SAMPLES_DIR) + "/anna_1.wav", sample);
  std::ofstream(Path("heard.wav.part")) << "mine";
  EXPECT_EQ(Run({"--speaker", Path("heard.wav"), "wave", "play", sample}).exitCode, 0);
  EXPECT_EQ(fs::file_size(Path("heard.wav.part")), 4U);
}

}  // namespace
