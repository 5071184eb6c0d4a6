// The recorder of the Voice tags window with the real sound server, clock and threads.

#include "host/home/take_recorder.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "backends/posix/posix_threads.h"
#include "backends/pulse/pulse_sound.h"
#include "tests/e2e/ear.h"
#include "tests/e2e/pipe_microphone.h"
#include "tests/e2e/pulse_server.h"
#include "tests/e2e/sound_session.h"
#include "tests/e2e/speech.h"
#include "tests/support/signals.h"
#include "voicemath/take_quality.h"

namespace {

using e2e::PulseInput;
using home::HeardTake;
using home::TakeProgress;
using testing::Contains;
using testing::IsEmpty;
using Stage = TakeProgress::Stage;

constexpr std::size_t kTakeSamples = 33075;

class TakeRecorderAndSoundServer : public testing::Test {
 protected:
  void StartServer(PulseInput input) {
    m_server = e2e::PulseServer::Start(m_session, {.input = input});
    ASSERT_TRUE(m_server);
  }

  /// Records. `watch` is called on the thread of the event loop.
  void Record(const home::TakeRecorder::Watch& watch = [](const TakeProgress&) {}) {
    home::TakeRecorder recorder({m_waveIn, m_waveOut, m_clock, m_threads});
    recorder.Record(
        [&](const TakeProgress& progress) {
          watch(progress);
          if (progress.stage == Stage::kSpeak) {
            m_highest = std::max(m_highest, progress.levelDb);
          }
        },
        [this](const HeardTake& take) { m_take = take; });
    QElapsedTimer patience;
    patience.start();
    while (!m_take && !patience.hasExpired(60'000)) {
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    }
    ASSERT_TRUE(m_take);
  }

  int m_count = 1;
  char m_name[5] = "test";
  char* m_arguments[1] = {m_name};
  QCoreApplication m_application{m_count, m_arguments};
  e2e::SoundSession m_session;
  std::unique_ptr<e2e::PulseServer> m_server;
  pulse::PulseWaveIn m_waveIn;
  pulse::PulseWaveOut m_waveOut;
  posix::PosixClock m_clock;
  posix::PosixThreads m_threads;
  std::optional<HeardTake> m_take;
  double m_highest = -200;
};

TEST_F(TakeRecorderAndSoundServer, PlaysATonePeopleHearAndKeepsItOutOfTheTake) {
  StartServer(PulseInput::kEcho);  // The microphone hears the loudspeaker.
  e2e::Ear ear;
  ASSERT_TRUE(ear.IsListening());
  Record();
  EXPECT_GT(voicemath::PeakDb(e2e::ToSamples(ear.Heard())), -20) << "The tone was heard.";
  EXPECT_EQ(m_take->samples.size(), kTakeSamples);
  EXPECT_LT(voicemath::PeakDb(m_take->samples), -60) << "It is not in the take.";
  EXPECT_THAT(m_take->quality.verdicts, Contains(voicemath::Verdict::kSilent));
}

TEST_F(TakeRecorderAndSoundServer, HearsWhatIsSaidAfterTheToneWithItsLevel) {
  StartServer(PulseInput::kPipe);
  e2e::PipeMicrophone microphone(m_server->Pipe(), 11025, 1);
  const support::Samples name =
      support::Mixed(support::Samples(16000), 6000, support::SpeechLike(8000, 9000, 2));
  bool isSaid = false;
  Record([&](const TakeProgress& progress) {
    if (progress.stage == Stage::kSpeak && !std::exchange(isSaid, true)) {
      microphone.Hear(support::BytesOf(name));
    }
  });
  EXPECT_EQ(m_take->samples.size(), kTakeSamples);
  EXPECT_THAT(m_take->quality.verdicts, IsEmpty());
  EXPECT_GT(m_highest, -20);
  EXPECT_NEAR(m_highest, voicemath::PeakDb(m_take->samples), 0.1);
}

TEST_F(TakeRecorderAndSoundServer, KeepsWhatWasHeardBeforeTheServerEnded) {
  StartServer(PulseInput::kPipe);
  e2e::PipeMicrophone microphone(m_server->Pipe(), 11025, 1,
                                 support::BytesOf(support::Noise(11025, 3000, 1)));
  Record([this](const TakeProgress& progress) {
    // Half of the time is over.
    if (progress.stage == Stage::kSpeak && progress.leftMilliseconds < 1500) {
      m_server->Kill();
    }
  });
  ASSERT_FALSE(m_take->quality.verdicts.empty());
  EXPECT_EQ(m_take->quality.verdicts.front(), voicemath::Verdict::kInterrupted);
  EXPECT_GT(m_take->samples.size(), 5000U);
  EXPECT_LT(m_take->samples.size(), kTakeSamples);
}

}  // namespace
