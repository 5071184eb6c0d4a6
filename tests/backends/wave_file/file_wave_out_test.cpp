#include "backends/wave_file/file_sound.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/machine/memory_file_system.h"
#include "tests/support/results.h"
#include "tests/support/riff.h"
#include "tests/support/watched_file_system.h"

namespace {

using platform::WaveFormat;
using platform::WaveOutDevice;
using platform::WaveResult;

constexpr WaveFormat kHeard{platform::kFormatTagPcm, 1, 11025, 22050, 2, 16, 0};
constexpr WaveFormat kStereo{platform::kFormatTagPcm, 2, 44100, 176400, 4, 16, 0};
constexpr WaveFormat kEightBits{platform::kFormatTagPcm, 1, 8000, 8000, 1, 8, 0};
constexpr std::u16string_view kHeardPath = u"/heard.wav";

std::vector<std::byte> HeardRamp(std::size_t count) {
  std::vector<std::byte> bytes(count);
  std::uint8_t next = 1;
  for (std::byte& byte : bytes) byte = std::byte{next++};
  return bytes;
}

class FileWaveOut : public testing::Test {
 protected:
  [[nodiscard]] std::unique_ptr<WaveOutDevice> Open(const WaveFormat& format = kHeard) {
    auto opened = m_waveOut.Open(format);
    EXPECT_TRUE(opened);
    return std::move(*opened);
  }

  [[nodiscard]] static WaveResult Write(WaveOutDevice& device, std::vector<std::byte> sound) {
    platform::WaveHeader header{.data = sound.data(),
                                .bufferLength = static_cast<std::uint32_t>(sound.size())};
    EXPECT_EQ(device.Prepare(header), WaveResult::kOk);
    const WaveResult result = device.Write(header);
    EXPECT_EQ(device.Unprepare(header), WaveResult::kOk);
    return result;
  }

  void ExpectFile(const support::RiffBytes& bytes) const {
    EXPECT_THAT(m_memory.GetFile(kHeardPath), testing::Optional(testing::ElementsAreArray(bytes)));
  }

  /// All of a session with a speaker; whether it went well.
  [[nodiscard]] bool PlayOnce(const std::vector<std::byte>& sound) {
    const auto opened = m_waveOut.Open(kHeard);
    return opened && Write(**opened, sound) == WaveResult::kOk;
  }

