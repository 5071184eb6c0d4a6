#include "tests/host/cli/command_fixture.h"

namespace {

using testing::HasSubstr;

class StandardStreams : public CommandFixture {
 protected:
  /// Runs the program with its streams redirected by a shell.
  [[nodiscard]] static support::ProgramRun Run(const std::string& redirection,
                                               const std::vector<std::string>& arguments) {
    std::vector<std::string> all{"sh", "-c", "\"$0\" \"$@\" " + redirection, VOXTREL_PROGRAM};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return support::RunProgram(all);
  }
};

TEST_F(StandardStreams, OutputThatIsLostIsAFailure) {
  const std::string wave = CopySample("anna_1.wav");
  for (const std::string redirection : {">/dev/full", ">&-"}) {
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"wave", "check", wave}, {"--json", "wave", "check", wave}, {"--help"}}) {
      const auto run = Run(redirection, arguments);
      EXPECT_EQ(run.exitCode, 1) << redirection;
      EXPECT_THAT(run.err, HasSubstr("could be written to standard output")) << redirection;
    }
  }
}

TEST_F(StandardStreams, MessagesThatAreLostChangeNoExitCode) {
  for (const std::string redirection : {"2>/dev/full", "2>&-"}) {
    EXPECT_EQ(Run(redirection, {"wave", "check", Path("none.wav")}).exitCode, 1);
    EXPECT_EQ(Run(redirection, {"template", "learn", Path("none.wav"), Path("a.st")}).exitCode, 1);
    EXPECT_EQ(
        Run(redirection, {"--microphone", "none.wav", "wave", "record", Path("a.wav")}).exitCode,
        1);
    EXPECT_EQ(Run(redirection, {"unknown"}).exitCode, 2);
  }
}

TEST_F(StandardStreams, NothingPrintedEndsUpInAFileOfTheUser) {
  // A file takes the lowest free number, and so that of a closed stream unless that is kept.
  const std::string wave = CopySample("anna_1.wav");
  ASSERT_EQ(Run("", {"template", "process", wave, Path("good.st")}).exitCode, 0);
  const auto run = Run("<&- >&- 2>&-", {"--json", "template", "process", wave, Path("closed.st")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(std::filesystem::file_size(wave), 66194U);
  EXPECT_EQ(std::filesystem::file_size(Path("closed.st")),
            std::filesystem::file_size(Path("good.st")));
}

}  // namespace
