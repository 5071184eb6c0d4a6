#include "host/home/take_recorder.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <algorithm>
#include <optional>

#include "platform/file_system.h"
#include "tests/machine/simulated_wave_in.h"
#include "tests/machine/simulated_wave_out.h"
#include "tests/machine/simulation.h"
#include "tests/support/signals.h"
#include "tests/support/watched_threads.h"

namespace {

using home::HeardTake;
using home::TakeProgress;
using home::TakeRecorder;
using platform::WaveResult;
using testing::ElementsAre;
using testing::IsEmpty;
using voicemath::Verdict;

constexpr std::uint32_t kTakeBytes = 66150;

/// A recorder on a machine in memory, whose time passes only if the test lets it.
class TakeRecorderTest : public testing::Test {
 protected:
  using Stage = TakeProgress::Stage;

  void Record() {
    m_recorder.Record([this](const TakeProgress& progress) { m_reports.push_back(progress); },
                      [this](const HeardTake& take) {
                        m_take = take;
                        ++m_answers;
                      });
  }
  void Pass(std::uint32_t milliseconds) {
    m_time.Sleep(milliseconds);
    QCoreApplication::processEvents();
  }
  /// The device hears `sound`. After each look at it, so many bytes have arrived.
  void Hear(const support::Samples& sound, std::vector<std::uint32_t> arrivals = {}) {
    machine::WaveInScript script;
    script.sound = support::BytesOf(sound);
    script.arrivals = std::move(arrivals);
    m_waveIn.SetScript(script);
  }
  static support::Samples Spoken() {
    return support::Mixed(support::Noise(33075, 20, 1), 9000, support::SpeechLike(9000, 9000, 2));
  }
  [[nodiscard]] std::vector<Stage> Stages() const {
    std::vector<Stage> stages;
    for (const TakeProgress& progress : m_reports) {
      if (stages.empty() || stages.back() != progress.stage) {
        stages.push_back(progress.stage);
      }
    }
    return stages;
  }

