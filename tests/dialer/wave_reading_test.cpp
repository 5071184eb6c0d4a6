#include "dialer/wave_reading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <numbers>

#include "tests/support/results.h"
#include "tests/support/riff.h"
#include "tests/support/signals.h"

namespace {

using dialer::DecodeWave;
using dialer::WaveError;
using support::RiffBytes;
using testing::ElementsAre;

constexpr std::uint32_t kSeconds = 10;

platform::WaveFormat Format(std::uint16_t bits, std::uint16_t channels, std::uint32_t rate,
                            std::uint16_t tag = 1) {
  const auto block = static_cast<std::uint16_t>(bits / 8 * channels);
  return {.formatTag = tag,
          .channels = channels,
          .samplesPerSecond = rate,
          .averageBytesPerSecond = block * rate,
          .blockAlign = block,
          .bitsPerSample = bits,
          .extraSize = 0};
}

RiffBytes Bytes(std::initializer_list<unsigned> values) {
  RiffBytes bytes;
  for (const unsigned value : values) {
    bytes.push_back(static_cast<std::byte>(value));
  }
  return bytes;
}

std::vector<std::int16_t> Decode(const RiffBytes& file) {
  return DecodeWave(file, kSeconds).value();
}

/// A tone of `hertz` in 16 bits at this rate.
RiffBytes ToneAt(std::uint32_t rate, double hertz) {
  RiffBytes samples;
  for (std::uint32_t i = 0; i < rate; ++i) {
    const double angle = 2 * std::numbers::pi * hertz * i / rate;
    support::Append16(samples, static_cast<std::uint16_t>(std::lround(10000 * std::sin(angle))));
  }
  return support::RiffWave(Format(16, 1, rate), samples);
}

double RmsOf(const std::vector<std::int16_t>& samples) {
  double sum = 0;
  for (const std::int16_t sample : samples) {
    sum += static_cast<double>(sample) * sample;
  }
  return std::sqrt(sum / static_cast<double>(samples.size()));
}

TEST(DecodeWave, WhatTheRecorderWritesComesOutAsItIs) {
  const support::Samples samples = support::Noise(5000, 30000, 1);
  EXPECT_EQ(Decode(support::WaveFile(samples)), samples);
}

TEST(DecodeWave, EachWidthOfSamplesHasTheSameLoudness) {
  EXPECT_THAT(Decode(support::RiffWave(Format(8, 1, 11025), Bytes({0, 128, 192}))),
              ElementsAre(-32768, 0, 16384));
  EXPECT_THAT(Decode(support::RiffWave(Format(16, 1, 11025), Bytes({0, 0x80, 0, 0x40}))),
              ElementsAre(-32768, 16384));
  EXPECT_THAT(Decode(support::RiffWave(Format(24, 1, 11025), Bytes({0, 0, 0x80, 0, 0, 0x40}))),
              ElementsAre(-32768, 16384));
  EXPECT_THAT(
      Decode(support::RiffWave(Format(32, 1, 11025), Bytes({0, 0, 0, 0x80, 0, 0, 0, 0x40}))),
      ElementsAre(-32768, 16384));
}

TEST(DecodeWave, FloatsAreTakenAndThoseThatAreNoNumbersAreSilence) {
  RiffBytes samples;
  for (const float value : {-1.0F, 0.5F, 3.0F, std::numeric_limits<float>::infinity()}) {
    support::Append32(samples, std::bit_cast<std::uint32_t>(value));
  }
  EXPECT_THAT(Decode(support::RiffWave(Format(32, 1, 11025, 3), samples)),
              ElementsAre(-32768, 16384, 32767, 0));
}

TEST(DecodeWave, FloatsOfSixtyFourBitsAreTakenToo) {
  RiffBytes samples;
  for (const double value : {0.5, -0.25, 1e300}) {
    const auto bytes = std::bit_cast<std::array<std::byte, 8>>(value);
    samples.insert(samples.end(), bytes.begin(), bytes.end());
  }
  EXPECT_THAT(Decode(support::RiffWave(Format(64, 1, 11025, 3), samples)),
              ElementsAre(16384, -8192, 32767));
}

TEST(DecodeWave, ChannelsThatAreFarBeyondFullScaleAddUpToANumber) {
  RiffBytes samples;
  for (const float value : {3e38F, -3e38F}) {
    support::Append32(samples, std::bit_cast<std::uint32_t>(value));
  }
  EXPECT_THAT(Decode(support::RiffWave(Format(32, 2, 11025, 3), samples)), ElementsAre(0));
}

TEST(DecodeWave, ChannelsAreAveraged) {
  EXPECT_THAT(Decode(support::RiffWave(Format(8, 2, 11025), Bytes({128, 192, 64, 192}))),
              ElementsAre(8192, 0));
}

TEST(DecodeWave, AnyRateBecomesTheRecordersAndKeepsPitchLengthAndLoudness) {
  for (const std::uint32_t rate : {8000U, 12345U, 16000U, 22050U, 44100U, 48000U, 192000U}) {
    const auto samples = Decode(ToneAt(rate, 440));
    ASSERT_NEAR(static_cast<double>(samples.size()), 11025, 1) << rate;
    double worst = 0;
    for (std::size_t i = 500; i < 10500; ++i) {
      const double angle = 2 * std::numbers::pi * 440 * static_cast<double>(i) / 11025;
      worst = std::max(worst, std::abs(samples[i] - 10000 * std::sin(angle)));
    }
    EXPECT_LT(worst, 40) << rate;
  }
}

TEST(DecodeWave, TonesAboveTheRecordersReachAreNotFoldedBack) {
  for (const double hertz : {6000.0, 9000.0, 10800.0, 20000.0}) {
    const auto samples = Decode(ToneAt(48000, hertz));
    EXPECT_LT(RmsOf(std::vector(samples.begin() + 500, samples.end() - 500)), 20) << hertz;
  }
}

TEST(DecodeWave, ChunksOfOtherProgramsArePassedOver) {
  const RiffBytes format = support::FormatBody(Format(8, 1, 11025));
  EXPECT_THAT(Decode(support::RiffWave({support::Chunk("LIST", Bytes({1, 2, 3})),
                                        support::Chunk("fmt ", format),
                                        support::Chunk("fact", Bytes({1, 2, 3, 4})),
                                        support::Chunk("data", Bytes({128, 192}))})),
              ElementsAre(0, 16384));
}

TEST(DecodeWave, AFileThatWasCutShortHoldsWhatItHolds) {
  RiffBytes file = support::WaveFile(std::vector<std::int16_t>{1, 2, 3});
  file.pop_back();
  EXPECT_THAT(Decode(file), ElementsAre(1, 2));
}

TEST(ReadSound, AFileThatIsShorterThanItSaysIsNotWhole) {
  RiffBytes file = support::WaveFile(std::vector<std::int16_t>{1, 2, 3});
  EXPECT_TRUE(dialer::ReadSound(file, kSeconds)->isWhole);
  EXPECT_TRUE(dialer::ReadSound(file, kSeconds)->isRecorders);
  file.resize(file.size() - 2);
  EXPECT_FALSE(dialer::ReadSound(file, kSeconds)->isWhole);
}

TEST(ReadSound, WhoWritesIntoAPipeClaimsALengthThatNothingHas) {
  const RiffBytes format = support::FormatBody(Format(16, 1, 11025));
  for (const std::uint32_t claimed : {0xFFFFFFFFU, 0x7FFFFFDBU}) {
    const auto sound =
        dialer::ReadSound(support::RiffWave({support::Chunk("fmt ", format),
                                             support::Chunk("data", Bytes({1, 0, 2, 0}), claimed)}),
                          kSeconds);
    EXPECT_TRUE(sound->isWhole);
    EXPECT_THAT(sound->samples, ElementsAre(1, 2));
  }
}

TEST(DecodeWave, OfALongFileOnlyTheBeginningIsRead) {
  const auto samples = DecodeWave(support::WaveFile(support::Constant(40000, 5)), 2).value();
  EXPECT_EQ(samples.size(), 22050U);
}

TEST(DecodeWave, WhatIsNoWaveFileIsRefused) {
  const RiffBytes good = support::WaveFile(support::Constant(10, 5));
  for (std::size_t length = 0; length < 44; ++length) {
    EXPECT_EQ(support::ErrorOf(DecodeWave(std::span(good).first(length), kSeconds)),
              WaveError::kNoWave)
        << length;
  }
  for (const auto& format :
       {Format(16, 0, 11025), Format(16, 17, 11025), Format(16, 1, 0), Format(16, 1, 0xFFFFFFFF)}) {
    EXPECT_EQ(support::ErrorOf(DecodeWave(support::RiffWave(format, Bytes({0, 0})), kSeconds)),
              WaveError::kNoWave);
  }
}

TEST(DecodeWave, CompressedSoundIsRefused) {
  for (const auto& format :
       {Format(8, 1, 8000, 7), Format(12, 1, 8000), Format(64, 1, 8000), Format(16, 1, 8000, 3)}) {
    EXPECT_EQ(support::ErrorOf(DecodeWave(support::RiffWave(format, Bytes({0, 0})), kSeconds)),
              WaveError::kOtherFormat);
  }
}

}  // namespace
