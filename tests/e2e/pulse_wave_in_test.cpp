#include "backends/pulse/pulse_sound.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include "tests/e2e/pipe_microphone.h"
#include "tests/e2e/pulse_server.h"
#include "tests/e2e/recording.h"
#include "tests/e2e/sound_session.h"
#include "tests/e2e/speech.h"
#include "tests/e2e/text_file.h"
#include "tests/e2e/unix_socket.h"
#include "tests/support/results.h"

namespace {

using e2e::kRecordingFormat;
using e2e::PipeMicrophone;
using e2e::PulseInput;
using e2e::PulseServer;
using e2e::PulseServerOptions;
using e2e::Recording;
using platform::WaveResult;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::size_t kThreeSeconds = 66150;
constexpr std::size_t kTenthOfASecond = 2204;

// A sound that silence cannot be taken for: every sample is the same.
const std::vector<std::byte> kHum{std::byte{17}, std::byte{17}};

// A call ends by itself: far above its limit of three seconds, for the machine may be busy.
constexpr milliseconds kCallLimit(30000);

// Within this, nothing has waited for a server until it gave up.
constexpr milliseconds kAtOnce(2900);

template <typename Call>
milliseconds TimeOf(Call&& call) {
  const auto begin = steady_clock::now();
  call();
  return std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin);
}

class PulseWaveIn : public testing::Test {
 protected:
  void StartServer(const PulseServerOptions& options = {}) {
    m_server = PulseServer::Start(m_session, options);
    ASSERT_TRUE(m_server);
  }

  void OpenDevice() {
    auto opened = m_waveIn.Open(kRecordingFormat);
    ASSERT_TRUE(opened);
    m_device = std::move(*opened);
  }

  /// A recording much longer than the test, of which some sound is there.
  void BeginLongRecording(Recording& recording) {
    OpenDevice();
    ASSERT_TRUE(m_device);
    ASSERT_EQ(e2e::StartRecording(*m_device, recording), WaveResult::kOk);
    ASSERT_TRUE(e2e::AwaitBytes(*m_device, recording.header, 1));
  }

  void ExpectNoDeviceInTime() {
    std::uint32_t count = 1;
    EXPECT_LT(TimeOf([&] { count = m_waveIn.GetDeviceCount(); }), kCallLimit);
    EXPECT_EQ(count, 0U);
    platform::Result<std::unique_ptr<platform::WaveInDevice>, platform::WaveResult> opened;
    EXPECT_LT(TimeOf([&] { opened = m_waveIn.Open(kRecordingFormat); }), kCallLimit);
    EXPECT_EQ(support::ErrorOf(opened), WaveResult::kNoDevice);
  }

  void ExpectToEndAtOnce() {
    EXPECT_LT(TimeOf([&] { EXPECT_EQ(m_device->Reset(), WaveResult::kOk); }), kAtOnce);
    EXPECT_LT(TimeOf([&] { EXPECT_EQ(m_device->Close(), WaveResult::kOk); }), kAtOnce);
  }

  e2e::SoundSession m_session;
  std::unique_ptr<PulseServer> m_server;
  pulse::PulseWaveIn m_waveIn;
  std::unique_ptr<platform::WaveInDevice> m_device;
};

TEST_F(PulseWaveIn, SpeechOfThreeSecondsFillsTheBufferAsItWasSpoken) {
  StartServer();
  const auto speech = e2e::Speak(m_session.Folder(), "Anna Karenina", 11025, 1);
  ASSERT_GT(speech.size(), 10000U);
  const PipeMicrophone microphone(m_server->Pipe(), 11025, 1, speech);
  EXPECT_EQ(m_waveIn.GetDeviceCount(), 1U);
  ASSERT_NO_FATAL_FAILURE(OpenDevice());

  Recording recording(kThreeSeconds);
  ASSERT_EQ(e2e::StartRecording(*m_device, recording), WaveResult::kOk);
  ASSERT_EQ(e2e::UnprepareWhilePlaying(*m_device, recording.header), WaveResult::kOk);

  EXPECT_EQ(recording.header.bytesRecorded, kThreeSeconds);
  EXPECT_TRUE(e2e::IsPartOfLoop(recording.Sound(), speech));
  EXPECT_EQ(m_device->Reset(), WaveResult::kOk);
  EXPECT_EQ(m_device->Close(), WaveResult::kOk);
}

