#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/e2e/pipe_microphone.h"
#include "tests/e2e/pulse_server.h"
#include "tests/e2e/sound_session.h"
#include "tests/support/run_program.h"

namespace {

using e2e::PipeMicrophone;
using e2e::PulseInput;
using e2e::PulseServer;

const std::vector<std::byte> kHum{std::byte{17}, std::byte{17}};

/// The real program next to a sound server of its own.
class RecordCommand : public testing::Test {
 protected:
  [[nodiscard]] static support::ProgramRun RunWith(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), VOXTREL_PROGRAM);
    return support::RunProgram(arguments);
  }
  [[nodiscard]] support::ProgramRun Run(const std::string& option) const {
    return RunWith({option, "wave", "record", File()});
  }

  [[nodiscard]] std::string File() const { return m_session.Folder() / "name.wav"; }

  /// The program records in real time, and a machine that stands still meanwhile shortens what it
  /// gets. What is to be shown need not succeed at the first attempt.
  static constexpr int kAttempts = 5;

  /// The server dies a second after the program began to record, or nearly.
  [[nodiscard]] support::ProgramRun RunUntilTheServerDies(
      const std::vector<std::string>& arguments) const {
    const auto server = PulseServer::Start(m_session);
    if (!server) return {};
    const PipeMicrophone microphone(server->Pipe(), 11025, 1, kHum);
    const std::jthread killer([&] {
      for (int i = 0; i < 1000 && !IsRecorded(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
      }
      std::this_thread::sleep_for(std::chrono::seconds(1));
      server->Kill();
    });
    return RunWith(arguments);
  }

  /// Whether the server has somebody who records.
  [[nodiscard]] static bool IsRecorded() {
    return std::system("pactl list short source-outputs | grep -q .") == 0;
  }

  e2e::SoundSession m_session;
};

TEST_F(RecordCommand, TakesThreeSecondsFromTheMicrophone) {
  const auto server = PulseServer::Start(m_session);
  ASSERT_TRUE(server);
  const PipeMicrophone microphone(server->Pipe(), 11025, 1, kHum);
  const std::string whole = "{\"code\":0,\"bytes\":66150}\n";
  support::ProgramRun run;
  for (int attempt = 0; attempt < kAttempts && run.out != whole; ++attempt) run = Run("--json");
  EXPECT_EQ(run.out, whole);
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(std::filesystem::file_size(File()), 66194U);
}

TEST_F(RecordCommand, RecordsFromTheInputThatWasChosen) {
  const auto server = PulseServer::Start(m_session);
  ASSERT_TRUE(server);
  ASSERT_EQ(std::system("pactl load-module module-null-source source_name=headset rate=11025 "
                        "channels=1 description=Headset >/dev/null"),
            0);
  ASSERT_EQ(std::system("pactl set-default-source headset"), 0);
  const PipeMicrophone microphone(server->Pipe(), 11025, 1, kHum);
  const std::string root = m_session.Folder() / "root";
  const auto run = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--root", root});
    return RunWith(arguments);
  };
  const auto isHeard = [&] {
    const auto recorded = run({"wave", "record", "--milliseconds", "300", File()});
    EXPECT_EQ(recorded.exitCode, 0) << recorded.err;
    std::ifstream file(File(), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    return bytes.find(std::string(100, '\x11')) != std::string::npos;
  };
  EXPECT_FALSE(isHeard()) << "The server's default is silent.";
  EXPECT_THAT(run({"microphone", "list"}).out, testing::HasSubstr("* headset  Headset\n"));
  EXPECT_EQ(run({"microphone", "use", "fifo_input"}).exitCode, 0);
  EXPECT_THAT(run({"microphone", "list"}).out, testing::HasSubstr("* fifo_input"));
  EXPECT_TRUE(isHeard());
  const auto unknown = run({"microphone", "use", "speaker.monitor"});
  EXPECT_EQ(unknown.exitCode, 1);
  EXPECT_THAT(unknown.err, testing::HasSubstr("speaker.monitor: there is no such input"));
  EXPECT_EQ(run({"microphone", "use", "default"}).exitCode, 0);
  EXPECT_FALSE(isHeard());
}

TEST_F(RecordCommand, SaysThatTheMicrophoneWasLostAndLeavesNoFile) {
  const testing::Matcher<std::string> lost =
      testing::HasSubstr("the microphone was lost before the recording was whole");
  support::ProgramRun run;
  for (int attempt = 0; attempt < kAttempts && !testing::Matches(lost)(run.err); ++attempt) {
    run = RunUntilTheServerDies({"wave", "record", File()});
  }
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, lost);
  EXPECT_THAT(run.err, testing::HasSubstr("(code 6)"));
  EXPECT_FALSE(std::filesystem::exists(File()));
}

TEST_F(RecordCommand, AMicrophoneThatIsLostIsAVerdictInJson) {
  const testing::Matcher<std::string> lost = testing::HasSubstr(
      R"("quality":{"verdicts":["interrupted"],"peakDb":null,"snrDb":null,"tooAlike":[]})");
  support::ProgramRun run;
  for (int attempt = 0; attempt < kAttempts && !testing::Matches(lost)(run.out); ++attempt) {
    run = RunUntilTheServerDies({"--json", "wave", "record", File()});
  }
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, testing::StartsWith(R"({"code":6,"bytes":0,)"));
  EXPECT_THAT(run.out, lost);
}

TEST_F(RecordCommand, AMicrophoneThatIsLostIsAVerdictOfLearningToo) {
  const std::string contacts = m_session.Folder() / "contacts.vcf";
  std::ofstream(contacts) << "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Berg;Anna;;;\r\nFN:Anna Berg\r\n"
                             "TEL;TYPE=CELL:1\r\nEND:VCARD\r\n";
  const testing::Matcher<std::string> lost = testing::HasSubstr(
      R"("quality":{"verdicts":["interrupted"],"peakDb":null,"snrDb":null,"tooAlike":[]})");
  support::ProgramRun run;
  for (int attempt = 0; attempt < kAttempts && !testing::Matches(lost)(run.out); ++attempt) {
    run = RunUntilTheServerDies({"--root", m_session.Folder() / "root", "--contacts", contacts,
                                 "--json", "tags", "learn", "--contact", "Anna"});
  }
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, lost);
  const auto tags = RunWith(
      {"--root", m_session.Folder() / "root", "--contacts", contacts, "--json", "tags", "list"});
  EXPECT_EQ(tags.out, "[]\n");
}

TEST_F(RecordCommand, WithoutAMicrophoneSaysSoAndMakesNoFile) {
  const auto server = PulseServer::Start(m_session, {.input = PulseInput::kMonitorOnly});
  ASSERT_TRUE(server);
  const auto run = Run("--json");
  EXPECT_EQ(
      run.out,
      "{\"code\":-1,\"bytes\":0,\"error\":{\"code\":1,\"message\":\"Zedra Voxtrel: There are no "
      "wave-record devices in you computer.\\n" +
          File() + " was not recorded\"}}\n");
  EXPECT_EQ(run.err,
            "Zedra Voxtrel: There are no wave-record devices in you computer.\n"
            "voxtrel: " +
                File() + " was not recorded\n");
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_FALSE(std::filesystem::exists(File()));
}

}  // namespace
