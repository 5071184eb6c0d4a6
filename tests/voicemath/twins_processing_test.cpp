#include <cstdint>
#include <numeric>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "tests/support/signals.h"
#include "tests/voicemath/twins/processing.h"
#include "tests/voicemath/twins/trim.h"

namespace {

using support::Bytes;
using support::Samples;
using testing::Each;
using testing::ElementsAre;

Samples Ramp(std::size_t count) {
  Samples samples(count);
  std::iota(samples.begin(), samples.end(), std::int16_t{0});
  return samples;
}

Samples SamplesFrom44(const Bytes& file) {
  Samples samples((file.size() - 44) / 2);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    samples[i] = twins::SampleAt(std::span(file).subspan(44), i);
  }
  return samples;
}

Bytes Trimmed(const Bytes& bytes, std::uint32_t first, std::uint32_t last) {
  twins::ByteFile file(bytes);
  twins::Wave wave = twins::CheckHeader(file);
  wave.firstSample = first;
  wave.lastSample = last;
  twins::TrimWaveFile(file, wave);
  return file.Content();
}

TEST(TrimTwin, SegmentIsMovedAfterANewHeader) {
  for (const std::uint32_t samples : {2U, 1023U, 1024U, 1025U, 2048U, 3000U}) {
    const Bytes after = Trimmed(support::WaveFile(Ramp(5000)), 100, 100 + samples - 1);
    const Samples all = Ramp(5000);
    EXPECT_EQ(after, support::WaveFile(std::span(all).subspan(100, samples))) << samples;
  }
}

TEST(TrimTwin, WholeRecordingAndSegmentsOfOneSampleStayAsTheyAre) {
  const Bytes bytes = support::WaveFileWithDataAt(60, 2000, support::BytesOf(Ramp(1000)));
  EXPECT_EQ(Trimmed(bytes, 0, 999), bytes);
  EXPECT_EQ(Trimmed(bytes, 7, 7), bytes);
  EXPECT_EQ(Trimmed(bytes, 7, 6), bytes);
  EXPECT_NE(Trimmed(bytes, 0, 998), bytes);
}

TEST(TrimTwin, SamplesThatBeganBeforeTheNewHeadersEndAreReadAfterTheyWereOverwritten) {
  const Samples all = Ramp(3000);
  const Bytes bytes = support::WaveFileWithDataAt(12, 6000, support::BytesOf(all));
  // Data begins at byte 20. What the first pass wrote reaches 24 bytes into what the second reads.
  const Samples kept = SamplesFrom44(Trimmed(bytes, 0, 2047));
  ASSERT_EQ(kept.size(), 2048U);
  EXPECT_EQ(kept[1023], 1023);
  for (std::size_t i = 1024; i < 1036; ++i) {
    EXPECT_EQ(kept[i], all[i - 12]) << i;
  }
  EXPECT_EQ(kept[1036], 1036);
}

TEST(TrimTwin, SamplesThatTheFileLacksAreThoseOfThePassBefore) {
  // 3,022 samples claimed, 3,000 there; the segment ends with 22 that are not.
  const Bytes bytes = support::WaveFileWithDataAt(36, 6044, support::BytesOf(Ramp(3000)));
  const Samples kept = SamplesFrom44(Trimmed(bytes, 1000, 3021));
  ASSERT_EQ(kept.size(), 2022U);
  EXPECT_EQ(kept[1999], 2999);
  // Pass 1 is 998 samples long; its places 976 to 997 hold what pass 0 read there.
  EXPECT_EQ(kept[2000], 1976);
  EXPECT_EQ(kept[2021], 1997);
}

TEST(FeaturesTwin, ImpulseGivesTheSumsOfTheBinNumbers) {
  Samples frame(1024);
  frame[0] = 1;
  EXPECT_THAT(twins::FrameBands(frame), ElementsAre(990, 3151, 5267, 7383, 9499));
}

TEST(FeaturesTwin, ToneFallsIntoTheBandOfItsBin) {
  // 512 times the amplitude, times the bin.
  const auto low = twins::FrameBands(support::Tone(1024, 10, 10000));
  EXPECT_NEAR(low[0], 512.0 * 10000 * 10, 1e5);
  EXPECT_LT(low[1], 1e5);
  const auto high = twins::FrameBands(support::Tone(1024, 229, 10000));
  EXPECT_NEAR(high[4], 512.0 * 10000 * 229, 1e6);
  EXPECT_LT(high[3], 1e6);
  const auto edge = twins::FrameBands(support::Tone(1024, 46, 10000));
  EXPECT_NEAR(edge[1], 512.0 * 10000 * 46, 2e5);
  EXPECT_LT(edge[0], 2e5);
}

TEST(FeaturesTwin, BinsOutside10To229DoNotCount) {
  for (const double bin : {0.0, 9.0, 230.0, 400.0}) {
    EXPECT_THAT(twins::FrameBands(support::Tone(1024, bin, 10000)), Each(testing::Lt(1e6F))) << bin;
  }
}