TEST_F(PulseWaveIn, ServerConvertsFromTheFormOfItsMicrophone) {
  StartServer({.input = PulseInput::kPipe, .rate = 44100, .channels = 2});
  const auto said = e2e::Speak(m_session.Folder(), "Anna Karenina", 44100, 2);
  const auto expected = e2e::Speak(m_session.Folder(), "Anna Karenina", 11025, 1);
  // Said again and again, so that all of it is in the recording wherever that begins.
  ASSERT_LT(expected.size(), kThreeSeconds / 2);
  const PipeMicrophone microphone(m_server->Pipe(), 44100, 2, said);
  ASSERT_NO_FATAL_FAILURE(OpenDevice());

  Recording recording(kThreeSeconds);
  ASSERT_EQ(e2e::StartRecording(*m_device, recording), WaveResult::kOk);
  ASSERT_EQ(e2e::UnprepareWhilePlaying(*m_device, recording.header), WaveResult::kOk);

  // Two resamplers differ by a fraction of a sample.
  const auto name = e2e::ToSamples(expected);
  EXPECT_GT(e2e::FindSound(e2e::ToSamples(recording.Sound()), name, name.size()).correlation, 0.95);
}

TEST_F(PulseWaveIn, MicrophoneIsRecordedEvenIfAMonitorIsTheDefault) {
  StartServer({.input = PulseInput::kPipeBesideMonitor});
  ASSERT_EQ(std::system("pactl set-default-source speaker.monitor"), 0);
  const PipeMicrophone microphone(m_server->Pipe(), 11025, 1, kHum);
  EXPECT_EQ(m_waveIn.GetDeviceCount(), 1U);
  ASSERT_NO_FATAL_FAILURE(OpenDevice());
  Recording recording(kTenthOfASecond);
  ASSERT_EQ(e2e::StartRecording(*m_device, recording), WaveResult::kOk);
  ASSERT_EQ(e2e::UnprepareWhilePlaying(*m_device, recording.header), WaveResult::kOk);
  EXPECT_THAT(recording.Sound(), testing::Each(kHum.front()));
}

TEST_F(PulseWaveIn, MixerShowsWhoRecordsAndWhat) {
  StartServer();
  const PipeMicrophone microphone(m_server->Pipe(), 11025, 1);
  ASSERT_NO_FATAL_FAILURE(OpenDevice());
  const std::string list = (m_session.Folder() / "streams").string();
  ASSERT_EQ(std::system(("pactl list source-outputs > '" + list + "'").c_str()), 0);
  EXPECT_THAT(e2e::ReadText(list), testing::HasSubstr("application.name = \"Voxtrel\""));
  EXPECT_THAT(e2e::ReadText(list), testing::HasSubstr("media.name = \"Recording of a name\""));
}

TEST_F(PulseWaveIn, NoServerIsNoDevice) { ExpectNoDeviceInTime(); }

TEST_F(PulseWaveIn, ServerWithoutSourcesHasNoDevice) {
  StartServer({.input = PulseInput::kNone});
  ExpectNoDeviceInTime();
}

TEST_F(PulseWaveIn, MonitorOfAnOutputIsNoDevice) {
  StartServer({.input = PulseInput::kMonitorOnly});
  ExpectNoDeviceInTime();
}

TEST_F(PulseWaveIn, ServerThatNeverAnswersIsNoDevice) {
  std::filesystem::create_directory(m_session.ServerSocket().parent_path());
  const e2e::SilentListener listener(m_session.ServerSocket());
  ASSERT_TRUE(listener.IsListening());
  ExpectNoDeviceInTime();
}

TEST_F(PulseWaveIn, FrozenServerIsNoDevice) {
  StartServer();
  m_server->Freeze();
  ExpectNoDeviceInTime();
}

TEST_F(PulseWaveIn, MicrophoneThatDeliversNothingIsRecordedAsNothing) {
  StartServer();
  EXPECT_EQ(m_waveIn.GetDeviceCount(), 1U);
  EXPECT_LT(TimeOf([&] { OpenDevice(); }), kCallLimit);
  ASSERT_TRUE(m_device);
  Recording recording(kTenthOfASecond);
  ASSERT_EQ(e2e::StartRecording(*m_device, recording), WaveResult::kOk);
  std::this_thread::sleep_for(milliseconds(300));
  EXPECT_EQ(m_device->Unprepare(recording.header), WaveResult::kStillPlaying);
  EXPECT_EQ(recording.header.bytesRecorded, 0U);
  EXPECT_THAT(recording.Memory(), testing::Each(Recording::kUntouched));
  ExpectToEndAtOnce();
}

TEST_F(PulseWaveIn, ServerKilledHalfWayLeavesWhatArrived) {
  StartServer();
  const PipeMicrophone microphone(m_server->Pipe(), 11025, 1);
  Recording recording(kThreeSeconds);
  ASSERT_NO_FATAL_FAILURE(BeginLongRecording(recording));
  const auto arrived = recording.header.bytesRecorded;

  m_server->Kill();
  EXPECT_EQ(e2e::UnprepareWhilePlaying(*m_device, recording.header), WaveResult::kNoDevice);
  EXPECT_GE(recording.header.bytesRecorded, arrived);
  EXPECT_LT(recording.header.bytesRecorded, kThreeSeconds);
  ExpectToEndAtOnce();
}

