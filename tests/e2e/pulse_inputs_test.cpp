#include "backends/pulse/pulse_inputs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <string>

#include "tests/e2e/pipe_microphone.h"
#include "tests/e2e/pulse_server.h"
#include "tests/e2e/recording.h"
#include "tests/e2e/sound_session.h"
#include "tests/support/results.h"

namespace {

using e2e::PulseInput;
using e2e::PulseServer;
using platform::WaveInput;
using platform::WaveResult;
using testing::Each;
using testing::ElementsAre;
using testing::Field;

// Far above what a busy machine needs.
constexpr std::chrono::seconds kLimit(60);
constexpr std::size_t kShortRecording = 2204;
const std::vector<std::byte> kSteadySound{std::byte{17}, std::byte{17}};

/// Counts how often a watch has called.
class Calls {
 public:
  void Count() {
    const std::lock_guard lock(m_mutex);
    ++m_count;
    m_counted.notify_all();
  }
  /// Returns false if there is no call since the last time.
  [[nodiscard]] bool AwaitMore() {
    std::unique_lock lock(m_mutex);
    const bool came = m_counted.wait_for(lock, kLimit, [this] { return m_count > m_seen; });
    m_seen = m_count;
    return came;
  }

 private:
  std::mutex m_mutex;
  std::condition_variable m_counted;
  int m_count = 0;
  int m_seen = 0;
};

class PulseInputs : public testing::Test {
 protected:
  void StartServer(PulseInput input) {
    m_server.reset();
    m_server = PulseServer::Start(m_session, {.input = input});
    ASSERT_TRUE(m_server);
  }
  static void PlugHeadsetIn() {
    ASSERT_EQ(std::system("pactl load-module module-null-source source_name=headset rate=11025 "
                          "channels=1 description=Headset >/dev/null"),
              0);
  }
  static void UnplugHeadset() {
    ASSERT_EQ(std::system("pactl unload-module module-null-source"), 0);
  }

  [[nodiscard]] std::vector<std::u16string> NamesInUse() {
    std::vector<std::u16string> names;
    for (const WaveInput& input : m_inputs.List().value_or(std::vector<WaveInput>())) {
      if (input.isUsed) {
        names.push_back(input.name);
      }
    }
    return names;
  }

  e2e::SoundSession m_session;
  std::unique_ptr<PulseServer> m_server;
  std::u16string m_chosen;
  pulse::PulseWaveInputs m_inputs{[this] { return m_chosen; }};
};

TEST_F(PulseInputs, AreTheRealOnesInWordsForPeople) {
  StartServer(PulseInput::kPipeBesideMonitor);
  PlugHeadsetIn();
  const auto inputs = m_inputs.List();
  ASSERT_TRUE(inputs);
  EXPECT_THAT(*inputs, testing::SizeIs(2)) << "The monitor of the output is none.";
  EXPECT_THAT(*inputs, testing::Contains(Field(&WaveInput::name, u"headset")));
  EXPECT_THAT(*inputs, testing::Contains(Field(&WaveInput::description, u"Headset")));
}

TEST_F(PulseInputs, WithoutAServerAreNotKnown) {
  EXPECT_EQ(support::ErrorOf(m_inputs.List()), WaveResult::kNoDevice);
}

TEST_F(PulseInputs, TheOneInUseIsTheChosenOneElseTheServersElseAnyThatIsNoMonitor) {
  StartServer(PulseInput::kPipeBesideMonitor);
  PlugHeadsetIn();
  ASSERT_EQ(std::system("pactl set-default-source headset"), 0);
  EXPECT_THAT(NamesInUse(), ElementsAre(u"headset"));
  m_chosen = u"fifo_input";
  EXPECT_THAT(NamesInUse(), ElementsAre(u"fifo_input"));
  m_chosen = u"unplugged";
  EXPECT_THAT(NamesInUse(), ElementsAre(u"headset"));
  ASSERT_EQ(std::system("pactl set-default-source speaker.monitor"), 0);
  EXPECT_THAT(NamesInUse(), testing::SizeIs(1));
  m_chosen = u"speaker.monitor";
  EXPECT_THAT(NamesInUse(), testing::SizeIs(1)) << "A monitor cannot be chosen.";
}

TEST_F(PulseInputs, TheChosenOneIsRecordedAlthoughTheServerHasAnotherDefault) {
  StartServer(PulseInput::kPipe);
  PlugHeadsetIn();
  ASSERT_EQ(std::system("pactl set-default-source headset"), 0);
  const e2e::PipeMicrophone microphone(m_server->Pipe(), 11025, 1, kSteadySound);
  m_chosen = u"fifo_input";
  pulse::PulseWaveIn waveIn([this] { return m_chosen; });
  for (const std::byte heard : {kSteadySound.front(), std::byte{0}}) {
    const auto device = waveIn.Open(e2e::kRecordingFormat);
    ASSERT_TRUE(device);
    e2e::Recording recording(kShortRecording);
    ASSERT_EQ(e2e::StartRecording(**device, recording), WaveResult::kOk);
    ASSERT_EQ(e2e::UnprepareWhilePlaying(**device, recording.header), WaveResult::kOk);
    EXPECT_THAT(recording.Sound(), Each(heard));
    m_chosen = u"unplugged";  // Then the server's own is recorded, which is silent.
  }
}

TEST_F(PulseInputs, AWatchReportsAnInputThatComesAndOneThatGoes) {
  StartServer(PulseInput::kNone);
  Calls calls;
  const auto watch = m_inputs.StartWatch([&calls] { calls.Count(); });
  ASSERT_TRUE(calls.AwaitMore()) << "It listens now.";
  PlugHeadsetIn();
  do {
    ASSERT_TRUE(calls.AwaitMore());
  } while (NamesInUse().empty());
  UnplugHeadset();
  do {
    ASSERT_TRUE(calls.AwaitMore());
  } while (!NamesInUse().empty());
}

TEST_F(PulseInputs, AWatchReportsThatTheServerGoesAndThatItComesAgain) {
  Calls calls;
  const auto watch = m_inputs.StartWatch([&calls] { calls.Count(); });
  StartServer(PulseInput::kNone);
  ASSERT_TRUE(calls.AwaitMore());
  EXPECT_TRUE(m_inputs.List());
  m_server->Kill();
  ASSERT_TRUE(calls.AwaitMore());
  EXPECT_FALSE(m_inputs.List());
  StartServer(PulseInput::kNone);
  EXPECT_TRUE(calls.AwaitMore());
  EXPECT_TRUE(m_inputs.List());
}

}  // namespace
