#include "backends/wave_file/file_sound.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "tests/machine/memory_file_system.h"
#include "tests/support/results.h"
#include "tests/support/riff.h"
#include "tests/support/watched_file_system.h"

namespace {

using platform::WaveHeader;
using platform::WaveInDevice;
using platform::WaveResult;
using testing::Each;
using testing::ElementsAreArray;

constexpr platform::WaveFormat kMono{platform::kFormatTagPcm, 1, 11025, 22050, 2, 16, 0};
constexpr std::u16string_view kPath = u"/voice.wav";

std::vector<std::byte> Ramp(std::size_t count) {
  std::vector<std::byte> bytes(count);
  std::uint8_t next = 1;
  for (std::byte& byte : bytes) byte = std::byte{next++};
  return bytes;
}

class FileWaveIn : public testing::Test {
 protected:
  void PutSound(std::span<const std::byte> samples) {
    ASSERT_TRUE(m_files.PutFile(kPath, support::RiffWave(kMono, samples)));
  }

  [[nodiscard]] std::unique_ptr<WaveInDevice> Open() {
    auto opened = m_waveIn.Open(kMono);
    EXPECT_TRUE(opened);
    return std::move(*opened);
  }

  /// A whole recording of `length` bytes from an open device.
  [[nodiscard]] static std::vector<std::byte> Record(WaveInDevice& device, std::size_t length) {
    std::vector<std::byte> memory(length, std::byte{0xA5});
    WaveHeader header{.data = memory.data(), .bufferLength = static_cast<std::uint32_t>(length)};
    EXPECT_EQ(device.Prepare(header), WaveResult::kOk);
    EXPECT_EQ(device.AddBuffer(header), WaveResult::kOk);
    EXPECT_EQ(device.Start(), WaveResult::kOk);
    EXPECT_EQ(device.Unprepare(header), WaveResult::kOk);
    EXPECT_EQ(header.bytesRecorded, length);
    return memory;
  }

