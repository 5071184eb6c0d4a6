#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/wave_devices.h"
#include "tests/contract/wave_out_backends.h"
#include "tests/e2e/playing.h"
#include "tests/e2e/recording.h"
#include "tests/support/results.h"

namespace {

using contract::WaveOutBackend;
using contract::WaveOutBackendKind;
using e2e::kRecordingFormat;
using e2e::Noise;
using e2e::Sound;
using platform::kWaveHeaderPrepared;
using platform::WaveFormat;
using platform::WaveOutDevice;
using platform::WaveResult;

constexpr std::size_t kTenthOfASecond = 2204;
constexpr std::size_t kTwoSeconds = 44100;
constexpr std::size_t kFiveSeconds = 110250;

class WaveOutContract : public testing::TestWithParam<WaveOutBackendKind> {
 protected:
  void SetUp() override { ASSERT_TRUE(m_backend->IsReady()); }

  void OpenDevice(const WaveFormat& format = kRecordingFormat) {
    m_device.reset();
    auto opened = m_backend->Output().Open(format);
    ASSERT_TRUE(opened);
    m_device = std::move(*opened);
    ASSERT_TRUE(m_device);
  }

  void ExpectRefused(const WaveFormat& format) {
    const auto opened = m_backend->Output().Open(format);
    EXPECT_EQ(support::ErrorOf(opened), WaveResult::kBadFormat);
  }

