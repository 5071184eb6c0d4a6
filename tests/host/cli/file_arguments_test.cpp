#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <iterator>

#include "tests/host/cli/command_fixture.h"
#include "tests/host/cli/run_on_terminal.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;

/// Files that a command reads and cannot open.
class UnreadFileArgument : public CommandFixture {
 protected:
  /// Runs each command that reads a file with this one. Each fails and says why by `reason`.
  void ExpectEachSays(const std::string& file, const std::string& reason) const {
    const std::vector<std::vector<std::string>> commands{
        {"wave", "check", file},
        {"wave", "play", file},
        {"template", "show", file},
        {"template", "learn", file, Path("new.st")},
        {"language", "check", file},
        {"language", "show", file},
        {"registry", "import", file},
        {"restore", file},
        {"--microphone", file, "wave", "record", Path("new.wav")}};
    for (const auto& command : commands) {
      const auto run = Run(command);
      EXPECT_EQ(run.exitCode, 1) << command.front() << " " << command[1];
      EXPECT_THAT(run.err, HasSubstr(reason)) << command.front() << " " << command[1];
    }
  }
};

TEST_F(UnreadFileArgument, ThatIsMissingIsNamedSo) {
  ExpectEachSays(Path("none"), "there is no such file");
  ExpectEachSays(Path("none/none"), "there is no such file");
}

TEST_F(UnreadFileArgument, ThatIsAFolderIsNamedSo) {
  fs::create_directory(Path("folder"));
  ExpectEachSays(Path("folder"), "it is a folder");
}

TEST_F(UnreadFileArgument, ThatIsADeviceIsCalledNoOrdinaryFile) {
  ExpectEachSays("/dev/null", "it is no ordinary file, or you have no right to read it");
}

