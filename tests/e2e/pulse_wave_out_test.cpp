#include "backends/pulse/pulse_sound.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <span>
#include <string>
#include <thread>
#include <utility>

#include "tests/e2e/ear.h"
#include "tests/e2e/playing.h"
#include "tests/e2e/pulse_server.h"
#include "tests/e2e/sound_session.h"
#include "tests/e2e/speech.h"
#include "tests/e2e/text_file.h"
#include "tests/e2e/unix_socket.h"
#include "tests/support/results.h"

namespace {

using e2e::kRecordingFormat;
using e2e::Noise;
using e2e::PulseInput;
using e2e::PulseServer;
using e2e::PulseServerOptions;
using e2e::Sound;
using platform::WaveResult;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::size_t kTenthOfASecond = 2204;
constexpr std::size_t kOneSecond = 22050;
constexpr std::size_t kFiveSeconds = 110250;

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

class PulseWaveOut : public testing::Test {
 protected:
  void StartServer(const PulseServerOptions& options = {.input = PulseInput::kEcho}) {
    m_server = PulseServer::Start(m_session, options);
    ASSERT_TRUE(m_server);
  }

  void StartServerAndEar() {
    ASSERT_NO_FATAL_FAILURE(StartServer());
    m_ear.emplace();
    ASSERT_TRUE(m_ear->IsListening());
  }

  void OpenDevice(const platform::WaveFormat& format = kRecordingFormat) {
    auto opened = m_waveOut.Open(format);
    ASSERT_TRUE(opened);
    m_device = std::move(*opened);
  }

  /// A sound much longer than the test, whose beginning was heard.
  void BeginLongSound() {
    ASSERT_NO_FATAL_FAILURE(StartServerAndEar());
    ASSERT_NO_FATAL_FAILURE(OpenDevice());
    ASSERT_EQ(e2e::StartPlaying(*m_device, m_long), WaveResult::kOk);
    ASSERT_TRUE(m_ear->Awaits(m_long.Bytes().first(kTenthOfASecond)));
  }

  /// Part of the long sound that the server has from the start on and plays more than a second
  /// later.
  [[nodiscard]] std::span<const std::byte> HandedOverEarly() const {
    return m_long.Bytes().subspan(kOneSecond * 3 / 2 - 1, 100);
  }

  void ExpectNoDeviceInTime() {
    platform::Result<std::unique_ptr<platform::WaveOutDevice>, platform::WaveResult> opened;
    EXPECT_LT(TimeOf([&] { opened = m_waveOut.Open(kRecordingFormat); }), kCallLimit);
    EXPECT_EQ(support::ErrorOf(opened), WaveResult::kNoDevice);
  }

  void ExpectToEndAtOnce() {
    EXPECT_LT(TimeOf([&] { EXPECT_EQ(m_device->Reset(), WaveResult::kOk); }), kAtOnce);
    EXPECT_LT(TimeOf([&] { EXPECT_EQ(m_device->Close(), WaveResult::kOk); }), kAtOnce);
  }

