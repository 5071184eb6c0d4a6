#include "tests/machine/simulated_wave_in.h"
#include "tests/support/results.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <vector>

namespace {

using machine::SimulatedWaveIn;
using machine::WaveInScript;
using platform::WaveHeader;
using platform::WaveResult;
using testing::ElementsAre;

constexpr platform::WaveFormat kMono{platform::kFormatTagPcm, 1, 11025, 22050, 2, 16, 0};
constexpr std::byte kUntouched{0xA5};

struct Buffer {
  std::array<std::byte, 6> memory{kUntouched, kUntouched, kUntouched,
                                  kUntouched, kUntouched, kUntouched};
  WaveHeader header{.data = memory.data(), .bufferLength = 6};
};

std::vector<std::byte> Sound(std::size_t count) { return std::vector(count, std::byte{7}); }

/// An open device with a started buffer.
class SimulatedWaveInDevice : public testing::Test {
 protected:
  void Start(WaveInScript script) {
    m_waveIn.SetScript(std::move(script));
    m_device = m_waveIn.Open(kMono).value();
    ASSERT_TRUE(m_device);
    ASSERT_EQ(m_device->Prepare(m_buffer.header), WaveResult::kOk);
    ASSERT_EQ(m_device->AddBuffer(m_buffer.header), WaveResult::kOk);
    ASSERT_EQ(m_device->Start(), WaveResult::kOk);
  }

