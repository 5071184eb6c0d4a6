#include "tests/host/cli/command_fixture.h"
#include "tests/host/cli/run_on_terminal.h"

namespace {

using testing::HasSubstr;
using testing::Not;

using ProgressLine = CommandFixture;

TEST_F(ProgressLine, ShowsOnATerminalHowFarTheRecordingHasCome) {
  const auto run = RunOnTerminal({VOXTREL_PROGRAM, "--microphone", CopySample("anna_1.wav"), "wave",
                                  "record", Path("new.wav"), "--milliseconds", "300"});
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
  const auto run = RunOnTerminal({VOXTREL_PROGRAM, "--microphone", Path("none.wav"), "wave",
                                  "record", Path("new.wav"), "--milliseconds", "300"});
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