TEST_F(PulseWaveIn, ServerKilledBeforeTheStartFailsIt) {
  StartServer();
  const PipeMicrophone microphone(m_server->Pipe(), 11025, 1);
  ASSERT_NO_FATAL_FAILURE(OpenDevice());
  Recording recording(kThreeSeconds);
  ASSERT_EQ(e2e::StartRecording(*m_device, recording), WaveResult::kOk);
  m_server->Kill();
  ASSERT_EQ(e2e::UnprepareWhilePlaying(*m_device, recording.header), WaveResult::kNoDevice);
  EXPECT_EQ(m_device->Start(), WaveResult::kNoDevice);
}

TEST_F(PulseWaveIn, ServerFrozenHalfWayLeavesWhatArrived) {
  StartServer();
  const PipeMicrophone microphone(m_server->Pipe(), 11025, 1);
  Recording recording(kThreeSeconds);
  ASSERT_NO_FATAL_FAILURE(BeginLongRecording(recording));
  const auto arrived = recording.header.bytesRecorded;

  m_server->Freeze();
  EXPECT_EQ(m_device->Unprepare(recording.header), WaveResult::kStillPlaying);
  EXPECT_GE(recording.header.bytesRecorded, arrived);
  EXPECT_LT(recording.header.bytesRecorded, kThreeSeconds);
  ExpectToEndAtOnce();
}

TEST_F(PulseWaveIn, MicrophoneUnpluggedHalfWayLeavesWhatArrived) {
  StartServer();
  const PipeMicrophone microphone(m_server->Pipe(), 11025, 1);
  Recording recording(kThreeSeconds);
  ASSERT_NO_FATAL_FAILURE(BeginLongRecording(recording));

  ASSERT_EQ(std::system("pactl unload-module module-pipe-source"), 0);
  EXPECT_EQ(e2e::UnprepareWhilePlaying(*m_device, recording.header), WaveResult::kNoDevice);
  EXPECT_LT(recording.header.bytesRecorded, kThreeSeconds);
  ExpectToEndAtOnce();
}

TEST_F(PulseWaveIn, UnpluggedMicrophoneIsLostAndNotReplacedByAMonitorHalfWay) {
  StartServer({.input = PulseInput::kPipeBesideMonitor});
  const PipeMicrophone microphone(m_server->Pipe(), 11025, 1);
  Recording recording(kThreeSeconds);
  ASSERT_NO_FATAL_FAILURE(BeginLongRecording(recording));

  ASSERT_EQ(std::system("pactl unload-module module-pipe-source"), 0);
  EXPECT_EQ(e2e::UnprepareWhilePlaying(*m_device, recording.header), WaveResult::kNoDevice);
  EXPECT_LT(recording.header.bytesRecorded, kThreeSeconds);
  ExpectToEndAtOnce();
}

TEST_F(PulseWaveIn, TwoRecordAtTheSameTime) {
  StartServer();
  const PipeMicrophone microphone(m_server->Pipe(), 11025, 1);
  const auto record = [this](WaveResult& result) {
    const auto opened = m_waveIn.Open(kRecordingFormat);
    Recording recording(kTenthOfASecond);
    if (!opened) return;
    result = e2e::StartRecording(**opened, recording);
    if (result == WaveResult::kOk) result = e2e::UnprepareWhilePlaying(**opened, recording.header);
  };
  WaveResult first = WaveResult::kFailed;
  WaveResult second = WaveResult::kFailed;
  {
    const std::jthread other([&] { record(first); });
    record(second);
  }
  EXPECT_EQ(first, WaveResult::kOk);
  EXPECT_EQ(second, WaveResult::kOk);
}

TEST_F(PulseWaveIn, ComplaintsOfTheLibraryStayOutOfTheProgramsOutput) {
  // The library looks for the server's socket in a folder that it cannot make, and complains.
  m_session.SetVariable("XDG_RUNTIME_DIR", "/proc/self/none");
  // No second thread runs here, and a child that is merely forked leaves the session to this
  // process.
  GTEST_FLAG_SET(death_test_style, "fast");
  EXPECT_EXIT(
      {
        pulse::PulseWaveIn waveIn;
        std::_Exit(static_cast<int>(waveIn.GetDeviceCount()));
      },
      testing::ExitedWithCode(0), testing::IsEmpty());
}

}  // namespace
