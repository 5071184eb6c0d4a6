#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "audio/wave_device.h"
#include "backends/headless/headless_system.h"
#include "backends/headless/headless_ui.h"
#include "backends/posix/posix_file_system.h"
#include "backends/posix/posix_threads.h"
#include "backends/pulse/pulse_sound.h"
#include "tests/e2e/pipe_microphone.h"
#include "tests/e2e/pulse_server.h"
#include "tests/e2e/sound_session.h"
#include "tests/e2e/speech.h"
#include "tests/e2e/text_file.h"
#include "tests/e2e/watched_wave_in.h"
#include "tests/machine/memory_registry.h"
#include "tests/machine/simulated_contacts.h"
#include "tests/machine/simulated_wave_out.h"
#include "tests/support/temp_folder.h"

namespace {

using e2e::PipeMicrophone;
using e2e::PulseInput;
using e2e::PulseServer;
using e2e::PulseServerOptions;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using namespace std::string_view_literals;

constexpr std::uint32_t kThreeSeconds = 3000;
constexpr std::size_t kHeaderBytes = 44;

// A sound that silence cannot be taken for: every sample is the same.
const std::vector<std::byte> kHum{std::byte{17}, std::byte{17}};

constexpr std::size_t kRecordedBytes = 66150;
constexpr std::uint32_t kHalfASecond = 11025;

// Far above what a recording and the limits of the calls take: the machine may be busy.
constexpr milliseconds kPatience(60000);

/// The recorder with the real file system, clock and sound server.
class WaveDeviceAndSoundServer : public testing::Test {
 protected:
  void StartServer(const PulseServerOptions& options = {}) {
    m_server = PulseServer::Start(m_session, options);
    ASSERT_TRUE(m_server);
  }

  [[nodiscard]] int Record() {
    m_device.SetFormat(16, 11025);
    const auto begin = steady_clock::now();
    const int code = m_device.Record(u"\\name.wav", kThreeSeconds);
    EXPECT_LT(steady_clock::now() - begin, kPatience);
    return code;
  }

  [[nodiscard]] std::string File() const { return e2e::ReadText(m_root.Path() / "name.wav"); }

  /// The samples of the file, whose header must have their length.
  [[nodiscard]] std::vector<std::byte> Samples() const {
    const std::string file = File();
    if (file.size() < kHeaderBytes) {
      ADD_FAILURE() << "The file has no header.";
      return {};
    }
    const auto bytes = std::as_bytes(std::span(file));
    const auto number = [&](std::size_t at) {
      std::size_t value = 0;
      for (std::size_t i = 4; i > 0; --i) {
        value = value << 8 | std::to_integer<std::size_t>(bytes[at + i - 1]);
      }
      return value;
    };
    EXPECT_EQ(number(4), file.size());
    EXPECT_EQ(number(40), file.size() - kHeaderBytes);
    const auto samples = bytes.subspan(kHeaderBytes);
    return {samples.begin(), samples.end()};
  }

  void ExpectNoDeviceMessage() {
    EXPECT_EQ(Record(), audio::kProcessEnded);
    ASSERT_EQ(m_ui.GetMessages().size(), 1U);
    EXPECT_EQ(m_ui.GetMessages().front().box.text,
              u"There are no wave-record devices in you computer.");
    EXPECT_TRUE(m_process.GetExitCode());
    EXPECT_TRUE(File().empty());
  }

  /// Half a second is recorded, then something happens, and the rest never comes.
  void ExpectPartOfARecordingUntil(const std::function<void()>& action) {
    m_waveIn.ActAfter(kHalfASecond, action);
    EXPECT_EQ(Record(), audio::kRecorded);
    const auto samples = Samples();
    EXPECT_GE(samples.size(), kHalfASecond);
    EXPECT_LT(samples.size(), kRecordedBytes);
    EXPECT_THAT(samples, testing::Each(kHum.front()));
  }

  /// Half a second is recorded, then something happens that takes the device away.
  void ExpectLostAfter(const std::function<void()>& action) {
    m_waveIn.ActAfter(kHalfASecond, action);
    EXPECT_EQ(Record(), audio::kDeviceLost);
    EXPECT_TRUE(std::filesystem::is_empty(m_root.Path()));
    EXPECT_TRUE(m_ui.GetMessages().empty());
  }