  SimulatedWaveIn m_waveIn;
  Buffer m_buffer;
  std::unique_ptr<platform::WaveInDevice> m_device;
};

TEST_F(SimulatedWaveInDevice, BufferIsFullAtOnceUnlessAskedOtherwise) {
  Start({.sound = Sound(9)});
  EXPECT_EQ(m_device->Unprepare(m_buffer.header), WaveResult::kOk);
  EXPECT_EQ(m_buffer.header.bytesRecorded, 6U);
  EXPECT_THAT(m_buffer.memory, testing::Each(std::byte{7}));
}

TEST_F(SimulatedWaveInDevice, SilenceFollowsTheSound) {
  Start({.sound = Sound(2)});
  EXPECT_EQ(m_device->Unprepare(m_buffer.header), WaveResult::kOk);
  EXPECT_THAT(m_buffer.memory, ElementsAre(std::byte{7}, std::byte{7}, std::byte{0}, std::byte{0},
                                           std::byte{0}, std::byte{0}));
}

TEST_F(SimulatedWaveInDevice, BytesArriveCallByCall) {
  Start({.sound = Sound(9), .arrivals = {2, 4}});
  EXPECT_EQ(m_device->Unprepare(m_buffer.header), WaveResult::kStillPlaying);
  EXPECT_EQ(m_buffer.header.bytesRecorded, 2U);
  EXPECT_EQ(m_buffer.memory[2], kUntouched);
  EXPECT_EQ(m_device->Unprepare(m_buffer.header), WaveResult::kStillPlaying);
  EXPECT_EQ(m_buffer.header.bytesRecorded, 4U);
  EXPECT_EQ(m_device->Unprepare(m_buffer.header), WaveResult::kStillPlaying);
  EXPECT_EQ(m_buffer.header.bytesRecorded, 4U);
}

TEST_F(SimulatedWaveInDevice, NothingMayArriveAtAll) {
  Start({.sound = Sound(9), .arrivals = {0}});
  EXPECT_EQ(m_device->Unprepare(m_buffer.header), WaveResult::kStillPlaying);
  EXPECT_EQ(m_buffer.header.bytesRecorded, 0U);
  EXPECT_THAT(m_buffer.memory, testing::Each(kUntouched));
}

TEST_F(SimulatedWaveInDevice, SecondCallMayFindTheBufferFull) {
  Start({.sound = Sound(9), .arrivals = {5, 1000}});
  EXPECT_EQ(m_device->Unprepare(m_buffer.header), WaveResult::kStillPlaying);
  EXPECT_EQ(m_device->Unprepare(m_buffer.header), WaveResult::kOk);
  EXPECT_EQ(m_buffer.header.bytesRecorded, 6U);
}

TEST_F(SimulatedWaveInDevice, NextBufferHearsWhatFollows) {
  Start({.sound = Sound(8)});
  ASSERT_EQ(m_device->Unprepare(m_buffer.header), WaveResult::kOk);
  Buffer next;
  ASSERT_EQ(m_device->Prepare(next.header), WaveResult::kOk);
  ASSERT_EQ(m_device->AddBuffer(next.header), WaveResult::kOk);
  ASSERT_EQ(m_device->Start(), WaveResult::kOk);
  ASSERT_EQ(m_device->Unprepare(next.header), WaveResult::kOk);
  EXPECT_THAT(next.memory, ElementsAre(std::byte{7}, std::byte{7}, std::byte{0}, std::byte{0},
                                       std::byte{0}, std::byte{0}));
}

TEST_F(SimulatedWaveInDevice, UnprepareFailsAsArrangedAndTouchesNothing) {
  Start({.sound = Sound(9), .unprepare = WaveResult::kFailed});
  EXPECT_EQ(m_device->Unprepare(m_buffer.header), WaveResult::kFailed);
  EXPECT_EQ(m_buffer.header.bytesRecorded, 0U);
  EXPECT_THAT(m_buffer.memory, testing::Each(kUntouched));
}

TEST_F(SimulatedWaveInDevice, ResetFailsAsArranged) {
  Start({.reset = WaveResult::kFailed});
  EXPECT_EQ(m_device->Reset(), WaveResult::kFailed);
}

TEST_F(SimulatedWaveInDevice, CloseThatFailsAsArrangedGivesTheDeviceUp) {
  Start({.close = WaveResult::kFailed});
  EXPECT_EQ(m_waveIn.OpenDevices(), 1U);
  EXPECT_EQ(m_device->Close(), WaveResult::kFailed);
  EXPECT_EQ(m_waveIn.OpenDevices(), 0U);
  EXPECT_EQ(m_device->Reset(), WaveResult::kNoDevice);
}

TEST(SimulatedWaveIn, CountsTheDevicesItIsGiven) {
  SimulatedWaveIn waveIn({.deviceCount = 3});
  EXPECT_EQ(waveIn.GetDeviceCount(), 3U);
  waveIn.SetScript({.deviceCount = 0});
  EXPECT_EQ(waveIn.GetDeviceCount(), 0U);
}

TEST(SimulatedWaveIn, OpenFailsAsArranged) {
  SimulatedWaveIn waveIn({.open = WaveResult::kBadFormat});
  const auto opened = waveIn.Open(kMono);
  EXPECT_EQ(support::ErrorOf(opened), WaveResult::kBadFormat);
  EXPECT_EQ(waveIn.OpenDevices(), 0U);
}

TEST(SimulatedWaveIn, EachStepBeforeTheRecordingFailsAsArranged) {
  SimulatedWaveIn waveIn({.prepare = WaveResult::kFailed,
                          .addBuffer = WaveResult::kNotPrepared,
                          .start = WaveResult::kNoDevice});
  const auto opened = waveIn.Open(kMono);
  ASSERT_TRUE(opened);
  Buffer buffer;
  EXPECT_EQ((*opened)->Prepare(buffer.header), WaveResult::kFailed);
  EXPECT_EQ(buffer.header.flags, 0U);
  buffer.header.flags = platform::kWaveHeaderPrepared;
  EXPECT_EQ((*opened)->AddBuffer(buffer.header), WaveResult::kNotPrepared);
  EXPECT_EQ((*opened)->Start(), WaveResult::kNoDevice);
}

TEST(SimulatedWaveIn, DestroyedDeviceIsNoLongerOpen) {
  SimulatedWaveIn waveIn;
  auto opened = waveIn.Open(kMono);
  EXPECT_EQ(waveIn.OpenDevices(), 1U);
  opened->reset();
  EXPECT_EQ(waveIn.OpenDevices(), 0U);
}

TEST(SimulatedWaveIn, RemembersTheFormatAskedFor) {
  SimulatedWaveIn waveIn({.deviceCount = 0});
  EXPECT_EQ(waveIn.AskedFormat(), std::nullopt);
  static_cast<void>(waveIn.Open(kMono));
  EXPECT_EQ(waveIn.AskedFormat(), kMono);
}

TEST(SimulatedWaveIn, DeviceMayOutliveItsInput) {
  auto waveIn = std::make_unique<SimulatedWaveIn>();
  const auto opened = waveIn->Open(kMono);
  ASSERT_TRUE(opened);
  waveIn.reset();
  EXPECT_EQ((*opened)->Close(), WaveResult::kOk);
}

}  // namespace
