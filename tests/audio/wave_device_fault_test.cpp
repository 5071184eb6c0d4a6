#include <new>

#include "tests/audio/recorder_fixture.h"

namespace {

using support::Failing;

class WaveDeviceFaults : public RecorderFixture, public testing::WithParamInterface<Failing> {};

TEST_P(WaveDeviceFaults, EachFailingFileCallGivesTheMessageOrTheWholeRecording) {
  bool anyFailed = true;
  for (std::size_t call = 1; anyFailed; ++call) {
    SCOPED_TRACE(call);
    static_cast<void>(m_files.Delete(kPath));
    const std::size_t messagesBefore = m_ui.GetMessages().size();
    m_failingFiles.FailCall(call, GetParam(), platform::FileError::kDiskFull);
    const int code = m_device.Record(kPath, 200);
    anyFailed = m_failingFiles.HasFailed();

    if (code == audio::kRecorded) {
      EXPECT_EQ(GetFile().size(), 44U + 4410U);
      EXPECT_EQ(m_ui.GetMessages().size(), messagesBefore);
    } else {
      EXPECT_EQ(code, audio::kFileNotCreated);
      ASSERT_EQ(m_ui.GetMessages().size(), messagesBefore + 1);
      EXPECT_EQ(m_ui.GetMessages().back().box.text, u"File :/name.wav couldn't be creat");
      EXPECT_EQ(m_device.GetRecordedBytes(), 0U);
      if (GetParam() == Failing::kOnce) {
        EXPECT_FALSE(m_files.GetFile(kPath)) << "A torn recording is not left behind.";
      }
    }
    EXPECT_EQ(m_waveIn.OpenDevices(), 0U);
    EXPECT_EQ(m_files.CountOpenHandles(), 0U);
    ASSERT_LT(call, 100U);
  }
}

INSTANTIATE_TEST_SUITE_P(Each, WaveDeviceFaults,
                         testing::Values(Failing::kOnce, Failing::kFromThenOn));

TEST_F(WaveDeviceFaults, ACloseThatFailsIsTriedOnceMoreAfterAWhile) {
  bool sawRetry = false;
  for (std::size_t call = 1; !sawRetry && call < 100; ++call) {
    m_failingFiles.FailCall(call, Failing::kOnce);
    const std::size_t sleepsBefore = m_clock.GetSleeps().size();
    const int code = m_device.Record(kPath, 200);
    const auto& sleeps = m_clock.GetSleeps();
    if (sleeps.size() == sleepsBefore + 2 && sleeps.back() == 200 && code == audio::kRecorded) {
      sawRetry = true;
      EXPECT_EQ(GetFile().size(), 44U + 4410U);
    }
  }
  EXPECT_TRUE(sawRetry);
}

/// Microphone and loudspeaker of a library that has no memory left.
class NoMemoryWaveIn final : public platform::WaveIn {
 public:
  [[nodiscard]] std::uint32_t GetDeviceCount() override { return 1; }
  [[nodiscard]] platform::Result<std::unique_ptr<platform::WaveInDevice>, platform::WaveResult>
  Open(const platform::WaveFormat& /*format*/) override {
    throw std::bad_alloc();
  }
};

class NoMemoryWaveOut final : public platform::WaveOut {
 public:
  [[nodiscard]] platform::Result<std::unique_ptr<platform::WaveOutDevice>, platform::WaveResult>
  Open(const platform::WaveFormat& /*format*/) override {
    throw std::bad_alloc();
  }
};

TEST_F(WaveDeviceFaults, MemoryThatRunsOutIsACode) {
  NoMemoryWaveIn waveIn;
  NoMemoryWaveOut waveOut;
  audio::WaveDevice device({m_files, waveIn, m_clock, m_threads, m_process, m_ui, m_registry,
                            m_contacts, waveOut, m_shell});
  device.SetFormat(audio::kRecordingBits, audio::kRecordingRate);
  EXPECT_EQ(device.Record(kPath, 200), audio::kNoBuffer);
  EXPECT_EQ(m_device.Record(kPath, 200), audio::kRecorded);
  EXPECT_EQ(device.Play(kPath), audio::kNoPlayBuffer);
  EXPECT_EQ(m_files.CountOpenHandles(), 0U);
}

}  // namespace