  e2e::SoundSession m_session;
  support::TempFolder m_root;
  std::unique_ptr<PulseServer> m_server;
  posix::PosixFileSystem m_files{m_root.Text()};
  pulse::PulseWaveIn m_input;
  e2e::WatchedWaveIn m_waveIn{m_input};
  posix::PosixClock m_clock;
  posix::PosixThreads m_threads;
  headless::HeadlessProcess m_process;
  headless::HeadlessShell m_shell;
  headless::HeadlessUi m_ui;
  machine::MemoryRegistry m_registry;
  machine::SimulatedContacts m_contacts;
  machine::SimulatedWaveOut m_waveOut;
  audio::WaveDevice m_device{platform::Platform{m_files, m_waveIn, m_clock, m_threads, m_process,
                                                m_ui, m_registry, m_contacts, m_waveOut, m_shell}};
};

TEST_F(WaveDeviceAndSoundServer, SpeechBecomesAFileOfThreeSeconds) {
  StartServer();
  const auto speech = e2e::Speak(m_session.Folder(), "Anna Karenina", 11025, 1);
  ASSERT_GT(speech.size(), 10000U);
  const PipeMicrophone microphone(m_server->Pipe(), 11025, 1, speech);
  m_waveIn.WaitForStragglers();
  EXPECT_EQ(Record(), audio::kRecorded);
  const std::string file = File();
  ASSERT_EQ(file.size(), 66194U);
  EXPECT_EQ(file.substr(0, kHeaderBytes),
            "RIFF\x92\x02\x01\x00WAVEfmt \x10\x00\x00\x00\x01\x00\x01\x00"
            "\x11\x2B\x00\x00\x22\x56\x00\x00\x02\x00\x10\x00"
            "data\x66\x02\x01\x00"sv);
  EXPECT_TRUE(e2e::IsPartOfLoop(Samples(), speech));
  EXPECT_EQ(m_device.GetRecordedBytes(), kRecordedBytes);
  EXPECT_TRUE(m_ui.GetMessages().empty());
}

TEST_F(WaveDeviceAndSoundServer, WithoutAServerTheUserIsToldAndTheProcessEnds) {
  ExpectNoDeviceMessage();
}

TEST_F(WaveDeviceAndSoundServer, WithoutAMicrophoneTheUserIsToldAndTheProcessEnds) {
  StartServer({.input = PulseInput::kMonitorOnly});
  ExpectNoDeviceMessage();
}

TEST_F(WaveDeviceAndSoundServer, ServerThatDoesNotAnswerCountsAsNone) {
  StartServer();
  m_server->Freeze();
  ExpectNoDeviceMessage();
}

TEST_F(WaveDeviceAndSoundServer, MicrophoneThatDeliversNothingGivesSilence) {
  StartServer();
  EXPECT_EQ(Record(), audio::kRecorded);
  EXPECT_EQ(File().size(), 66150U) << "Of the buffer, all but the length of a header is written.";
  EXPECT_THAT(Samples(), testing::Each(std::byte{0}));
}

TEST_F(WaveDeviceAndSoundServer, ServerThatDiesHalfWayIsALostDeviceAndLeavesNoFile) {
  StartServer();
  const PipeMicrophone microphone(m_server->Pipe(), 11025, 1, kHum);
  ExpectLostAfter([this] { m_server->Kill(); });
}

TEST_F(WaveDeviceAndSoundServer, MicrophoneUnpluggedHalfWayIsALostDeviceAndLeavesNoFile) {
  StartServer();
  const PipeMicrophone microphone(m_server->Pipe(), 11025, 1, kHum);
  ExpectLostAfter([] { ASSERT_EQ(std::system("pactl unload-module module-pipe-source"), 0); });
}

TEST_F(WaveDeviceAndSoundServer, ServerThatFreezesHalfWayLeavesWhatWasRecorded) {
  StartServer();
  const PipeMicrophone microphone(m_server->Pipe(), 11025, 1, kHum);
  ExpectPartOfARecordingUntil([this] { m_server->Freeze(); });
}

}  // namespace