TEST_F(UnreadFileArgument, ThatAnotherProgramHoldsIsNamedSo) {
  std::ofstream(Path("held")) << "held";
  const int held = open(Path("held").c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_EQ(flock(held, LOCK_EX), 0);
  ExpectEachSays(Path("held"), "another program has it open");
  close(held);
}

/// "-" in the place of a file.
class StandardStreamAsFile : public CommandFixture {
 protected:
  /// Runs the program with its streams as a shell's `redirection` says. Temporary files go to a
  /// folder of the test.
  [[nodiscard]] support::ProgramRun Run(const std::string& redirection,
                                        const std::vector<std::string>& arguments) const {
    fs::create_directories(Path("temporary"));
    std::vector<std::string> all{
        "sh", "-c", "\"$0\" \"$@\" " + redirection, VOXTREL_PROGRAM, "--root", Path("root")};
    all.insert(all.end(), arguments.begin(), arguments.end());
    auto run = support::RunProgram(all, {"PULSE_SERVER=unix:" + Path("no-server"), "LC_ALL=C.UTF-8",
                                         "TMPDIR=" + Path("temporary")});
    EXPECT_TRUE(fs::is_empty(Path("temporary")));
    return run;
  }

  [[nodiscard]] std::string Content(const std::string& name) const {
    std::ifstream stream(Path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
};

TEST_F(StandardStreamAsFile, AWaveFileIsCheckedAndPlayedFromAPipe) {
  const auto sample = CopySample("anna_1.wav");
  const std::string pipe = "cat " + sample + " | ";
  const auto check = support::RunProgram(
      {"sh", "-c", pipe + "\"$0\" \"$@\"", VOXTREL_PROGRAM, "wave", "check", "-"});
  EXPECT_EQ(check.exitCode, 0) << check.err;
  EXPECT_EQ(check.out, "standard input: accepted, 66150 bytes of samples from byte 44 on\n");
  const auto play = Run("<" + sample, {"--speaker", Path("heard.wav"), "wave", "play", "-"});
  EXPECT_EQ(play.out, "Played standard input\n") << play.err;
  EXPECT_EQ(Content("heard.wav").substr(44), Content("anna_1.wav").substr(44));
}

TEST_F(StandardStreamAsFile, ThatHoldsNoWaveFileIsNamedInTheMessage) {
  const auto run = Run("</dev/null", {"wave", "check", "-"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, testing::StartsWith("voxtrel: standard input: shorter than the header"));
}

TEST_F(StandardStreamAsFile, ARecordingGoesToStandardOutputAndNothingElse) {
  const auto sample = CopySample("anna_1.wav");
  const auto run = Run(">" + Path("out.wav"), {"--microphone", sample, "wave", "record", "-"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  ASSERT_EQ(Run("", {"--microphone", sample, "wave", "record", Path("file.wav")}).exitCode, 0);
  EXPECT_EQ(Content("out.wav"), Content("file.wav"));
}

TEST_F(StandardStreamAsFile, ATemplateIsLearnedFromOneToTheOther) {
  const auto sample = CopySample("anna_1.wav");
  const std::string whole = Content("anna_1.wav");
  const auto run = Run("<" + sample + " >" + Path("out.st"), {"template", "learn", "-", "-"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(Content("anna_1.wav"), whole) << "A stream is not trimmed.";
  ASSERT_EQ(Run("", {"template", "learn", sample, Path("file.st")}).exitCode, 0);
  EXPECT_EQ(Content("out.st"), Content("file.st"));
  const auto show = Run("<" + Path("out.st"), {"template", "show", "-"});
  EXPECT_THAT(show.out, testing::StartsWith("standard input: "));
  const auto compare = Run("<" + Path("out.st"), {"template", "compare", Path("file.st"), "-"});
  EXPECT_THAT(compare.out, HasSubstr("  0.0000")) << compare.err;
  EXPECT_THAT(compare.out, testing::EndsWith("  standard input\n"));
}

TEST_F(StandardStreamAsFile, TheOriginalOfARecordingCanBeKeptOnStandardOutput) {
  const auto sample = CopySample("anna_1.wav");
  const std::string whole = Content("anna_1.wav");
  const auto run =
      Run(">" + Path("kept.wav"), {"template", "learn", sample, Path("a.st"), "--keep", "-"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(Content("kept.wav"), whole);
  const auto both = Run(">" + Path("both"), {"template", "learn", sample, "-", "--keep", "-"});
  EXPECT_EQ(both.exitCode, 2) << "Two files do not fit into one stream.";
}

TEST_F(StandardStreamAsFile, OneStreamHoldsOneTemplate) {
  const auto run = Run("</dev/null", {"template", "compare", "-", "-"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.err, HasSubstr("standard input holds one template"));
}

TEST_F(StandardStreamAsFile, ALanguageFileGoesFromACommandToTheNext) {
  ASSERT_EQ(Run(">" + Path("out.lng"), {"language", "template", "-"}).exitCode, 0);
  const auto check = Run("<" + Path("out.lng"), {"language", "check", "-"});
  EXPECT_EQ(check.out, "standard input: every key has its text\n") << check.err;
  EXPECT_EQ(Run("<" + Path("out.lng"), {"language", "show", "-"}).out,
            Run("", {"language", "show", Path("out.lng")}).out);
  EXPECT_FALSE(fs::exists("-"));
}

TEST_F(StandardStreamAsFile, TheSettingsGoFromOneRootToAnother) {
  ASSERT_EQ(Run("", {"connection", "set", "port=COM7:"}).exitCode, 0);
  ASSERT_EQ(Run(">" + Path("out.reg"), {"registry", "export", "-"}).exitCode, 0);
  fs::rename(Path("root"), Path("first"));
  const auto import = Run("<" + Path("out.reg"), {"registry", "import", "-"});
  EXPECT_EQ(import.exitCode, 0) << import.err;
  EXPECT_THAT(Run("", {"connection", "show"}).out, HasSubstr("COM7:"));
}

TEST_F(StandardStreamAsFile, IsNoTerminal) {
  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {"wave", "record", "-"}, {"template", "process", "a.wav", "-"}}) {
    std::vector<std::string> all{VOXTREL_PROGRAM, "--microphone", "none.wav"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const auto run = RunOnTerminal(all);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.out, HasSubstr("a terminal cannot show a"));
  }
}

TEST_F(StandardStreamAsFile, DoesNotTakeJsonAndAFileAtOnce) {
  const auto run = Run("", {"--json", "--microphone", "none.wav", "wave", "record", "-"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.err, HasSubstr("--json needs a file to record to"));
  EXPECT_EQ(json::parse(run.out, nullptr, false)["error"]["code"], 2);
}

TEST_F(StandardStreamAsFile, ThatTakesNoMoreIsAFailure) {
  const auto sample = CopySample("anna_1.wav");
  const auto run = Run(">/dev/full", {"template", "process", sample, "-"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, IsEmpty());
  EXPECT_THAT(run.err, HasSubstr("voxtrel: standard output: it cannot be written\n"));
}

TEST_F(StandardStreamAsFile, WhoseReaderGoesAwayLeavesNoRecordingOnTheDisk) {
  const auto sample = CopySample("anna_1.wav");
  fs::create_directories(Path("temporary"));
  // The pipe is smaller than the recording, so the program is writing when its reader has gone.
  const auto run = support::RunProgram(
      {"bash", "-c", "\"$0\" \"$@\" | head -c 1 >/dev/null; exit ${PIPESTATUS[0]}", VOXTREL_PROGRAM,
       "--microphone", sample, "wave", "record", "-", "--milliseconds", "20000"},
      {"TMPDIR=" + Path("temporary")});
  EXPECT_EQ(run.exitCode, 128 + SIGPIPE);
  for (const auto& entry : fs::recursive_directory_iterator(Path("temporary"))) {
    EXPECT_TRUE(entry.is_directory()) << entry.path();
  }
}

}  // namespace