TEST(FeaturesTwin, FrameCountIs16BitsWide) {
  EXPECT_EQ(twins::FrameCount(0, 1023), 1);
  EXPECT_EQ(twins::FrameCount(0, 1535), 2);
  EXPECT_EQ(twins::FrameCount(5, 5 + 1022), 0);
  EXPECT_EQ(twins::FrameCount(0, 511), 0);
  EXPECT_EQ(twins::FrameCount(0, 510), 65535);
  EXPECT_EQ(twins::FrameCount(0, 0xFFFFFFFFU), 65535);
  EXPECT_EQ(twins::FrameCount(0, 512 * 65536U - 1), 65535);
  EXPECT_EQ(twins::FrameCount(0, 512 * 65537U - 1), 0);
}

TEST(FeaturesTwin, EachBandLosesItsMinimum) {
  twins::Template computed{.frameCount = 2, .values = {1, 9, 3, 0, 5, 4, 2, 3, 7, 5}};
  twins::SubtractMinima(computed);
  EXPECT_THAT(computed.values, ElementsAre(0, 7, 0, 0, 0, 3, 0, 0, 7, 0));
}

TEST(ProcessingTwin, FramesStepBy512Samples) {
  Samples samples(1536);
  samples[0] = 100;  // In the first frame only.
  const auto first = twins::ProcessFile(0, support::WaveFile(samples));
  EXPECT_EQ(first.computed.frameCount, 2);
  EXPECT_THAT(first.computed.values,
              ElementsAre(99000, 315100, 526700, 738300, 949900, 0, 0, 0, 0, 0));
  samples[0] = 0;
  samples[512] = 100;  // In both.
  EXPECT_THAT(twins::ProcessFile(0, support::WaveFile(samples)).computed.values, Each(0.0F));
}

TEST(ProcessingTwin, SamplesThatTheFileLacksAreThoseOfTheFrameBefore) {
  Samples samples(1514);  // Of 1,536 claimed.
  samples[1010] = 50;
  const Bytes bytes = support::WaveFileWithDataAt(36, 3072, support::BytesOf(samples));
  const auto processed = twins::ProcessFile(0, bytes);
  twins::Template expected{.frameCount = 2, .values = {}};
  Samples frame(1024);
  frame[1010] = 50;
  const auto firstBands = twins::FrameBands(frame);
  frame[498] = 50;
  const auto secondBands = twins::FrameBands(frame);
  expected.values.assign(firstBands.begin(), firstBands.end());
  expected.values.insert(expected.values.end(), secondBands.begin(), secondBands.end());
  twins::SubtractMinima(expected);
  EXPECT_EQ(processed.computed.values, expected.values);
}

TEST(ProcessingTwin, TemplateFileHasItsCountsInFront) {
  const auto none = twins::ProcessFile(0, support::WaveFile(Samples(1023)));
  EXPECT_EQ(none.serialized, Bytes(6));
  const auto ten = twins::ProcessFile(0, support::WaveFile(Samples(512 * 11)));
  EXPECT_EQ(ten.serialized.size(), 206U);
  EXPECT_EQ(twins::Unsigned32At(ten.serialized, 0), 0x32U);
  EXPECT_EQ(twins::Unsigned16At(ten.serialized, 4), 0x0AU);
  EXPECT_EQ(twins::SerializeTemplate({.frameCount = 1, .values = {1.0F}}),
            (Bytes{std::byte{1}, std::byte{0}, std::byte{0}, std::byte{0}, std::byte{1},
                   std::byte{0}, std::byte{0}, std::byte{0}, std::byte{0x80}, std::byte{0x3F}}));
}

TEST(ProcessingTwin, BurstIsLearnedTrimmed) {
  Samples samples = support::Mixed(Samples(33075), 11000, support::Tone(5500, 60, 8000));
  const auto learned = twins::LearnFile(0, support::WaveFile(samples));
  ASSERT_EQ(learned.result, 0);
  EXPECT_GT(learned.firstSample, 11000U - 3307 - 600);
  EXPECT_LT(learned.firstSample, 11000U - 3307 + 600);
  EXPECT_GT(learned.lastSample, 16500U + 3307 - 600);
  EXPECT_LT(learned.lastSample, 16500U + 3307 + 600);
  const std::uint32_t kept = learned.lastSample - learned.firstSample + 1;
  EXPECT_EQ(learned.after,
            support::WaveFile(std::span(samples).subspan(learned.firstSample, kept)));
  EXPECT_EQ(learned.computed.frameCount, kept / 512 - 1);
  const auto again = twins::ProcessFile(0, learned.after);
  EXPECT_EQ(again.serialized, learned.serialized);
}

TEST(ProcessingTwin, ResultsSayWhatWasWrong) {
  const Bytes good = support::WaveFile(Samples(2000));
  EXPECT_EQ(twins::LearnFile(101, good).result, 1);
  EXPECT_EQ(twins::LearnFile(100, good).result, 0);
  EXPECT_EQ(twins::LearnFile(0, std::nullopt).result, 2);
  EXPECT_EQ(twins::ProcessFile(0, Bytes(43)).result, 2);
  EXPECT_EQ(twins::ProcessFile(0, Bytes(43)).headerCode, 1);
}

}  // namespace