  e2e::SoundSession m_session;
  std::unique_ptr<PulseServer> m_server;
  std::optional<e2e::Ear> m_ear;
  pulse::PulseWaveOut m_waveOut;
  Sound m_long{Noise(kFiveSeconds, 1)};
  std::unique_ptr<platform::WaveOutDevice> m_device;
};

TEST_F(PulseWaveOut, SoundIsStillPlayingUntilItWasHeard) {
  StartServerAndEar();
  ASSERT_NO_FATAL_FAILURE(OpenDevice());
  Sound sound(Noise(kOneSecond, 2));
  const auto time = TimeOf([&] {
    ASSERT_EQ(e2e::StartPlaying(*m_device, sound), WaveResult::kOk);
    EXPECT_EQ(e2e::UnprepareWhilePlaying(*m_device, sound), WaveResult::kOk);
  });
  EXPECT_GE(time, milliseconds(950));
  EXPECT_TRUE(m_ear->Awaits(sound.Bytes()));
}

TEST_F(PulseWaveOut, SoundOfManyBuffersOfTheServerIsHeardWithoutAGap) {
  StartServerAndEar();
  ASSERT_NO_FATAL_FAILURE(OpenDevice());
  ASSERT_EQ(e2e::StartPlaying(*m_device, m_long), WaveResult::kOk);
  EXPECT_EQ(m_device->Unprepare(m_long.header), WaveResult::kStillPlaying);
  EXPECT_EQ(e2e::UnprepareWhilePlaying(*m_device, m_long), WaveResult::kOk);
  EXPECT_TRUE(m_ear->Awaits(m_long.Bytes()));
}

TEST_F(PulseWaveOut, ServerConvertsToTheFormOfItsOutput) {
  StartServerAndEar();
  const auto played = e2e::Speak(m_session.Folder(), "Anna Karenina", 44100, 2);
  const auto expected = e2e::Speak(m_session.Folder(), "Anna Karenina", 11025, 1);
  ASSERT_NO_FATAL_FAILURE(OpenDevice({platform::kFormatTagPcm, 2, 44100, 176400, 4, 16, 0}));
  Sound sound(played);
  ASSERT_EQ(e2e::StartPlaying(*m_device, sound), WaveResult::kOk);
  EXPECT_EQ(e2e::UnprepareWhilePlaying(*m_device, sound), WaveResult::kOk);
  // The ear follows the output by less than what this takes to be heard.
  Sound marker(Noise(kTenthOfASecond, 2));
  ASSERT_NO_FATAL_FAILURE(OpenDevice());
  ASSERT_EQ(e2e::StartPlaying(*m_device, marker), WaveResult::kOk);
  ASSERT_TRUE(m_ear->Awaits(marker.Bytes()));

  const auto heard = e2e::ToSamples(m_ear->Heard());
  // Two resamplers differ by a fraction of a sample.
  EXPECT_GT(e2e::FindSound(heard, e2e::ToSamples(expected), 2 * 11025).correlation, 0.95);
}

TEST_F(PulseWaveOut, TakesWhatTheLibraryCanExpress) {
  StartServer();
  const auto resultOf = [this](std::uint16_t channels, std::uint32_t rate, std::uint16_t bits) {
    const auto blockAlign = static_cast<std::uint16_t>(channels * bits / 8);
    return support::ErrorOf(m_waveOut.Open(
        {platform::kFormatTagPcm, channels, rate, rate * blockAlign, blockAlign, bits, 0}));
  };
  for (const std::uint16_t bits : std::array<std::uint16_t, 4>{8, 16, 24, 32}) {
    EXPECT_EQ(resultOf(1, 11025, bits), std::nullopt) << bits;
  }
  EXPECT_EQ(resultOf(7, 11025, 16), std::nullopt);
  EXPECT_EQ(resultOf(32, 11025, 16), std::nullopt);
  EXPECT_EQ(resultOf(33, 11025, 16), WaveResult::kBadFormat);
  EXPECT_EQ(resultOf(257, 11025, 16), WaveResult::kBadFormat);
  EXPECT_EQ(resultOf(1, 10'000'000, 16), WaveResult::kBadFormat);
  EXPECT_EQ(resultOf(1, 11025, 64), WaveResult::kBadFormat);
}

TEST_F(PulseWaveOut, MixerShowsWhoPlaysAndWhat) {
  StartServer();
  ASSERT_NO_FATAL_FAILURE(OpenDevice());
  const std::string list = (m_session.Folder() / "streams").string();
  ASSERT_EQ(std::system(("pactl list sink-inputs > '" + list + "'").c_str()), 0);
  EXPECT_THAT(e2e::ReadText(list), testing::HasSubstr("application.name = \"Voxtrel\""));
  EXPECT_THAT(e2e::ReadText(list), testing::HasSubstr("media.name = \"A recorded name\""));
}

TEST_F(PulseWaveOut, NoServerIsNoDevice) { ExpectNoDeviceInTime(); }

TEST_F(PulseWaveOut, ServerWithoutAnOutputHasNoDevice) {
  StartServer({.input = PulseInput::kPipe});
  ExpectNoDeviceInTime();
}

TEST_F(PulseWaveOut, ServerThatNeverAnswersIsNoDevice) {
  std::filesystem::create_directory(m_session.ServerSocket().parent_path());
  const e2e::SilentListener listener(m_session.ServerSocket());
  ASSERT_TRUE(listener.IsListening());
  ExpectNoDeviceInTime();
}

TEST_F(PulseWaveOut, FrozenServerIsNoDevice) {
  StartServer();
  m_server->Freeze();
  ExpectNoDeviceInTime();
}

TEST_F(PulseWaveOut, OutputThatStandsStillHoldsNobodyUp) {
  StartServer();
  ASSERT_EQ(std::system("pactl suspend-sink speaker 1"), 0);
  EXPECT_LT(TimeOf([&] { OpenDevice(); }), kCallLimit);
  ASSERT_TRUE(m_device);
  Sound sound(Noise(kTenthOfASecond, 2));
  EXPECT_LT(TimeOf([&] { EXPECT_EQ(e2e::StartPlaying(*m_device, sound), WaveResult::kOk); }),
            kAtOnce);
  // Long after its end too.
  const auto deadline = steady_clock::now() + milliseconds(1000);
  while (steady_clock::now() < deadline) {
    EXPECT_EQ(m_device->Unprepare(sound.header), WaveResult::kStillPlaying);
    std::this_thread::sleep_for(milliseconds(50));
  }
  ExpectToEndAtOnce();
}

TEST_F(PulseWaveOut, ResetStopsAtOnceAndTheRestIsNeverHeard) {
  ASSERT_NO_FATAL_FAILURE(BeginLongSound());
  EXPECT_EQ(m_device->Reset(), WaveResult::kOk);
  Sound marker(Noise(kTenthOfASecond, 2));
  ASSERT_EQ(e2e::StartPlaying(*m_device, marker), WaveResult::kOk);
  ASSERT_EQ(e2e::UnprepareWhilePlaying(*m_device, marker), WaveResult::kOk);
  ASSERT_TRUE(m_ear->Awaits(marker.Bytes()));
  EXPECT_FALSE(m_ear->HasHeard(HandedOverEarly()));
}

TEST_F(PulseWaveOut, CloseStopsAtOnceAndTheRestIsNeverHeard) {
  ASSERT_NO_FATAL_FAILURE(BeginLongSound());
  EXPECT_LT(TimeOf([&] { EXPECT_EQ(m_device->Close(), WaveResult::kOk); }), kAtOnce);
  ASSERT_NO_FATAL_FAILURE(OpenDevice());
  Sound marker(Noise(kTenthOfASecond, 2));
  ASSERT_EQ(e2e::StartPlaying(*m_device, marker), WaveResult::kOk);
  ASSERT_TRUE(m_ear->Awaits(marker.Bytes()));
  EXPECT_FALSE(m_ear->HasHeard(HandedOverEarly()));
}

TEST_F(PulseWaveOut, ServerKilledHalfWayIsNoDevice) {
  ASSERT_NO_FATAL_FAILURE(BeginLongSound());
  m_server->Kill();
  EXPECT_EQ(e2e::UnprepareWhilePlaying(*m_device, m_long), WaveResult::kNoDevice);
  EXPECT_EQ(m_device->Reset(), WaveResult::kOk);
  EXPECT_EQ(e2e::StartPlaying(*m_device, m_long), WaveResult::kNoDevice);
  ExpectToEndAtOnce();
}

TEST_F(PulseWaveOut, ServerFrozenHalfWayHoldsNobodyUp) {
  ASSERT_NO_FATAL_FAILURE(BeginLongSound());
  m_server->Freeze();
  EXPECT_EQ(m_device->Unprepare(m_long.header), WaveResult::kStillPlaying);
  ExpectToEndAtOnce();
}

TEST_F(PulseWaveOut, OutputUnpluggedHalfWayIsNoDevice) {
  ASSERT_NO_FATAL_FAILURE(BeginLongSound());
  ASSERT_EQ(std::system("pactl unload-module module-null-sink"), 0);
  EXPECT_EQ(e2e::UnprepareWhilePlaying(*m_device, m_long), WaveResult::kNoDevice);
  ExpectToEndAtOnce();
}

TEST_F(PulseWaveOut, TwoPlayAtTheSameTime) {
  StartServer();
  const auto play = [this](WaveResult& result) {
    const auto opened = m_waveOut.Open(kRecordingFormat);
    Sound sound(Noise(kTenthOfASecond, 2));
    if (!opened) return;
    result = e2e::StartPlaying(**opened, sound);
    if (result == WaveResult::kOk) result = e2e::UnprepareWhilePlaying(**opened, sound);
  };
  WaveResult first = WaveResult::kFailed;
  WaveResult second = WaveResult::kFailed;
  {
    const std::jthread other([&] { play(first); });
    play(second);
  }
  EXPECT_EQ(first, WaveResult::kOk);
  EXPECT_EQ(second, WaveResult::kOk);
}

TEST_F(PulseWaveOut, ComplaintsOfTheLibraryStayOutOfTheProgramsOutput) {
  // The library looks for the server's socket in a folder that it cannot make, and complains.
  m_session.SetVariable("XDG_RUNTIME_DIR", "/proc/self/none");
  // The fixture's own output has set this already.
  m_session.SetVariable("PULSE_LOG_SYSLOG", std::nullopt);
  // No second thread runs here, and a child that is merely forked leaves the session to this
  // process.
  GTEST_FLAG_SET(death_test_style, "fast");
  EXPECT_EXIT(
      {
        pulse::PulseWaveOut waveOut;
        std::_Exit(waveOut.Open(kRecordingFormat) ? 1 : 0);
      },
      testing::ExitedWithCode(0), testing::IsEmpty());
}

}  // namespace
