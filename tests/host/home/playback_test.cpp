#include "host/home/playback.h"

#include <gtest/gtest.h>

#include <functional>

#include "audio/wave_device.h"
#include "audio/wave_header.h"
#include "storage/device_paths.h"
#include "storage/folders.h"
#include "tests/support/headless_platform.h"

namespace home {
namespace {

/// A clock that counts what was slept, and does something with each sleep.
class CountingClock final : public platform::Clock {
 public:
  [[nodiscard]] std::uint32_t GetTickCount() override { return m_slept; }
  [[nodiscard]] std::int64_t GetUnixTime() override { return 0; }
  void Sleep(std::uint32_t milliseconds) override {
    m_slept += milliseconds;
    if (m_onSleep) {
      m_onSleep();
    }
  }

  std::uint32_t m_slept = 0;
  std::function<void()> m_onSleep;
};

/// A tag of one second, and a loudspeaker without a device.
class PlaybackTest : public testing::Test {
 protected:
  PlaybackTest() {
    EXPECT_TRUE(storage::CreateStoreFolders(m_machine.files).has_value());
    const auto header = audio::MakeWaveHeader(
        audio::MonoPcm(audio::kRecordingBits, audio::kRecordingRate), audio::kRecordingRate * 2);
    std::vector<std::byte> wave(header.begin(), header.end());
    wave.resize(wave.size() + audio::kRecordingRate * 2);
    auto file = m_machine.files.Open(storage::WavePath(u"4711"),
                                     {platform::FileAccess::kWrite, platform::FileShare::kNone,
                                      platform::FileCreation::kCreateAlways});
    EXPECT_TRUE(file && (*file)->Write(wave));
  }

  int Run(Playback& playback) {
    const platform::Platform machine = m_machine.Get();
    const platform::Platform counted{
        machine.files, machine.waveIn,   m_clock,          machine.threads, machine.process,
        machine.ui,    machine.registry, machine.contacts, machine.waveOut, machine.shell};
    return playback.Run(counted);
  }

  support::HeadlessPlatform m_machine;
  CountingClock m_clock;
};

TEST_F(PlaybackTest, EndsWhenTheSoundHasBeenHeardAndNotAfterTwiceItsLength) {
  m_machine.waveOut.SetScript({.stillPlaying = 20});
  Playback playback(u"4711");
  EXPECT_EQ(Run(playback), audio::kPlayed);
  EXPECT_EQ(m_clock.m_slept, 1000U);
  EXPECT_EQ(m_machine.waveOut.GetPlayed().size(), 1U);
  EXPECT_EQ(m_machine.waveOut.CountOpenDevices(), 0);
}

TEST_F(PlaybackTest, EndsAtTheNextStepAfterSomebodySaidStop) {
  m_machine.waveOut.SetScript({.stillPlaying = 1000});
  Playback playback(u"4711");
  m_clock.m_onSleep = [&] { playback.Stop(); };
  EXPECT_EQ(Run(playback), audio::kPlayed);
  EXPECT_EQ(m_clock.m_slept, 50U);
  EXPECT_EQ(m_machine.waveOut.CountOpenDevices(), 0) << "it is silent";
}

TEST_F(PlaybackTest, DoesNotBeginIfItWasStoppedBefore) {
  Playback playback(u"4711");
  playback.Stop();
  EXPECT_EQ(Run(playback), audio::kPlayed);
  EXPECT_TRUE(m_machine.waveOut.GetPlayed().empty());
}

TEST_F(PlaybackTest, ALoudspeakerThatGoesAwayIsReported) {
  m_machine.waveOut.SetScript({.unprepare = platform::WaveResult::kNoDevice});
  Playback playback(u"4711");
  EXPECT_EQ(Run(playback), audio::kNotHeardToEnd);
}

TEST_F(PlaybackTest, ARecordingThatIsMissingIsReported) {
  Playback playback(u"1");
  EXPECT_EQ(Run(playback), audio::kSoundNotOpened);
}

}  // namespace
}  // namespace home