  machine::Simulation m_time;
  support::WatchedThreads m_threads{m_time};
  machine::SimulatedWaveIn m_waveIn;
  machine::SimulatedWaveOut m_waveOut;
  TakeRecorder m_recorder{{m_waveIn, m_waveOut, m_time, m_threads}};
  std::vector<TakeProgress> m_reports;
  std::optional<HeardTake> m_take;
  int m_answers = 0;
};

TEST_F(TakeRecorderTest, GivesWhatWasHeardWithThePartThatIsKeptAndTheVerdicts) {
  Hear(Spoken());
  Record();
  EXPECT_FALSE(m_take) << "No answer before the event loop runs.";
  Pass(10'000);
  ASSERT_TRUE(m_take);
  EXPECT_EQ(m_take->samples, Spoken());
  EXPECT_THAT(m_take->quality.verdicts, IsEmpty());
  EXPECT_FALSE(m_take->isRefused);
  EXPECT_NEAR(m_take->kept.first, 9000, 3500);
  EXPECT_NEAR(m_take->kept.last, 18000, 3500);
  EXPECT_THAT(Stages(), ElementsAre(Stage::kGetReady, Stage::kCue, Stage::kSpeak));
  EXPECT_EQ(m_waveIn.OpenDevices(), 0U);
  EXPECT_EQ(m_waveOut.CountOpenDevices(), 0);
}

TEST_F(TakeRecorderTest, PlaysASoftToneWithoutClicksBeforeItRecords) {
  machine::WaveOutScript slow;
  slow.stillPlaying = 4;
  m_waveOut.SetScript(slow);
  Record();
  // The tone is still heard: the microphone is open, and nothing is recorded yet.
  Pass(500 + 4 * 50);
  EXPECT_THAT(Stages(), ElementsAre(Stage::kGetReady, Stage::kCue));
  Pass(10'000);
  EXPECT_TRUE(m_take);
  ASSERT_EQ(m_waveOut.GetPlayed().size(), 1U);
  const support::Bytes bytes = m_waveOut.GetPlayed()[0].bytes;
  int peak = 0;
  int largest_step = 0;
  int before = 0;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const int sample = static_cast<std::int16_t>(
        platform::LoadLittleEndian16(std::span(bytes).subspan(i).first<2>()));
    peak = std::max(peak, std::abs(sample));
    if (i < 20) {
      largest_step = std::max(largest_step, std::abs(sample - before));
    }
    before = sample;
  }
  EXPECT_GT(peak, 4000) << "heard";
  EXPECT_LT(peak, 10000) << "soft";
  EXPECT_LT(largest_step, 500) << "begins without a click";
  EXPECT_LT(std::abs(before), 500) << "ends without a click";
}

TEST_F(TakeRecorderTest, GoesOnIfThereIsNoLoudspeaker) {
  machine::WaveOutScript none;
  none.open = WaveResult::kNoDevice;
  m_waveOut.SetScript(none);
  Hear(Spoken());
  Record();
  Pass(10'000);
  ASSERT_TRUE(m_take);
  EXPECT_THAT(m_take->quality.verdicts, IsEmpty());
}

TEST_F(TakeRecorderTest, DoesNotWaitForeverForAToneThatIsNeverHeardToItsEnd) {
  machine::WaveOutScript stuck;
  stuck.stillPlaying = 1'000'000;
  m_waveOut.SetScript(stuck);
  Record();
  Pass(10'000);
  EXPECT_TRUE(m_take);
}

TEST_F(TakeRecorderTest, ReportsLevelAndTimeLeftTwentyTimesASecond) {
  std::vector<std::uint32_t> arrivals;
  for (std::uint32_t part = 1; part <= 60; ++part) {
    arrivals.push_back(part * kTakeBytes / 60);
  }
  // Half of it silent, half of it a tone of half the full scale.
  support::Samples sound(33075);
  const support::Samples tone = support::Tone(16537, 40, 16384);
  std::ranges::copy(tone, sound.begin() + 16538);
  Hear(sound, arrivals);
  Record();
  Pass(10'000);
  std::erase_if(m_reports, [](const auto& report) { return report.stage != Stage::kSpeak; });
  ASSERT_EQ(m_reports.size(), 61U);
  EXPECT_EQ(m_reports[0].leftMilliseconds, 3000U);
  EXPECT_EQ(m_reports[20].leftMilliseconds, 2000U);
  EXPECT_EQ(m_reports[60].leftMilliseconds, 0U);
  EXPECT_EQ(m_reports[20].levelDb, voicemath::kLowestPeakDb);
  EXPECT_NEAR(m_reports[50].levelDb, -6, 0.2);
  EXPECT_EQ(m_answers, 1);
}

TEST_F(TakeRecorderTest, KeepsWhatWasHeardOfADeviceThatWasLostAndSaysSo) {
  // Lost from the first look on: the device has taken nothing.
  machine::WaveInScript lost;
  lost.unprepare = WaveResult::kNoDevice;
  m_waveIn.SetScript(lost);
  Record();
  Pass(10'000);
  ASSERT_TRUE(m_take);
  EXPECT_FALSE(m_take->isRefused);
  ASSERT_FALSE(m_take->quality.verdicts.empty());
  EXPECT_EQ(m_take->quality.verdicts[0], Verdict::kInterrupted);
}

TEST_F(TakeRecorderTest, KeepsWhatHasArrivedIfADeviceStandsStill) {
  Hear(Spoken(), {40000});
  Record();
  Pass(10'000);
  ASSERT_TRUE(m_take);
  EXPECT_EQ(m_take->samples.size(), 20000U);
  EXPECT_FALSE(m_take->isRefused);
}

TEST_F(TakeRecorderTest, SaysThatADeviceWasRefusedIfItCannotBeOpenedOrGivesNothing) {
  machine::WaveInScript busy;
  busy.open = WaveResult::kFailed;
  m_waveIn.SetScript(busy);
  Record();
  Pass(10'000);
  ASSERT_TRUE(m_take);
  EXPECT_TRUE(m_take->isRefused);
  m_take.reset();
  Hear({}, {0});
  Record();
  Pass(10'000);
  ASSERT_TRUE(m_take);
  EXPECT_TRUE(m_take->isRefused);
}

TEST_F(TakeRecorderTest, WaitsForAMicrophoneAndGoesOnByItself) {
  machine::WaveInScript none;
  none.deviceCount = 0;
  m_waveIn.SetScript(none);
  Record();
  Pass(60'000);
  EXPECT_THAT(Stages(), ElementsAre(Stage::kGetReady, Stage::kNoMicrophone));
  EXPECT_FALSE(m_take);
  Hear(Spoken());
  Pass(10'000);
  ASSERT_TRUE(m_take);
  EXPECT_THAT(m_take->quality.verdicts, IsEmpty());
}

TEST_F(TakeRecorderTest, CanBeStoppedAtAnyMomentAndThenSaysNothing) {
  for (const std::uint32_t at : {0U, 100U, 550U, 700U, 1000U, 2000U, 3650U}) {
    Hear(Spoken(), {1000});
    m_reports.clear();
    Record();
    Pass(at);
    m_recorder.Stop();
    const std::size_t before = m_reports.size();
    Pass(20'000);
    EXPECT_EQ(m_reports.size(), before) << at;
    EXPECT_EQ(m_answers, 0) << at;
    EXPECT_EQ(m_waveIn.OpenDevices(), 0U) << at;
    EXPECT_EQ(m_waveOut.CountOpenDevices(), 0) << at;
  }
}

TEST_F(TakeRecorderTest, ANewRecordingTakesThePlaceOfTheOneThatIsBeingMade) {
  Hear(Spoken());
  Record();
  Pass(100);
  Record();
  Pass(20'000);
  EXPECT_EQ(m_answers, 1);
  EXPECT_EQ(m_waveIn.OpenDevices(), 0U);
}

TEST_F(TakeRecorderTest, SaysNothingAfterItsEnd) {
  {
    TakeRecorder recorder({m_waveIn, m_waveOut, m_time, m_threads});
    recorder.Record([this](const TakeProgress& progress) { m_reports.push_back(progress); },
                    [this](const HeardTake&) { ++m_answers; });
    m_time.Sleep(2000);  // What is reported waits for the event loop.
  }
  Pass(10'000);
  EXPECT_THAT(m_reports, IsEmpty());
  EXPECT_EQ(m_answers, 0);
}

TEST_F(TakeRecorderTest, AnswersIfThereIsNoThread) {
  for (const auto made :
       {support::WatchedThreads::Made::kThread, support::WatchedThreads::Made::kEvent}) {
    m_threads.Refuse({made});
    m_take.reset();
    std::optional<bool> played;
    Record();
    m_recorder.Play(Spoken(), [&played](bool isPlayed) { played = isPlayed; });
    Pass(0);
    ASSERT_TRUE(m_take);
    EXPECT_TRUE(m_take->isRefused);
    EXPECT_EQ(played, false);
  }
}

TEST_F(TakeRecorderTest, PlaysWhatItIsGivenAndSaysWhenItWasHeard) {
  std::optional<bool> played;
  m_recorder.Play(Spoken(), [&played](bool isPlayed) { played = isPlayed; });
  Pass(5000);
  EXPECT_EQ(played, true);
  ASSERT_EQ(m_waveOut.GetPlayed().size(), 1U);
  EXPECT_EQ(m_waveOut.GetPlayed()[0].bytes, support::BytesOf(Spoken()));
  machine::WaveOutScript none;
  none.open = WaveResult::kNoDevice;
  m_waveOut.SetScript(none);
  m_recorder.Play(Spoken(), [&played](bool isPlayed) { played = isPlayed; });
  Pass(5000);
  EXPECT_EQ(played, false);
}

TEST_F(TakeRecorderTest, SaysWhatIsLeftOutOfALongNameAlthoughAllOfItWasHeard) {
  const auto speak = [this](std::size_t length, std::uint32_t voice) {
    Hear(support::Mixed(support::Noise(33075, 20, 1), 6000,
                        support::SpeechLike(length, 9000, voice)));
    Record();
    Pass(10'000);
    EXPECT_THAT(m_take->quality.verdicts, IsEmpty()) << "The take itself is good.";
  };
  speak(20'000, 2);
  EXPECT_TRUE(m_take->losesStart);
  EXPECT_FALSE(m_take->losesEnd);
  speak(20'000, 4);
  EXPECT_FALSE(m_take->losesStart);
  EXPECT_TRUE(m_take->losesEnd);
  speak(9000, 4);
  EXPECT_FALSE(m_take->losesStart || m_take->losesEnd);
}

}  // namespace
