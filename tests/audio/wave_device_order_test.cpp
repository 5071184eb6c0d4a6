#include "tests/audio/recorder_fixture.h"
#include "tests/audio/recording_steps.h"

namespace {

using platform::WaveResult;
using support::Steps;

// An earlier file of the name is tried first; what is recorded goes to a file without a name.
constexpr const char* kTried = "open for writing, alone, existing";
constexpr const char* kCreated = "open replacement";

/// The order in which a recording uses file, device and clock.
class WaveDeviceOrder : public RecorderFixture {
 protected:
  [[nodiscard]] int Record(std::uint32_t milliseconds) {
    m_steps.clear();
    return m_recorder.Record(kPath, milliseconds);
  }

  WaveDeviceOrder() {
    m_recorder.SetFormat(audio::kRecordingBits, audio::kRecordingRate);
    m_clock.SetListener([this](std::uint32_t milliseconds) {
      m_steps.push_back("sleep " + std::to_string(milliseconds));
    });
  }

  Steps m_steps;
  StepsWaveIn m_stepsWaveIn{m_waveIn, m_steps};
  support::WatchedFileSystem m_stepsFiles{m_failingFiles, m_steps};
  audio::WaveDevice m_recorder{platform::Platform{m_stepsFiles, m_stepsWaveIn, m_clock, m_threads,
                                                  m_process, m_ui, m_registry, m_contacts,
                                                  m_waveOut, m_shell}};
};

TEST_F(WaveDeviceOrder, ARecordingSleepsForItsLengthAndLeavesTheDeviceLast) {
  EXPECT_EQ(Record(3000), audio::kRecorded);
  EXPECT_EQ(m_steps, (Steps{"count devices", kTried, kCreated, "open device", "prepare 66150",
                            "add buffer with flags 2", "start", "sleep 3000", "unprepare",
                            "write 44", "write 66150", "publish", "reset", "close device"}));
}

TEST_F(WaveDeviceOrder, AnotherLengthIsAnotherSleep) {
  EXPECT_EQ(Record(200), audio::kRecorded);
  EXPECT_EQ(m_steps, (Steps{"count devices", kTried, kCreated, "open device", "prepare 4410",
                            "add buffer with flags 2", "start", "sleep 200", "unprepare",
                            "write 44", "write 4410", "publish", "reset", "close device"}));
}

TEST_F(WaveDeviceOrder, ABufferThatIsNotFullIsAskedForTwiceAndNotMore) {
  m_waveIn.SetScript({.arrivals = {10, 20, 30}});
  EXPECT_EQ(Record(3000), audio::kRecorded);
  EXPECT_EQ(m_steps,
            (Steps{"count devices", kTried, kCreated, "open device", "prepare 66150",
                   "add buffer with flags 2", "start", "sleep 3000", "unprepare", "sleep 100",
                   "unprepare", "write 44", "write 20", "publish", "reset", "close device"}));
}

TEST_F(WaveDeviceOrder, AFailureDropsTheFileThenResetsAndClosesTheDevice) {
  const Steps begin = {"count devices", kTried, kCreated, "open device"};
  const Steps end = {"reset", "close device"};
  const struct {
    machine::WaveInScript script;
    std::uint32_t milliseconds;
    Steps between;
    int code;
  } cases[] = {
      {{}, 4'000'000'000U, {}, audio::kNoBuffer},
      {{.prepare = WaveResult::kFailed}, 3000, {"prepare 66150"}, audio::kBufferNotQueued},
      {{.addBuffer = WaveResult::kFailed},
       3000,
       {"prepare 66150", "add buffer with flags 2"},
       audio::kBufferNotQueued},
      {{.start = WaveResult::kFailed},
       3000,
       {"prepare 66150", "add buffer with flags 2", "start"},
       audio::kNotStarted},
  };
  for (const auto& item : cases) {
    m_waveIn.SetScript(item.script);
    EXPECT_EQ(Record(item.milliseconds), item.code);
    Steps expected = begin;
    expected.insert(expected.end(), item.between.begin(), item.between.end());
    expected.insert(expected.end(), end.begin(), end.end());
    EXPECT_EQ(m_steps, expected);
  }
}

TEST_F(WaveDeviceOrder, WithoutADeviceToOpenOnlyTheFileIsDropped) {
  m_waveIn.SetScript({.open = WaveResult::kBadFormat});
  EXPECT_EQ(Record(3000), audio::kDeviceNotOpened);
  EXPECT_EQ(m_steps, (Steps{"count devices", kTried, kCreated, "open device"}));
}

TEST_F(WaveDeviceOrder, ARecordingThatCouldNotBeMadeLeavesNoLengthOfTheOneBefore) {
  EXPECT_EQ(Record(200), audio::kRecorded);
  EXPECT_EQ(m_recorder.GetRecordedBytes(), 4410U);
  EXPECT_EQ(m_recorder.Record(u"\\missing\\name.wav", 200), audio::kFileNotCreated);
  EXPECT_EQ(m_recorder.GetRecordedBytes(), 0U);
}

TEST_F(WaveDeviceOrder, ADeviceThatClaimsMoreThanTheBufferHoldsIsNotBelieved) {
  m_stepsWaveIn.Claim(66151);
  EXPECT_EQ(Record(3000), audio::kRecorded);
  EXPECT_EQ(GetFile().size(), 66194U);
  EXPECT_EQ(m_recorder.GetRecordedBytes(), 66150U);
}

TEST_F(WaveDeviceOrder, ABufferThatDoesNotFitItsLengthFieldCannotBeAllocated) {
  m_recorder.SetFormat(8, 2000);
  EXPECT_EQ(m_recorder.AllocBuffer(0x80000000U), nullptr) << "4,294,967,296 bytes.";
}

}  // namespace