  const std::unique_ptr<WaveOutBackend> m_backend = GetParam().make();
  std::unique_ptr<WaveOutDevice> m_device;
};

/// For most cases, which need an open device.
class WaveOutDeviceContract : public WaveOutContract {
 protected:
  void SetUp() override {
    WaveOutContract::SetUp();
    if (!HasFatalFailure()) OpenDevice();
  }
};

WaveFormat Pcm(std::uint16_t channels, std::uint32_t rate, std::uint16_t bits) {
  const auto blockAlign = static_cast<std::uint16_t>(channels * bits / 8);
  return {platform::kFormatTagPcm, channels, rate, rate * blockAlign, blockAlign, bits, 0};
}

TEST_P(WaveOutContract, LoudspeakerThatIsGoneIsNotOpened) {
  m_backend->Unplug();
  const auto opened = m_backend->Output().Open(kRecordingFormat);
  EXPECT_EQ(support::ErrorOf(opened), WaveResult::kNoDevice);
}

TEST_P(WaveOutContract, FormatThatIsNotWholeBytePcmIsRefused) {
  const std::vector<std::function<void(WaveFormat&)>> faults{
      [](WaveFormat& format) { format.formatTag = 7; },
      [](WaveFormat& format) { format.channels = 0; },
      [](WaveFormat& format) { format.samplesPerSecond = 0; },
      [](WaveFormat& format) { format.blockAlign = 0; },
      [](WaveFormat& format) { format.blockAlign = 3; },
      [](WaveFormat& format) { format.bitsPerSample = 0; },
      [](WaveFormat& format) { format.bitsPerSample = 12; },
  };
  for (const auto& fault : faults) {
    WaveFormat format = kRecordingFormat;
    fault(format);
    ExpectRefused(format);
  }
}

TEST_P(WaveOutContract, PlaysInOtherFormatsToo) {
  for (const WaveFormat& format : {Pcm(1, 8000, 8), Pcm(2, 44100, 16), Pcm(6, 48000, 16)}) {
    ASSERT_NO_FATAL_FAILURE(OpenDevice(format));
    Sound sound(Noise(std::size_t{100} * format.blockAlign, 1));
    ASSERT_EQ(e2e::StartPlaying(*m_device, sound), WaveResult::kOk);
    EXPECT_EQ(e2e::UnprepareWhilePlaying(*m_device, sound), WaveResult::kOk);
  }
}

TEST_P(WaveOutContract, AverageOfBytesPerSecondIsNotLookedAt) {
  auto format = kRecordingFormat;
  format.averageBytesPerSecond = 11025;
  ASSERT_NO_FATAL_FAILURE(OpenDevice(format));
  Sound sound(Noise(kTenthOfASecond, 1));
  ASSERT_EQ(e2e::StartPlaying(*m_device, sound), WaveResult::kOk);
  EXPECT_TRUE(m_backend->Hears(sound.Bytes()));
}

TEST_P(WaveOutContract, OpensAgainAfterClose) {
  for (std::uint32_t i = 1; i <= 2; ++i) {
    ASSERT_NO_FATAL_FAILURE(OpenDevice());
    Sound sound(Noise(kTenthOfASecond, i));
    ASSERT_EQ(e2e::StartPlaying(*m_device, sound), WaveResult::kOk);
    EXPECT_EQ(e2e::UnprepareWhilePlaying(*m_device, sound), WaveResult::kOk);
    EXPECT_TRUE(m_backend->Hears(sound.Bytes()));
    EXPECT_EQ(m_device->Close(), WaveResult::kOk);
  }
}

TEST_P(WaveOutDeviceContract, PlaysTheWholeBufferAndLeavesItAsItIs) {
  const auto bytes = Noise(kTwoSeconds, 1);
  Sound sound(bytes);
  ASSERT_EQ(e2e::StartPlaying(*m_device, sound), WaveResult::kOk);
  ASSERT_EQ(e2e::UnprepareWhilePlaying(*m_device, sound), WaveResult::kOk);
  EXPECT_TRUE(m_backend->Hears(bytes));
  EXPECT_THAT(sound.Bytes(), testing::ElementsAreArray(bytes));
}

TEST_P(WaveOutDeviceContract, PlayedHeaderIsReleased) {
  Sound sound(Noise(kTenthOfASecond, 1));
  ASSERT_EQ(e2e::StartPlaying(*m_device, sound), WaveResult::kOk);
  EXPECT_EQ(sound.header.flags, kWaveHeaderPrepared);
  ASSERT_EQ(e2e::UnprepareWhilePlaying(*m_device, sound), WaveResult::kOk);
  EXPECT_EQ(sound.header.flags, 0U);
  EXPECT_EQ(m_device->Write(sound.header), WaveResult::kNotPrepared);
}

TEST_P(WaveOutDeviceContract, OneBufferAfterTheOtherIsPlayed) {
  for (std::uint32_t i = 1; i <= 3; ++i) {
    Sound sound(Noise(kTenthOfASecond, i));
    ASSERT_EQ(e2e::StartPlaying(*m_device, sound), WaveResult::kOk);
    ASSERT_EQ(e2e::UnprepareWhilePlaying(*m_device, sound), WaveResult::kOk);
    EXPECT_TRUE(m_backend->Hears(sound.Bytes()));
  }
}

TEST_P(WaveOutDeviceContract, IncompleteBlockAtTheEndIsNotPlayed) {
  Sound sound(Noise(kTenthOfASecond + 1, 1));
  ASSERT_EQ(e2e::StartPlaying(*m_device, sound), WaveResult::kOk);
  EXPECT_EQ(e2e::UnprepareWhilePlaying(*m_device, sound), WaveResult::kOk);
  EXPECT_TRUE(m_backend->Hears(sound.Bytes().first(kTenthOfASecond)));
  Sound nothing(Noise(1, 1));
  ASSERT_EQ(e2e::StartPlaying(*m_device, nothing), WaveResult::kOk);
  EXPECT_EQ(e2e::UnprepareWhilePlaying(*m_device, nothing), WaveResult::kOk);
}

TEST_P(WaveOutDeviceContract, HeaderWithoutMemoryIsNotPrepared) {
  Sound sound(Noise(kTenthOfASecond, 1));
  platform::WaveHeader noMemory{.bufferLength = 10};
  EXPECT_EQ(m_device->Prepare(noMemory), WaveResult::kFailed);
  EXPECT_EQ(noMemory.flags, 0U);
  sound.header.bufferLength = 0;
  EXPECT_EQ(m_device->Prepare(sound.header), WaveResult::kFailed);
}

TEST_P(WaveOutDeviceContract, HeaderMayBePreparedTwice) {
  Sound sound(Noise(kTenthOfASecond, 1));
  EXPECT_EQ(m_device->Prepare(sound.header), WaveResult::kOk);
  EXPECT_EQ(m_device->Prepare(sound.header), WaveResult::kOk);
  EXPECT_EQ(sound.header.flags, kWaveHeaderPrepared);
}

TEST_P(WaveOutDeviceContract, HeaderIsWrittenOnlyPrepared) {
  Sound sound(Noise(kTenthOfASecond, 1));
  EXPECT_EQ(m_device->Write(sound.header), WaveResult::kNotPrepared);
}

TEST_P(WaveOutDeviceContract, WhileAHeaderIsQueuedThereIsRoomForNoOther) {
  Sound sound(Noise(kFiveSeconds, 1));
  Sound other(Noise(kTenthOfASecond, 2));
  ASSERT_EQ(e2e::StartPlaying(*m_device, sound), WaveResult::kOk);
  EXPECT_EQ(m_device->Prepare(sound.header), WaveResult::kStillPlaying);
  EXPECT_EQ(m_device->Write(sound.header), WaveResult::kStillPlaying);
  EXPECT_EQ(e2e::StartPlaying(*m_device, other), WaveResult::kStillPlaying);
}

TEST_P(WaveOutDeviceContract, HeaderThatIsNotQueuedIsReleasedAsItIs) {
  Sound sound(Noise(kTenthOfASecond, 1));
  EXPECT_EQ(m_device->Unprepare(sound.header), WaveResult::kOk);
  ASSERT_EQ(m_device->Prepare(sound.header), WaveResult::kOk);
  EXPECT_EQ(m_device->Unprepare(sound.header), WaveResult::kOk);
  EXPECT_EQ(sound.header.flags, 0U);
}

TEST_P(WaveOutDeviceContract, ResetGivesTheHeaderBackPrepared) {
  Sound sound(Noise(kFiveSeconds, 1));
  ASSERT_EQ(e2e::StartPlaying(*m_device, sound), WaveResult::kOk);
  EXPECT_EQ(m_device->Reset(), WaveResult::kOk);
  EXPECT_EQ(sound.header.flags, kWaveHeaderPrepared);
  EXPECT_EQ(m_device->Unprepare(sound.header), WaveResult::kOk);
}

TEST_P(WaveOutDeviceContract, PlaysAgainAfterReset) {
  Sound sound(Noise(kFiveSeconds, 1));
  ASSERT_EQ(e2e::StartPlaying(*m_device, sound), WaveResult::kOk);
  ASSERT_EQ(m_device->Reset(), WaveResult::kOk);
  Sound other(Noise(kTenthOfASecond, 2));
  ASSERT_EQ(e2e::StartPlaying(*m_device, other), WaveResult::kOk);
  EXPECT_EQ(e2e::UnprepareWhilePlaying(*m_device, other), WaveResult::kOk);
  EXPECT_TRUE(m_backend->Hears(other.Bytes()));
}

TEST_P(WaveOutDeviceContract, ResetWithoutAHeaderDoesNothing) {
  EXPECT_EQ(m_device->Reset(), WaveResult::kOk);
}

TEST_P(WaveOutDeviceContract, AfterCloseThereIsNoDevice) {
  Sound sound(Noise(kTenthOfASecond, 1));
  ASSERT_EQ(m_device->Prepare(sound.header), WaveResult::kOk);
  EXPECT_EQ(m_device->Close(), WaveResult::kOk);
  EXPECT_EQ(m_device->Prepare(sound.header), WaveResult::kNoDevice);
  EXPECT_EQ(m_device->Write(sound.header), WaveResult::kNoDevice);
  EXPECT_EQ(m_device->Unprepare(sound.header), WaveResult::kNoDevice);
  EXPECT_EQ(m_device->Reset(), WaveResult::kNoDevice);
  EXPECT_EQ(m_device->Close(), WaveResult::kOk);
}

TEST_P(WaveOutDeviceContract, CloseAndDestructorGiveUpAQueuedHeader) {
  // Memory that is gone at once: a device that still read it would be found by the sanitizers.
  for (const bool closes : {true, false}) {
    ASSERT_NO_FATAL_FAILURE(OpenDevice());
    Sound sound(Noise(kFiveSeconds, 1));
    ASSERT_EQ(e2e::StartPlaying(*m_device, sound), WaveResult::kOk);
    if (closes) {
      EXPECT_EQ(m_device->Close(), WaveResult::kOk);
    } else {
      m_device.reset();
    }
    EXPECT_EQ(sound.header.flags, kWaveHeaderPrepared);
  }
}

std::string BackendName(const testing::TestParamInfo<WaveOutBackendKind>& info) {
  return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Each, WaveOutContract, testing::ValuesIn(contract::AllWaveOutBackends()),
                         BackendName);
INSTANTIATE_TEST_SUITE_P(Each, WaveOutDeviceContract,
                         testing::ValuesIn(contract::AllWaveOutBackends()), BackendName);

}  // namespace
