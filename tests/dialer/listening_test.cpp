#include "dialer/listening.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>

#include "audio/samples.h"
#include "tests/machine/simulated_wave_in.h"
#include "tests/machine/simulated_wave_out.h"
#include "tests/machine/simulation.h"
#include "tests/support/failing_wave.h"
#include "tests/support/signals.h"
#include "tests/voicemath/sample_recordings.h"
#include "voicemath/take_template.h"

namespace {

using dialer::NotHeard;
using dialer::Played;
using platform::WaveResult;
using testing::ElementsAre;
using voicemath::Verdict;
using Stage = dialer::ListeningProgress::Stage;

constexpr std::size_t kSecond = 11025;

/// Waits on a clock that does not wait, and stops if it is asked to.
class PatientListener final : public dialer::Listener {
 public:
  explicit PatientListener(machine::Simulation& time) : m_time(time) {}

  [[nodiscard]] bool Wait(std::uint32_t milliseconds) override {
    m_time.Sleep(milliseconds);
    return m_time.GetElapsed() < stopAt;
  }
  void ShowProgress(const dialer::ListeningProgress& progress) override {
    reports.push_back(progress);
  }

  std::uint64_t stopAt = 1'000'000;
  std::vector<dialer::ListeningProgress> reports;

 private:
  machine::Simulation& m_time;
};

class ListeningTest : public testing::Test {
 protected:
  /// The microphone hears `sound`, a twentieth of a second after each look at it.
  void HearLive(const support::Samples& sound) {
    machine::WaveInScript script;
    script.sound = support::BytesOf(sound);
    for (std::uint32_t look = 0; look <= 60; ++look) {
      script.arrivals.push_back(look * 66150 / 60);
    }
    m_waveIn.SetScript(script);
  }
  void HearAtOnce(const support::Samples& sound) {
    machine::WaveInScript script;
    script.sound = support::BytesOf(sound);
    m_waveIn.SetScript(script);
    m_sound.hearsFile = true;
  }
  [[nodiscard]] platform::Result<dialer::Heard, NotHeard> Listen() {
    const auto heard = dialer::Listen(m_sound, m_listener);
    EXPECT_EQ(m_waveIn.OpenDevices(), 0U);
    EXPECT_EQ(m_waveOut.CountOpenDevices(), 0);
    return heard;
  }
  /// Returns how long the recording is, and 0 if there is none.
  [[nodiscard]] std::size_t Length() {
    const auto heard = Listen();
    return heard ? heard->samples.size() : 0;
  }
  [[nodiscard]] std::optional<NotHeard> Failure() {
    const auto heard = Listen();
    return heard ? std::nullopt : std::optional(heard.error());
  }

