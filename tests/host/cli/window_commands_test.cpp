#include <fstream>
#include <sstream>

#include "tests/host/cli/command_fixture.h"

namespace {

using testing::HasSubstr;

/// The program on its own, as if nothing else were installed: a copy next to a panel that notes how
/// it was called.
class WindowCommands : public CommandFixture {
 protected:
  WindowCommands() {
    std::filesystem::create_directories(Path("bin"));
    std::filesystem::copy_file(VOXTREL_PROGRAM, Path("bin/voxtrel"));
  }

  void PutPanel(const std::string& folder, const std::string& rest) const {
    PutWindow(folder, "voxtrel-panel", rest);
  }
  void PutWindow(const std::string& folder, const std::string& name,
                 const std::string& rest) const {
    std::filesystem::create_directories(Path(folder));
    const std::string path = Path(folder) + "/" + name;
    std::ofstream(path) << "#!/bin/sh\necho \"$*\" \"root=$VOXTREL_ROOT\" "
                           "\"microphone=$VOXTREL_MICROPHONE\" \"speaker=$VOXTREL_SPEAKER\" "
                           "\"contacts=$VOXTREL_CONTACTS\"\n"
                        << rest << "\n";
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  }

  [[nodiscard]] support::ProgramRun Window(std::vector<std::string> arguments,
                                           std::vector<std::string> environment = {
                                               "DISPLAY=:0"}) const {
    arguments.insert(arguments.begin(), Path("bin/voxtrel"));
    const std::vector<std::string> unset = {
        "DISPLAY=",       "WAYLAND_DISPLAY=", "QT_QPA_PLATFORM=",
        "XDG_DATA_HOME=", "HOME=" + Path(""), "PATH=" + Path("path")};
    environment.insert(environment.begin(), unset.begin(), unset.end());
    return support::RunProgram(arguments, environment);
  }
};

TEST_F(WindowCommands, OpenHasThePanelOpenTheApplet) {
  PutPanel("bin", "");
  const auto run = Window({"open"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out, "--open voxtrel.cpl root= microphone= speaker= contacts=\n");
}

TEST_F(WindowCommands, PanelStartsThePanel) {
  PutPanel("bin", "");
  const auto run = Window({"panel"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out, " root= microphone= speaker= contacts=\n");
}

TEST_F(WindowCommands, HomeOpensTheVoiceTags) {
  PutWindow("bin", "voxtrel-home", "");
  const auto run = Window({"--root", "r", "home"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out, " root=r microphone= speaker= contacts=\n");
  EXPECT_EQ(Window({"home", "--teach"}).out, "--teach root= microphone= speaker= contacts=\n");
  EXPECT_EQ(Window({"home", "--dial"}).out, "--dial root= microphone= speaker= contacts=\n");
}

TEST_F(WindowCommands, WithoutACommandTheVoiceTagsOpenOnADesktop) {
  PutWindow("bin", "voxtrel-home", "");
  const auto run = Window({});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out, " root= microphone= speaker= contacts=\n");
  EXPECT_EQ(Window({"--contacts", "a.vcf"}).out, " root= microphone= speaker= contacts=a.vcf\n");
}

TEST_F(WindowCommands, WithoutACommandAndWithoutADisplayTheUsageIsExplained) {
  PutWindow("bin", "voxtrel-home", "");
  const auto run = Window({}, {});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "A subcommand is required\nRun with --help for more information.\n");
}

TEST_F(WindowCommands, ACommandThatDoesNotExistOpensNoWindow) {
  PutWindow("bin", "voxtrel-home", "");
  const auto run = Window({"hme"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, HasSubstr("Did you mean 'home'?"));
}

TEST_F(WindowCommands, DialHandsItsWholeLineToTheDialerWhichNeedsNoDisplay) {
  PutWindow("bin", "voxtrel-dial", "exit 3");
  const auto run =
      Window({"--root", "r", "--json", "dial", "--to", "Anna Berg", "--way", "print", "--yes"}, {});
  EXPECT_EQ(run.exitCode, 3) << run.err;
  EXPECT_EQ(run.out,
            "--to=Anna Berg --way=print --yes --json root=r microphone= speaker= contacts=\n");
  EXPECT_EQ(run.err, "");
  EXPECT_THAT(Window({"dial", "way", "use", "tel"}, {}).out, testing::StartsWith("way use tel "));
}

TEST_F(WindowCommands, ADialerThatIsNotInstalledIsReported) {
  const auto run = Window({"dial"}, {});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("voxtrel-dial is not installed"));
}

TEST_F(WindowCommands, HandTheOptionsOn) {
  PutPanel("bin", "");
  const auto run = Window({"--root", "r", "--microphone", "m.wav", "--speaker", "s.wav",
                           "--contacts", "a.vcf", "open"});
  EXPECT_EQ(run.out, "--open voxtrel.cpl root=r microphone=m.wav speaker=s.wav contacts=a.vcf\n");
}

TEST_F(WindowCommands, TakeTheOptionsFromTheEnvironmentAsTheWindowDoes) {
  PutPanel("bin", "");
  const auto run = Window({"--root", "r", "open"},
                          {"DISPLAY=:0", "VOXTREL_ROOT=other", "VOXTREL_CONTACTS=b.vcf"});
  EXPECT_EQ(run.out, "--open voxtrel.cpl root=r microphone= speaker= contacts=b.vcf\n");
}

TEST_F(WindowCommands, FindThePanelOfTheSameBuild) {
  std::filesystem::create_directories(Path("build/host/cli"));
  std::filesystem::copy_file(VOXTREL_PROGRAM, Path("build/host/cli/voxtrel"));
  std::ofstream(Path("build/CMakeCache.txt")) << "";
  PutPanel("build/host/panel", "");
  const auto run = support::RunProgram({Path("build/host/cli/voxtrel"), "open"},
                                       {"DISPLAY=:0", "HOME=" + Path(""), "XDG_DATA_HOME="});
  EXPECT_EQ(run.exitCode, 0) << run.err;
}

TEST_F(WindowCommands, StartNoPanelButTheOneThatBelongsToThem) {
  for (const char* folder : {"panel", "path", "home"}) {
    PutPanel(folder, "");
  }
  for (const char* command : {"open", "panel"}) {
    const auto run = support::RunProgram(
        {"/bin/sh", "-c", "cd " + Path("home") + " && ../bin/voxtrel " + command},
        {"DISPLAY=:0", "HOME=" + Path("home"), "XDG_DATA_HOME=", "PATH=.:" + Path("path")});
    EXPECT_EQ(run.exitCode, 1) << command;
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr("voxtrel-panel is not installed"));
  }
}

TEST_F(WindowCommands, SayIfThePanelIsMissing) {
  const auto run = Window({"open"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("voxtrel-panel is not installed"));
}

TEST_F(WindowCommands, SayThatThereIsNoDisplay) {
  PutPanel("bin", "");
  for (const char* command : {"open", "panel"}) {
    const auto run = Window({command}, {});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr("there is no display to open a window on"));
  }
  EXPECT_EQ(Window({"open"}, {"WAYLAND_DISPLAY=wayland-0"}).exitCode, 0);
}

TEST_F(WindowCommands, FailWithThePanel) {
  PutPanel("bin", "exit 3");
  const auto failed = Window({"open"});
  EXPECT_EQ(failed.exitCode, 1);
  EXPECT_THAT(failed.err, HasSubstr("exit code 3"));
  PutPanel("bin", "kill -9 $$");
  const auto killed = Window({"open"});
  EXPECT_EQ(killed.exitCode, 1);
  EXPECT_THAT(killed.err, HasSubstr("signal 9"));
}

TEST_F(WindowCommands, AUserWithoutAHomeIsAskedForAFolder) {
  PutPanel("bin", "");
  for (const char* home : {"HOME=", "HOME=relative"}) {
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{"open"},
                                               {"tags", "list"},
                                               {"contacts", "list"},
                                               {"registry", "export"},
                                               {"check"},
                                               {"check", "--repair"},
                                               {"connection"},
                                               {"connection", "show"},
                                               {"connection", "set", "port=COM1:"},
                                               {"status"},
                                               {"reinit"}}) {
      const auto run = Window(command, {"DISPLAY=:0", home});
      EXPECT_EQ(run.exitCode, 1) << command.front();
      EXPECT_EQ(run.out, "");
      EXPECT_THAT(run.err, HasSubstr("name one with --root DIR"));
    }
  }
  EXPECT_EQ(Window({"--root", Path("root"), "open"}, {"DISPLAY=:0", "HOME="}).exitCode, 0);
}

}  // namespace
