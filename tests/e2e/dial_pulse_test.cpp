#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/e2e/pipe_microphone.h"
#include "tests/e2e/pulse_server.h"
#include "tests/e2e/sound_session.h"
#include "tests/host/dial/phone_program.h"
#include "tests/host/dial/terminal_job.h"
#include "tests/support/run_program.h"

namespace {

using e2e::PipeMicrophone;
using e2e::PulseInput;
using e2e::PulseServer;
using testing::HasSubstr;
namespace fs = std::filesystem;

/// The real programs next to a sound server and a made-up telephone program of their own.
class SayingANameTest : public testing::Test {
 protected:
  void SetUp() override {
    m_server = PulseServer::Start(m_session, {.input = PulseInput::kPipeBesideMonitor});
    ASSERT_TRUE(m_server);
    Write("contacts.vcf", Card("Berg;Anna", "+1 202 555 0101") + Card("Ross;Bob", "+12025550102") +
                              Card("Diaz;Carla", "+1 202 555 0103"));
    for (const auto& [contact, sample] : {std::pair("Anna Berg", "anna_1"),
                                          {"Bob Ross", "robert_1"},
                                          {"Carla Diaz", "jackson_1"}}) {
      const auto run = Run({"--microphone", Sample(sample), "--speaker", Path("heard.wav"), "tags",
                            "learn", "--contact", contact});
      ASSERT_EQ(run.exitCode, 0) << run.err;
    }
    m_phone.Put();
    for (const auto& [name, value] : m_phone.GetVariables()) {
      m_session.SetVariable(name, value);
    }
  }

  [[nodiscard]] std::string Path(const std::string& name) const {
    return (m_session.Folder() / name).string();
  }
  void Write(const std::string& name, const std::string& content) const {
    fs::create_directories(fs::path(Path(name)).parent_path());
    std::ofstream(Path(name), std::ios::binary) << content;
  }
  [[nodiscard]] static std::string Card(const std::string& name, const std::string& number) {
    return "BEGIN:VCARD\r\nVERSION:3.0\r\nN:" + name + ";;;\r\nTEL;TYPE=CELL:" + number +
           "\r\nEND:VCARD\r\n";
  }
  [[nodiscard]] static std::string Sample(const std::string& name) {
    return std::string(VOXTREL_SAMPLES_DIR) + "/" + name + ".wav";
  }

  [[nodiscard]] std::vector<std::string> Words(const std::vector<std::string>& rest) const {
    std::vector<std::string> words{VOXTREL_PROGRAM, "--root", Path("root"), "--contacts",
                                   Path("contacts.vcf")};
    words.insert(words.end(), rest.begin(), rest.end());
    return words;
  }
  [[nodiscard]] support::ProgramRun Run(const std::vector<std::string>& rest) const {
    return support::RunProgram(Words(rest));
  }
  /// Returns the samples of the recording, without its header.
  [[nodiscard]] static std::vector<std::byte> Name() {
    std::ifstream file(Sample("anna_1"), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    const auto* first = reinterpret_cast<const std::byte*>(bytes.data());
    return {first + 44, first + bytes.size()};
  }

  /// Three seconds pass in real time, in which a machine that stands still hears little. What is to
  /// be shown need not succeed at the first attempt.
  static constexpr int kAttempts = 5;

  e2e::SoundSession m_session;
  PhoneProgram m_phone{Path("desktop")};
  std::unique_ptr<PulseServer> m_server;
};

TEST_F(SayingANameTest, SaysWhoIsMeantAndTheTelephoneProgramGetsTheNumber) {
  PipeMicrophone microphone(m_server->Pipe(), 11025, 1, std::vector(64, std::byte{0}));
  for (int attempt = 0; attempt < kAttempts && m_phone.GetCalled().empty(); ++attempt) {
    TerminalJob job(Words({"dial", "--way", "tel"}), {});
    ASSERT_TRUE(job.Shows("Say a name after the tone."));
    ASSERT_TRUE(job.Shows("[")) << "It shows the level, and the tone is over.";
    microphone.Hear(Name());
    if (!job.Shows("The call begins in two seconds.", 10'000)) {
      continue;
    }
    EXPECT_THAT(job.GetShown(), HasSubstr("Anna Berg, Mobile +1 202 555 0101."));
    EXPECT_TRUE(job.Shows("Calling Anna Berg"));
    EXPECT_EQ(job.End(), 0) << job.GetShown();
    for (int wait = 0; wait < 1000 && m_phone.GetCalled().empty(); ++wait) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  }
  EXPECT_EQ(m_phone.GetCalled(), "tel:+12025550101\n");
}

TEST_F(SayingANameTest, SaysWhichMicrophoneIsSilent) {
  const PipeMicrophone microphone(m_server->Pipe(), 11025, 1);
  const auto run = Run({"--json", "dial", "--yes"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr(R"({"step":"silent"})"));
  EXPECT_THAT(run.err, testing::ContainsRegex("the microphone \".+\" gives nothing but silence"));
}

TEST_F(SayingANameTest, AMicrophoneThatIsLostInTheMidstIsReported) {
  const PipeMicrophone microphone(m_server->Pipe(), 11025, 1, std::vector(64, std::byte{17}));
  TerminalJob job(Words({"dial"}), {});
  ASSERT_TRUE(job.Shows("["));
  m_server->Kill();
  EXPECT_EQ(job.End(), 1);
  EXPECT_THAT(job.GetShown(), HasSubstr("the microphone was lost"));
  EXPECT_TRUE(job.IsUsual());
}

}  // namespace
