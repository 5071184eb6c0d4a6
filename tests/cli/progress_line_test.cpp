#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>

#include "tests/cli/command_fixture.h"

namespace {

using testing::HasSubstr;
using testing::Not;

class ProgressLine : public CommandFixture {
 protected:
  /// Runs the program with a terminal for its streams, and gives what the terminal was shown.
  [[nodiscard]] static support::ProgramRun RunOnTerminal(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), VOXTREL_PROGRAM);
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
      pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);

    int terminal = -1;
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
      ::execv(pointers[0], pointers.data());
      ::_exit(127);
    }
    support::ProgramRun run;
    std::array<char, 4096> buffer{};
    // Reading fails when the program, the only one at the other end, has gone.
    for (ssize_t count = 0;
         child > 0 && (count = ::read(terminal, buffer.data(), buffer.size())) > 0;) {
      run.out.append(buffer.data(), static_cast<std::size_t>(count));
    }
    int status = 0;
    if (child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status)) {
      run.exitCode = WEXITSTATUS(status);
    }
    ::close(terminal);
    return run;
  }
};

TEST_F(ProgressLine, ShowsOnATerminalHowFarTheRecordingHasCome) {
  const auto run = RunOnTerminal({"--microphone", CopySample("anna_1.wav"), "wave", "record",
                                  Path("new.wav"), "--milliseconds", "300"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out,
            "\rSpeak now  [..............................] 0.0 s of 0.3 s"
            "\rSpeak now  [##########....................] 0.1 s of 0.3 s"
            "\rSpeak now  [####################..........] 0.2 s of 0.3 s"
            "\rSpeak now  [##############################] 0.3 s of 0.3 s\r\n"
            "Recorded 0.3 s to " +
                Path("new.wav") + "\r\n");
}

TEST_F(ProgressLine, AsksNobodyToSpeakWhereNothingIsRecorded) {
  const auto run = RunOnTerminal({"--microphone", Path("none.wav"), "wave", "record",
                                  Path("new.wav"), "--milliseconds", "300"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, Not(HasSubstr("Speak now")));
  EXPECT_THAT(run.out, HasSubstr("was not recorded"));
}

TEST_F(ProgressLine, StaysOutOfAFile) {
  const auto run = Run({"--microphone", CopySample("anna_1.wav"), "wave", "record", Path("new.wav"),
                        "--milliseconds", "100"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.err, "");
}

}  // namespace