  machine::MemoryFileSystem m_files;
  wave_file::FileWaveIn m_waveIn{m_files, std::u16string(kPath)};
};

TEST_F(FileWaveIn, FileThatIsNotThereIsNoDevice) {
  EXPECT_EQ(m_waveIn.GetDeviceCount(), 0U);
  EXPECT_EQ(support::ErrorOf(m_waveIn.Open(kMono)), WaveResult::kNoDevice);
}

TEST_F(FileWaveIn, FileInMemoryIsHeardAsOneWithAName) {
  const std::vector<std::byte> sound = Ramp(6);
  wave_file::FileWaveIn held(support::RiffWave(kMono, sound));
  EXPECT_EQ(held.GetDeviceCount(), 1U);
  for (int i = 0; i < 2; ++i) {
    auto opened = held.Open(kMono);
    ASSERT_TRUE(opened);
    const std::vector<std::byte> recorded = Record(**opened, 10);
    EXPECT_THAT(std::span(recorded).first(6), ElementsAreArray(sound)) << "from its beginning";
    EXPECT_THAT(std::span(recorded).subspan(6), Each(std::byte{0}));
  }
}

TEST_F(FileWaveIn, BytesInMemoryThatAreNoWaveFileAreRefused) {
  EXPECT_EQ(support::ErrorOf(wave_file::FileWaveIn(Ramp(50)).Open(kMono)), WaveResult::kBadFormat);
  EXPECT_EQ(support::ErrorOf(wave_file::FileWaveIn(Ramp(0)).Open(kMono)), WaveResult::kBadFormat);
}

TEST_F(FileWaveIn, FileThatCanBeOpenedIsOneDeviceWhateverItHolds) {
  ASSERT_TRUE(m_files.PutFile(kPath, {}));
  EXPECT_EQ(m_waveIn.GetDeviceCount(), 1U);
  EXPECT_EQ(support::ErrorOf(m_waveIn.Open(kMono)), WaveResult::kBadFormat);
}

TEST_F(FileWaveIn, NoHandleStaysOpenAfterCountingAndFailing) {
  ASSERT_TRUE(m_files.PutFile(kPath, {}));
  static_cast<void>(m_waveIn.GetDeviceCount());
  static_cast<void>(m_waveIn.Open(kMono));
  EXPECT_EQ(m_files.CountOpenHandles(), 0U);
}

TEST_F(FileWaveIn, SamplesFillTheBufferAndSilenceItsRest) {
  const auto sound = Ramp(100);
  PutSound(sound);
  const auto device = Open();
  ASSERT_TRUE(device);
  const auto recorded = Record(*device, 300);
  EXPECT_THAT(std::span(recorded).first(100), ElementsAreArray(sound));
  EXPECT_THAT(std::span(recorded).subspan(100), Each(std::byte{0}));
}

TEST_F(FileWaveIn, LongerFileFillsTheBufferWithItsBeginning) {
  const auto sound = Ramp(200);
  PutSound(sound);
  const auto device = Open();
  ASSERT_TRUE(device);
  EXPECT_THAT(Record(*device, 50), ElementsAreArray(std::span(sound).first(50)));
}

TEST_F(FileWaveIn, NextBufferGoesOnWhereTheLastEnded) {
  const auto sound = Ramp(100);
  PutSound(sound);
  const auto device = Open();
  ASSERT_TRUE(device);
  EXPECT_THAT(Record(*device, 60), ElementsAreArray(std::span(sound).first(60)));
  const auto rest = Record(*device, 60);
  EXPECT_THAT(std::span(rest).first(40), ElementsAreArray(std::span(sound).subspan(60)));
  EXPECT_THAT(std::span(rest).subspan(40), Each(std::byte{0}));
  EXPECT_THAT(Record(*device, 60), Each(std::byte{0}));
}

TEST_F(FileWaveIn, EveryOpenBeginsAtTheBeginning) {
  const auto sound = Ramp(100);
  PutSound(sound);
  for (int i = 0; i < 2; ++i) {
    const auto device = Open();
    ASSERT_TRUE(device);
    EXPECT_THAT(Record(*device, 100), ElementsAreArray(sound));
  }
}

TEST_F(FileWaveIn, FileWithoutSamplesIsSilence) {
  PutSound({});
  const auto device = Open();
  ASSERT_TRUE(device);
  EXPECT_THAT(Record(*device, 100), Each(std::byte{0}));
}

TEST_F(FileWaveIn, NothingBehindTheDataChunkIsHeard) {
  const auto sound = Ramp(10);
  ASSERT_TRUE(m_files.PutFile(
      kPath, support::RiffWave({support::Chunk("fmt ", support::FormatBody(kMono)),
                                support::Chunk("data", sound), support::Chunk("LIST", Ramp(50))})));
  const auto device = Open();
  ASSERT_TRUE(device);
  const auto recorded = Record(*device, 100);
  EXPECT_THAT(std::span(recorded).first(10), ElementsAreArray(sound));
  EXPECT_THAT(std::span(recorded).subspan(10), Each(std::byte{0}));
}

TEST_F(FileWaveIn, FormatMustBeTheOneAskedForInEveryField) {
  PutSound(Ramp(100));
  const auto refuses = [this](auto change) {
    auto format = kMono;
    change(format);
    return support::ErrorOf(m_waveIn.Open(format)) == WaveResult::kBadFormat;
  };
  EXPECT_TRUE(refuses([](auto& format) { format.channels = 2; }));
  EXPECT_TRUE(refuses([](auto& format) { format.samplesPerSecond = 8000; }));
  EXPECT_TRUE(refuses([](auto& format) { format.averageBytesPerSecond = 11025; }));
  EXPECT_TRUE(refuses([](auto& format) { format.blockAlign = 4; }));
  EXPECT_TRUE(refuses([](auto& format) { format.bitsPerSample = 8; }));
}

TEST_F(FileWaveIn, OthersMayReadTheFileMeanwhile) {
  PutSound(Ramp(100));
  const auto device = Open();
  ASSERT_TRUE(device);
  EXPECT_EQ(m_waveIn.GetDeviceCount(), 1U);
  EXPECT_TRUE(Open());
}

TEST_F(FileWaveIn, WhicheverCallToTheFileFailsTheRecordingIsTheSoundOrNothing) {
  const auto sound = Ramp(100);
  PutSound(sound);
  support::WatchedFileSystem failing(m_files);
  wave_file::FileWaveIn waveIn(failing, std::u16string(kPath));
  bool hasFailed = true;
  std::size_t call = 0;
  while (hasFailed && ++call < 100) {
    failing.FailCall(call, support::Failing::kFromThenOn);
    std::vector<std::byte> memory(100);
    WaveHeader header{.data = memory.data(), .bufferLength = 100};
    const auto opened = waveIn.Open(kMono);
    if (opened) {
      EXPECT_EQ((*opened)->Prepare(header), WaveResult::kOk);
      EXPECT_EQ((*opened)->AddBuffer(header), WaveResult::kOk);
      EXPECT_EQ((*opened)->Start(), WaveResult::kOk);
      const auto result = (*opened)->Unprepare(header);
      hasFailed = failing.HasFailed();
      EXPECT_EQ(result, hasFailed ? WaveResult::kNoDevice : WaveResult::kOk);
      EXPECT_EQ(header.bytesRecorded, hasFailed ? 0U : 100U);
    }
  }
  EXPECT_FALSE(hasFailed);
  EXPECT_GT(call, 5U);
  EXPECT_EQ(m_files.CountOpenHandles(), 0U);
}

TEST_F(FileWaveIn, CloseGivesTheFileUp) {
  PutSound(Ramp(100));
  const auto device = Open();
  ASSERT_TRUE(device);
  EXPECT_EQ(m_files.CountOpenHandles(), 1U);
  EXPECT_EQ(device->Close(), WaveResult::kOk);
  EXPECT_EQ(m_files.CountOpenHandles(), 0U);
}

}  // namespace