  machine::Simulation m_time;
  machine::SimulatedWaveIn m_waveIn;
  machine::SimulatedWaveOut m_waveOut;
  dialer::Sound m_sound{.waveIn = m_waveIn, .waveOut = m_waveOut, .clock = m_time};
  PatientListener m_listener{m_time};
};

support::Samples Room(int loudness = 20) { return support::Noise(3 * kSecond, loudness, 1); }
support::Samples Word(std::size_t length = 6000) { return support::SpeechLike(length, 9000, 2); }
support::Samples WordAt(std::size_t at, int loudness = 20) {
  return support::Mixed(Room(loudness), at, Word());
}

TEST_F(ListeningTest, GivesAToneAndHearsWhatIsSaidAfterIt) {
  HearLive(WordAt(kSecond / 2));
  const auto heard = Listen();
  ASSERT_TRUE(heard);
  EXPECT_THAT(heard->quality.verdicts, testing::IsEmpty());
  const support::Samples said = WordAt(kSecond / 2);
  EXPECT_TRUE(std::ranges::equal(heard->samples, std::span(said).first(heard->samples.size())));
  ASSERT_EQ(m_waveOut.GetPlayed().size(), 1U);
  EXPECT_EQ(m_waveOut.GetPlayed()[0].bytes, audio::ToBytes(audio::MakeTone()));
  EXPECT_EQ(m_listener.reports[0].stage, Stage::kTone);
  EXPECT_EQ(m_listener.reports[1].stage, Stage::kSpeak);
  EXPECT_EQ(m_listener.reports[1].leftMilliseconds, 3000U);
}

TEST_F(ListeningTest, EndsFourTenthsOfASecondAfterTheSpeechDoes) {
  HearLive(WordAt(kSecond));
  const std::size_t length = Length();
  const std::size_t end = kSecond + 6000;
  EXPECT_GE(length, end + kSecond * 3 / 10) << "The word dies away before its last sample.";
  EXPECT_LE(length, end + kSecond * 55 / 100) << "The end is looked for ten times a second.";
  EXPECT_LT(m_time.GetElapsed(), 2500U);
}

TEST_F(ListeningTest, EndsByItselfInANoisyRoomToo) {
  HearLive(WordAt(kSecond / 2, 700));
  EXPECT_LE(Length(), kSecond / 2 + 6000 + kSecond * 55 / 100);
}

TEST_F(ListeningTest, GivesOfAFileWhatItWouldHaveHeardLiveAndWaitsForNothing) {
  HearLive(WordAt(kSecond));
  const auto live = Listen();
  ASSERT_TRUE(live);
  const std::uint64_t passed = m_time.GetElapsed();
  HearAtOnce(WordAt(kSecond));
  const auto file = Listen();
  ASSERT_TRUE(file);
  EXPECT_EQ(file->samples, live->samples);
  EXPECT_EQ(m_time.GetElapsed(), passed);
  EXPECT_EQ(m_waveOut.GetPlayed().size(), 1U) << "A file needs no tone.";
}

TEST_F(ListeningTest, KeepsOfEachSampleRecordingWhatTheAppletKeeps) {
  for (const support::Samples& recording : voicemath::SampleRecordings()) {
    HearAtOnce(recording);
    const auto heard = Listen();
    ASSERT_TRUE(heard);
    const auto expected = voicemath::FindKeptPart(recording);
    const auto kept = voicemath::FindKeptPart(heard->samples);
    EXPECT_NEAR(kept.first, expected.first, 60);
    EXPECT_NEAR(kept.last, expected.last, 60);
    EXPECT_LT(heard->samples.size(), recording.size());
  }
}

TEST_F(ListeningTest, AKnockBeforeTheWordEndsNothing) {
  support::Samples sound = WordAt(2 * kSecond);
  std::ranges::fill(std::span(sound).subspan(1500, 120), std::int16_t{20000});
  HearLive(sound);
  EXPECT_GT(Length(), 2 * kSecond + 6000);
}

TEST_F(ListeningTest, AShortPauseWithinANameEndsNothing) {
  HearLive(support::Mixed(WordAt(3000), 3000 + 6000 + kSecond / 4, Word(5000)));
  EXPECT_GT(Length(), 3000 + 6000 + kSecond / 4 + 5000);
}

TEST_F(ListeningTest, EndsAfterThreeSecondsIfNobodySpeaks) {
  HearLive(Room());
  const auto heard = Listen();
  ASSERT_TRUE(heard);
  EXPECT_EQ(heard->samples.size(), 3 * kSecond);
  EXPECT_THAT(heard->quality.verdicts, ElementsAre(Verdict::kNoSpeech));
}

TEST_F(ListeningTest, KnowsAMicrophoneThatGivesZeros) {
  HearLive(support::Constant(3 * kSecond, 0));
  const auto heard = Listen();
  ASSERT_TRUE(heard);
  EXPECT_THAT(heard->quality.verdicts, ElementsAre(Verdict::kSilent));
}

TEST_F(ListeningTest, ReportsTheLevelOfWhatIsNew) {
  HearLive(support::Mixed(support::Constant(3 * kSecond, 0), kSecond,
                          support::Tone(kSecond, 40, 16384)));
  ASSERT_TRUE(Listen());
  ASSERT_GT(m_listener.reports.size(), 40U);
  EXPECT_EQ(m_listener.reports[10].levelDb, voicemath::kLowestPeakDb);
  EXPECT_NEAR(m_listener.reports[30].levelDb, -6, 0.2);
  EXPECT_EQ(m_listener.reports[21].leftMilliseconds, 2000U);
}

TEST_F(ListeningTest, AUserStopsTheToneAndTheRecording) {
  machine::WaveOutScript slow;
  slow.stillPlaying = 4;
  m_waveOut.SetScript(slow);
  for (const std::uint64_t at : {50U, 200U, 250U, 700U}) {
    HearLive(Room());
    m_listener.stopAt = m_time.GetElapsed() + at;
    EXPECT_EQ(Failure(), NotHeard::kStopped) << at;
    EXPECT_LE(m_time.GetElapsed(), m_listener.stopAt + 50);
  }
}

TEST_F(ListeningTest, SaysWhyAMicrophoneGivesNothing) {
  const auto fails = [this](const machine::WaveInScript& script) {
    m_waveIn.SetScript(script);
    return Failure();
  };
  EXPECT_EQ(fails({.deviceCount = 0}), NotHeard::kNoMicrophone);
  EXPECT_EQ(fails({.open = WaveResult::kFailed}), NotHeard::kRefused);
  EXPECT_EQ(fails({.open = WaveResult::kBadFormat}), NotHeard::kRefused);
  EXPECT_EQ(fails({.prepare = WaveResult::kFailed}), NotHeard::kRefused);
  EXPECT_EQ(fails({.addBuffer = WaveResult::kFailed}), NotHeard::kRefused);
  EXPECT_EQ(fails({.start = WaveResult::kFailed}), NotHeard::kRefused);
  EXPECT_EQ(fails({.start = WaveResult::kNoDevice}), NotHeard::kLost);
  EXPECT_EQ(fails({.unprepare = WaveResult::kNoDevice}), NotHeard::kLost);
  EXPECT_EQ(fails({.unprepare = WaveResult::kFailed}), NotHeard::kRefused);
  m_sound.hearsFile = true;
  EXPECT_EQ(fails({.open = WaveResult::kBadFormat}), NotHeard::kWrongFormat);
}

TEST_F(ListeningTest, NoFailureOfTheMicrophoneMakesItHang) {
  support::FaultPlan plan;
  support::FailingWaveIn failing(m_waveIn, plan);
  const dialer::Sound sound{.waveIn = failing, .waveOut = m_waveOut, .clock = m_time};
  std::size_t failures = 0;
  for (std::size_t call = 1; call == 1 || plan.HasFailed(); ++call) {
    HearLive(WordAt(kSecond));
    plan.FailCall(call, support::Failing::kFromThenOn);
    const std::uint64_t start = m_time.GetElapsed();
    failures += dialer::Listen(sound, m_listener) ? 0U : 1U;
    EXPECT_LT(m_time.GetElapsed() - start, 5000U);
    EXPECT_EQ(m_waveIn.OpenDevices(), 0U);
  }
  EXPECT_GT(failures, 30U) << "Each look at the recording can fail.";
}

TEST_F(ListeningTest, DoesNotWaitForeverForAMicrophoneThatIsSlowOrStandsStill) {
  machine::WaveInScript script;
  script.sound = support::BytesOf(Room());
  script.arrivals = {0};
  m_waveIn.SetScript(script);
  EXPECT_EQ(Failure(), NotHeard::kRefused);
  EXPECT_LT(m_time.GetElapsed(), 5000U);
  script.arrivals = {2001};
  m_waveIn.SetScript(script);
  EXPECT_EQ(Length(), 1000U) << "A byte that is left over is no sample.";
}

TEST_F(ListeningTest, ListensIfThereIsNoLoudspeakerOrItNeverEnds) {
  machine::WaveOutScript none;
  none.open = WaveResult::kNoDevice;
  m_waveOut.SetScript(none);
  HearLive(WordAt(kSecond));
  EXPECT_TRUE(Listen());
  machine::WaveOutScript stuck;
  stuck.stillPlaying = 1'000'000;
  m_waveOut.SetScript(stuck);
  EXPECT_TRUE(Listen());
  EXPECT_LT(m_time.GetElapsed(), 10'000U);
}

TEST_F(ListeningTest, PlaysToTheEndOrUntilTheUserStops) {
  const auto play = [this] { return dialer::Play(m_sound, Word(), m_listener); };
  EXPECT_EQ(play(), Played::kToEnd);
  EXPECT_EQ(m_waveOut.GetPlayed().back().bytes, support::BytesOf(Word()));
  machine::WaveOutScript slow;
  slow.stillPlaying = 5;
  m_waveOut.SetScript(slow);
  EXPECT_EQ(play(), Played::kToEnd);
  EXPECT_EQ(m_time.GetElapsed(), 250U);
  m_listener.stopAt = 300;
  EXPECT_EQ(play(), Played::kStopped);
  EXPECT_EQ(m_waveOut.CountOpenDevices(), 0);
}

TEST(SpeechEnd, IsNotFoundInTooLittleSound) {
  for (const std::size_t count : {0U, 1U, 54U, 109U, 110U, 165U, 1102U}) {
    EXPECT_FALSE(dialer::HasSpeechEnded(Word(count))) << count;
  }
}

}  // namespace
