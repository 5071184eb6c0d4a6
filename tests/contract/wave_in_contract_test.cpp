#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <utility>

#include "platform/wave_devices.h"
#include "tests/contract/wave_in_backends.h"
#include "tests/e2e/recording.h"
#include "tests/support/results.h"

namespace {

using contract::Melody;
using contract::WaveInBackend;
using contract::WaveInBackendKind;
using e2e::kRecordingFormat;
using e2e::Recording;
using platform::kWaveHeaderPrepared;
using platform::WaveInDevice;
using platform::WaveResult;

constexpr std::size_t kTenthOfASecond = 2204;
constexpr std::size_t kFiveSeconds = 110250;

class WaveInContract : public testing::TestWithParam<WaveInBackendKind> {
 protected:
  void SetUp() override { ASSERT_TRUE(m_backend->IsReady()); }

  [[nodiscard]] platform::WaveIn& Input() { return m_backend->Input(); }

  void OpenDevice() {
    auto opened = Input().Open(kRecordingFormat);
    ASSERT_TRUE(opened);
    m_device = std::move(*opened);
    ASSERT_TRUE(m_device);
  }

  const std::unique_ptr<WaveInBackend> m_backend = GetParam().make();
  std::unique_ptr<WaveInDevice> m_device;
};

/// For most cases, which need an open device.
class WaveInDeviceContract : public WaveInContract {
 protected:
  void SetUp() override {
    WaveInContract::SetUp();
    if (!HasFatalFailure()) OpenDevice();
  }
};

bool IsPartOfTheMelody(std::span<const std::byte> sound) {
  auto twice = Melody();
  twice.insert(twice.end(), Melody().begin(), Melody().end());
  return std::search(twice.begin(), twice.end(), sound.begin(), sound.end()) != twice.end();
}

TEST_P(WaveInContract, CountsTheOneMicrophone) { EXPECT_EQ(Input().GetDeviceCount(), 1U); }

TEST_P(WaveInContract, MicrophoneThatIsGoneIsNeitherCountedNorOpened) {
  m_backend->Unplug();
  EXPECT_EQ(Input().GetDeviceCount(), 0U);
  const auto opened = Input().Open(kRecordingFormat);
  EXPECT_EQ(support::ErrorOf(opened), WaveResult::kNoDevice);
}

TEST_P(WaveInContract, FormatOtherThanPcmIsRefused) {
  auto format = kRecordingFormat;
  format.formatTag = 7;
  const auto opened = Input().Open(format);
  EXPECT_EQ(support::ErrorOf(opened), WaveResult::kBadFormat);
}

TEST_P(WaveInContract, OpensAgainAfterClose) {
  for (int i = 0; i < 2; ++i) {
    ASSERT_NO_FATAL_FAILURE(OpenDevice());
    Recording recording(kTenthOfASecond);
    ASSERT_EQ(e2e::StartRecording(*m_device, recording), WaveResult::kOk);
    EXPECT_EQ(e2e::UnprepareWhilePlaying(*m_device, recording.header), WaveResult::kOk);
    EXPECT_EQ(m_device->Close(), WaveResult::kOk);
  }
}

TEST_P(WaveInDeviceContract, RecordsWhatTheMicrophoneHears) {
  Recording recording(kTenthOfASecond);
  ASSERT_EQ(e2e::StartRecording(*m_device, recording), WaveResult::kOk);
  ASSERT_EQ(e2e::UnprepareWhilePlaying(*m_device, recording.header), WaveResult::kOk);
  EXPECT_EQ(recording.header.bytesRecorded, kTenthOfASecond);
  EXPECT_TRUE(IsPartOfTheMelody(recording.Sound()));
}

TEST_P(WaveInDeviceContract, FullHeaderIsReleased) {
  Recording recording(kTenthOfASecond);
  ASSERT_EQ(e2e::StartRecording(*m_device, recording), WaveResult::kOk);
  EXPECT_EQ(recording.header.flags, kWaveHeaderPrepared);
  ASSERT_EQ(e2e::UnprepareWhilePlaying(*m_device, recording.header), WaveResult::kOk);
  EXPECT_EQ(recording.header.flags, 0U);
  EXPECT_EQ(m_device->AddBuffer(recording.header), WaveResult::kNotPrepared);
}

TEST_P(WaveInDeviceContract, OneBufferAfterTheOtherIsFilled) {
  for (int i = 0; i < 3; ++i) {
    Recording recording(kTenthOfASecond);
    ASSERT_EQ(e2e::StartRecording(*m_device, recording), WaveResult::kOk);
    ASSERT_EQ(e2e::UnprepareWhilePlaying(*m_device, recording.header), WaveResult::kOk);
    EXPECT_TRUE(IsPartOfTheMelody(recording.Sound()));
  }
}

TEST_P(WaveInDeviceContract, HeaderWithoutMemoryIsNotPrepared) {
  Recording recording(kTenthOfASecond);
  platform::WaveHeader noMemory{.bufferLength = 10};
  EXPECT_EQ(m_device->Prepare(noMemory), WaveResult::kFailed);
  EXPECT_EQ(noMemory.flags, 0U);
  recording.header.bufferLength = 0;
  EXPECT_EQ(m_device->Prepare(recording.header), WaveResult::kFailed);
}

TEST_P(WaveInDeviceContract, HeaderMayBePreparedTwice) {
  Recording recording(kTenthOfASecond);
  EXPECT_EQ(m_device->Prepare(recording.header), WaveResult::kOk);
  EXPECT_EQ(m_device->Prepare(recording.header), WaveResult::kOk);
  EXPECT_EQ(recording.header.flags, kWaveHeaderPrepared);
}

TEST_P(WaveInDeviceContract, HeaderIsQueuedOnlyPrepared) {
  Recording recording(kTenthOfASecond);
  EXPECT_EQ(m_device->AddBuffer(recording.header), WaveResult::kNotPrepared);
  EXPECT_EQ(m_device->Start(), WaveResult::kNotPrepared);
}

TEST_P(WaveInDeviceContract, QueueingForgetsAnEarlierLength) {
  Recording recording(kTenthOfASecond);
  recording.header.bytesRecorded = 99;
  ASSERT_EQ(m_device->Prepare(recording.header), WaveResult::kOk);
  ASSERT_EQ(m_device->AddBuffer(recording.header), WaveResult::kOk);
  EXPECT_EQ(recording.header.bytesRecorded, 0U);
}

TEST_P(WaveInDeviceContract, QueueHasRoomForOneHeader) {
  Recording first(kTenthOfASecond);
  Recording second(kTenthOfASecond);
  ASSERT_EQ(m_device->Prepare(first.header), WaveResult::kOk);
  ASSERT_EQ(m_device->Prepare(second.header), WaveResult::kOk);
  ASSERT_EQ(m_device->AddBuffer(first.header), WaveResult::kOk);
  EXPECT_EQ(m_device->AddBuffer(second.header), WaveResult::kStillPlaying);
  EXPECT_EQ(m_device->AddBuffer(first.header), WaveResult::kStillPlaying);
  EXPECT_EQ(m_device->Prepare(first.header), WaveResult::kStillPlaying);
}

TEST_P(WaveInDeviceContract, NothingIsRecordedBeforeTheStart) {
  Recording recording(kTenthOfASecond);
  ASSERT_EQ(m_device->Prepare(recording.header), WaveResult::kOk);
  ASSERT_EQ(m_device->AddBuffer(recording.header), WaveResult::kOk);
  m_backend->LetSoundPass();
  EXPECT_EQ(m_device->Unprepare(recording.header), WaveResult::kStillPlaying);
  EXPECT_EQ(recording.header.bytesRecorded, 0U);
  EXPECT_THAT(recording.Memory(), testing::Each(Recording::kUntouched));
}

TEST_P(WaveInDeviceContract, HeaderThatWasNeverQueuedIsReleasedAsItIs) {
  Recording queued(kTenthOfASecond);
  Recording other(kTenthOfASecond);
  ASSERT_EQ(e2e::StartRecording(*m_device, queued), WaveResult::kOk);
  ASSERT_EQ(m_device->Prepare(other.header), WaveResult::kOk);
  EXPECT_EQ(m_device->Unprepare(other.header), WaveResult::kOk);
  EXPECT_EQ(other.header.flags, 0U);
  EXPECT_THAT(other.Memory(), testing::Each(Recording::kUntouched));
  EXPECT_EQ(m_device->Unprepare(other.header), WaveResult::kOk);
}

TEST_P(WaveInDeviceContract, SecondStartChangesNothing) {
  Recording recording(kTenthOfASecond);
  ASSERT_EQ(e2e::StartRecording(*m_device, recording), WaveResult::kOk);
  EXPECT_EQ(m_device->Start(), WaveResult::kOk);
  ASSERT_EQ(e2e::UnprepareWhilePlaying(*m_device, recording.header), WaveResult::kOk);
  EXPECT_TRUE(IsPartOfTheMelody(recording.Sound()));
}

TEST_P(WaveInDeviceContract, ResetGivesTheHeaderBack) {
  Recording recording(kFiveSeconds);
  ASSERT_EQ(e2e::StartRecording(*m_device, recording), WaveResult::kOk);
  EXPECT_EQ(m_device->Reset(), WaveResult::kOk);
  EXPECT_EQ(m_device->Unprepare(recording.header), WaveResult::kOk);
  EXPECT_EQ(recording.header.flags, 0U);
}

TEST_P(WaveInDeviceContract, ResetKeepsWhatHasArrived) {
  Recording recording(kFiveSeconds);
  ASSERT_EQ(e2e::StartRecording(*m_device, recording), WaveResult::kOk);
  ASSERT_TRUE(e2e::AwaitBytes(*m_device, recording.header, 1));
  const auto arrived = recording.header.bytesRecorded;
  EXPECT_EQ(m_device->Reset(), WaveResult::kOk);
  EXPECT_GE(recording.header.bytesRecorded, arrived);
  EXPECT_TRUE(
      IsPartOfTheMelody(recording.Sound().first(std::min<std::size_t>(arrived, kTenthOfASecond))));
}

TEST_P(WaveInDeviceContract, RecordsAgainAfterReset) {
  Recording given(kFiveSeconds);
  ASSERT_EQ(e2e::StartRecording(*m_device, given), WaveResult::kOk);
  ASSERT_EQ(m_device->Reset(), WaveResult::kOk);
  Recording recording(kTenthOfASecond);
  ASSERT_EQ(e2e::StartRecording(*m_device, recording), WaveResult::kOk);
  EXPECT_EQ(e2e::UnprepareWhilePlaying(*m_device, recording.header), WaveResult::kOk);
  EXPECT_TRUE(IsPartOfTheMelody(recording.Sound()));
}

TEST_P(WaveInDeviceContract, ResetStopsTheRecording) {
  Recording given(kFiveSeconds);
  ASSERT_EQ(e2e::StartRecording(*m_device, given), WaveResult::kOk);
  ASSERT_EQ(m_device->Reset(), WaveResult::kOk);
  Recording recording(kTenthOfASecond);
  ASSERT_EQ(m_device->Prepare(recording.header), WaveResult::kOk);
  ASSERT_EQ(m_device->AddBuffer(recording.header), WaveResult::kOk);
  m_backend->LetSoundPass();
  EXPECT_EQ(m_device->Unprepare(recording.header), WaveResult::kStillPlaying);
  EXPECT_EQ(recording.header.bytesRecorded, 0U);
}

TEST_P(WaveInDeviceContract, ResetWithoutAHeaderDoesNothing) {
  EXPECT_EQ(m_device->Reset(), WaveResult::kOk);
}

TEST_P(WaveInDeviceContract, NothingIsTouchedBetweenCalls) {
  Recording recording(kTenthOfASecond);
  ASSERT_EQ(e2e::StartRecording(*m_device, recording), WaveResult::kOk);
  m_backend->LetSoundPass();
  EXPECT_EQ(recording.header.bytesRecorded, 0U);
  EXPECT_THAT(recording.Memory(), testing::Each(Recording::kUntouched));
}

TEST_P(WaveInDeviceContract, AfterCloseThereIsNoDevice) {
  Recording recording(kTenthOfASecond);
  ASSERT_EQ(m_device->Prepare(recording.header), WaveResult::kOk);
  EXPECT_EQ(m_device->Close(), WaveResult::kOk);
  EXPECT_EQ(m_device->Prepare(recording.header), WaveResult::kNoDevice);
  EXPECT_EQ(m_device->AddBuffer(recording.header), WaveResult::kNoDevice);
  EXPECT_EQ(m_device->Start(), WaveResult::kNoDevice);
  EXPECT_EQ(m_device->Unprepare(recording.header), WaveResult::kNoDevice);
  EXPECT_EQ(m_device->Reset(), WaveResult::kNoDevice);
  EXPECT_EQ(m_device->Close(), WaveResult::kOk);
}

TEST_P(WaveInDeviceContract, CloseAndDestructorLeaveAQueuedHeaderAlone) {
  Recording recording(kFiveSeconds);
  ASSERT_EQ(e2e::StartRecording(*m_device, recording), WaveResult::kOk);
  m_backend->LetSoundPass();
  EXPECT_EQ(m_device->Close(), WaveResult::kOk);
  ASSERT_NO_FATAL_FAILURE(OpenDevice());
  ASSERT_EQ(e2e::StartRecording(*m_device, recording), WaveResult::kOk);
  m_backend->LetSoundPass();
  m_device.reset();
  EXPECT_EQ(recording.header.bytesRecorded, 0U);
  EXPECT_THAT(recording.Memory(), testing::Each(Recording::kUntouched));
}

std::string BackendName(const testing::TestParamInfo<WaveInBackendKind>& info) {
  return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Each, WaveInContract, testing::ValuesIn(contract::AllWaveInBackends()),
                         BackendName);
INSTANTIATE_TEST_SUITE_P(Each, WaveInDeviceContract,
                         testing::ValuesIn(contract::AllWaveInBackends()), BackendName);

}  // namespace
