#include "audio/wave_header.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace {

TEST(WaveHeader, HoldsTheWholeFileLengthAndNotEightLess) {
  const auto header = audio::MakeWaveHeader(audio::MonoPcm(16, 11025), 66150);
  constexpr std::array<unsigned char, 44> kExpected{
      'R',  'I',  'F', 'F', 0x92, 0x02, 0x01, 0x00,               // 66,194
      'W',  'A',  'V', 'E', 'f',  'm',  't',  ' ',  16, 0, 0, 0,  //
      1,    0,    1,   0,   0x11, 0x2B, 0,    0,                  // PCM, mono, 11,025
      0x22, 0x56, 0,   0,   2,    0,    16,   0,                  // 22,050 bytes a second
      'd',  'a',  't', 'a', 0x66, 0x02, 0x01, 0x00};              // 66,150
  EXPECT_TRUE(std::ranges::equal(header, kExpected, [](std::byte a, unsigned char b) {
    return std::to_integer<unsigned char>(a) == b;
  }));
}

TEST(WaveHeader, TakesChannelsRateAndBitsFromTheFormat) {
  platform::WaveFormat format = audio::MonoPcm(8, 8000);
  EXPECT_EQ(format.blockAlign, 1);
  EXPECT_EQ(format.averageBytesPerSecond, 8000U);
  format.channels = 2;
  const auto header = audio::MakeWaveHeader(format, 0);
  EXPECT_EQ(header[22], std::byte{2});
  EXPECT_EQ(header[24], std::byte{0x40});
  EXPECT_EQ(header[25], std::byte{0x1F});
  EXPECT_EQ(header[28], std::byte{0x80});  // 16,000 bytes a second.
  EXPECT_EQ(header[29], std::byte{0x3E});
  EXPECT_EQ(header[32], std::byte{2});
  EXPECT_EQ(header[34], std::byte{8});
}

TEST(WaveHeader, SaysPcmWhateverTheFormatSays) {
  platform::WaveFormat format = audio::MonoPcm(16, 11025);
  format.formatTag = 3;
  const auto header = audio::MakeWaveHeader(format, 0);
  EXPECT_EQ(header[20], std::byte{1});
  EXPECT_EQ(header[21], std::byte{0});
}

}  // namespace