  machine::MemoryFileSystem m_memory;
  support::WatchedFileSystem m_files{m_memory};
  wave_file::FileWaveOut m_waveOut{m_files, std::u16string(kHeardPath)};
};

TEST_F(FileWaveOut, WritesAFileThatOtherProgramsOpen) {
  for (const WaveFormat& format : {kHeard, kStereo, kEightBits}) {
    EXPECT_EQ(Write(*Open(format), HeardRamp(100)), WaveResult::kOk);
    ExpectFile(support::RiffWave(format, HeardRamp(100)));
  }
}

TEST_F(FileWaveOut, TellsTheByteRateWhateverTheFormatSaysOfIt) {
  WaveFormat format = kHeard;
  format.averageBytesPerSecond = 11025;
  EXPECT_EQ(Write(*Open(format), HeardRamp(100)), WaveResult::kOk);
  ExpectFile(support::RiffWave(kHeard, HeardRamp(100)));
}

TEST_F(FileWaveOut, PadsAnOddNumberOfBytes) {
  EXPECT_EQ(Write(*Open(kEightBits), HeardRamp(101)), WaveResult::kOk);
  ExpectFile(support::RiffWave(kEightBits, HeardRamp(101)));
}

TEST_F(FileWaveOut, EachSoundTakesThePlaceOfTheOneBefore) {
  const auto device = Open();
  EXPECT_EQ(Write(*device, HeardRamp(100)), WaveResult::kOk);
  EXPECT_EQ(Write(*device, HeardRamp(50)), WaveResult::kOk);
  ExpectFile(support::RiffWave(kHeard, HeardRamp(50)));
}

TEST_F(FileWaveOut, OpeningAloneLeavesTheFileAsItIs) {
  ASSERT_TRUE(m_memory.PutFile(kHeardPath, HeardRamp(10)));
  EXPECT_EQ(Open()->Close(), WaveResult::kOk);
  ExpectFile(HeardRamp(10));
  EXPECT_EQ(m_memory.ListFiles().size(), 1U);
  EXPECT_EQ(m_memory.CountOpenHandles(), 0U);
}

TEST_F(FileWaveOut, TakesNoFileOfTheUsersWhateverItsName) {
  ASSERT_TRUE(m_memory.PutFile(u"/heard.wav.part", HeardRamp(20)));
  EXPECT_EQ(Write(*Open(), HeardRamp(100)), WaveResult::kOk);
  EXPECT_EQ(Write(*Open(), HeardRamp(100)), WaveResult::kOk);
  EXPECT_EQ(m_memory.GetFile(u"/heard.wav.part"), HeardRamp(20));
}

TEST_F(FileWaveOut, PlaceThatCannotBeWrittenIsNoDevice) {
  wave_file::FileWaveOut nowhere{m_files, u"/missing/heard.wav"};
  EXPECT_EQ(support::ErrorOf(nowhere.Open(kHeard)), WaveResult::kNoDevice);
}

TEST_F(FileWaveOut, SecondDeviceWaitsItsTurn) {
  auto device = Open();
  EXPECT_EQ(support::ErrorOf(m_waveOut.Open(kHeard)), WaveResult::kNoDevice);
  EXPECT_EQ(Write(*device, HeardRamp(100)), WaveResult::kOk);
  ExpectFile(support::RiffWave(kHeard, HeardRamp(100)));
}

TEST_F(FileWaveOut, ADestroyedDeviceLetsTheNextInLikeAClosedOne) {
  Open().reset();
  const auto device = Open();
  EXPECT_EQ(device->Close(), WaveResult::kOk);
  EXPECT_EQ(Write(*Open(), HeardRamp(100)), WaveResult::kOk);
}

TEST_F(FileWaveOut, FailureOfAnyCallLeavesTheEarlierFileOrTheNewOne) {
  const auto earlier = support::RiffWave(kHeard, HeardRamp(10));
  bool anyFailed = true;
  for (std::size_t call = 1; anyFailed; ++call) {
    ASSERT_TRUE(m_memory.PutFile(kHeardPath, earlier));
    m_files.FailCall(call, support::Failing::kOnce);
    const bool isPlayed = PlayOnce(HeardRamp(100));
    anyFailed = m_files.HasFailed();
    EXPECT_EQ(isPlayed, !anyFailed) << call;
    ExpectFile(isPlayed ? support::RiffWave(kHeard, HeardRamp(100)) : earlier);
    EXPECT_EQ(m_memory.ListFiles().size(), 1U) << call;
    EXPECT_EQ(m_memory.CountOpenHandles(), 0U) << call;
    ASSERT_LT(call, 20U);
  }
}

TEST_F(FileWaveOut, LossOfPowerAtAnyCallLeavesTheEarlierFileOrTheNewOne) {
  const auto earlier = support::RiffWave(kHeard, HeardRamp(10));
  const auto later = support::RiffWave(kHeard, HeardRamp(100));
  bool anyFailed = true;
  for (std::size_t call = 1; anyFailed; ++call) {
    ASSERT_TRUE(m_memory.PutFile(kHeardPath, earlier));
    m_files.FailCall(call, support::Failing::kPowerFailure);
    static_cast<void>(PlayOnce(HeardRamp(100)));
    anyFailed = m_files.HasFailed();
    EXPECT_THAT(m_memory.GetFile(kHeardPath), testing::Optional(testing::AnyOf(earlier, later)));
    ASSERT_LT(call, 20U);
  }
}

TEST_F(FileWaveOut, WritesAgainAfterAWriteThatFailed) {
  const auto device = Open();
  m_files.FailCall(1, support::Failing::kOnce, platform::FileError::kDiskFull);
  EXPECT_EQ(Write(*device, HeardRamp(100)), WaveResult::kFailed);
  EXPECT_EQ(m_memory.GetFile(kHeardPath), std::nullopt);
  EXPECT_EQ(Write(*device, HeardRamp(50)), WaveResult::kOk);
  ExpectFile(support::RiffWave(kHeard, HeardRamp(50)));
}

}  // namespace
