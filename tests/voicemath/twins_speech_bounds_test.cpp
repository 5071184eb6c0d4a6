#include <cstdint>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "tests/support/signals.h"
#include "tests/voicemath/twins/speech_bounds.h"

namespace {

using support::Samples;
using testing::ElementsAre;
using Envelope = std::vector<std::int16_t>;

twins::SpeechSearch Search(const Envelope& envelope) {
  return twins::LocateSpeech(envelope, static_cast<std::uint32_t>(envelope.size() * 110));
}

Envelope Burst(std::size_t blocks, std::size_t at) {
  Envelope envelope(blocks);
  std::fill_n(envelope.begin() + static_cast<std::ptrdiff_t>(at), 100, std::int16_t{16000});
  return envelope;
}

TEST(BlockEnvelopeTwin, ConstantBlockHasNone) {
  EXPECT_EQ(twins::BlockEnvelope(Samples(110, -1234)), 0);
}

TEST(BlockEnvelopeTwin, MeanIsCutTowardsZero) {
  Samples block(110, -1);
  block[0] = 0;  // The sum is -109, the mean 0.
  EXPECT_EQ(twins::BlockEnvelope(block), 1);
  block[0] = -1;  // The sum is -110, the mean -1.
  EXPECT_EQ(twins::BlockEnvelope(block), 0);
}

TEST(BlockEnvelopeTwin, DistanceAbove32767WrapsAndDoesNotCount) {
  Samples block(110, -32768);
  block[40] = 32767;  // The mean is -32,172: distances 596 and 64,939.
  EXPECT_EQ(twins::BlockEnvelope(block), 596);
}

TEST(BlockEnvelopeTwin, DistanceOf32768DoesNotCount) {
  Samples block(110, -301);
  block[0] = 32767;
  block[1] = -369;  // The sum is -110, the mean -1.
  EXPECT_EQ(twins::BlockEnvelope(block), 368);
}

TEST(RawEnvelopeTwin, LastBlocksKeepWhatTheFileLacks) {
  // Eight blocks' worth of data claimed, the last 22 samples missing.
  Samples samples(418, 0);
  samples[380] = 1100;  // Blocks 5 and 6: the mean is 10 there, the distance 1,090.
  twins::ByteFile file(support::WaveFileWithDataAt(36, 880, support::BytesOf(samples)));
  const twins::Wave wave = twins::CheckHeader(file);
  ASSERT_EQ(wave.code, 0);
  // Block 6 begins at sample 330 and lacks 22, which stay from block 5; sample 380 is its 50th, as
  // it was block 5's 105th, which is among those that stay. Block 7 begins at 385, finds 33.
  EXPECT_THAT(twins::RawEnvelope(file, wave), ElementsAre(0, 0, 0, 0, 0, 1090, 1080, 1080));
}

TEST(SmoothingTwin, BlockZeroNeverCountsForALaterBlock) {
  EXPECT_THAT(Search({8, 0, 0, 0, 0, 0, 0, 0, 0, 0}).smoothed,
              ElementsAre(1, 0, 0, 0, 0, 0, 0, 0, 0, 0));
}

TEST(SmoothingTwin, BlockOneCountsForSevenLaterBlocks) {
  // Blocks 0 and 1 are means of 8, blocks 2 to 8 of 9, block 9 of blocks 2 to 9.
  EXPECT_THAT(Search({0, 72, 0, 0, 0, 0, 0, 0, 0, 0}).smoothed,
              ElementsAre(9, 9, 8, 8, 8, 8, 8, 8, 8, 0));
}

TEST(SmoothingTwin, MiddleIsTheMeanOfFifteenAndEndsOfFewer) {
  Envelope envelope(40);
  envelope[20] = 30;
  const Envelope smoothed = Search(envelope).smoothed;
  for (std::size_t b = 0; b < 40; ++b) {
    EXPECT_EQ(smoothed[b], b >= 13 && b <= 27 ? 2 : 0) << b;
  }
}

TEST(SpeechBoundsTwin, NoBlocksKeepTheWholeRecording) {
  const twins::SpeechSearch search = twins::LocateSpeech({}, 109);
  EXPECT_FALSE(search.found);
  EXPECT_EQ(search.lastSample, 53U);
}

TEST(SpeechBoundsTwin, PeakBelow32KeepsTheWholeRecording) {
  EXPECT_FALSE(Search(Envelope(300, 31)).found);
  EXPECT_TRUE(Search(Envelope(300, 32)).found);
}

TEST(SpeechBoundsTwin, BurstIsFoundWithItsMargins) {
  const twins::SpeechSearch search = Search(Burst(1000, 100));
  EXPECT_EQ(search.peak, 16000);
  EXPECT_EQ(search.peakBlock, 107U);
  EXPECT_EQ(search.binWidth, 500);
  EXPECT_EQ(search.mode, 0);
  EXPECT_EQ(search.noise, 1000);
  EXPECT_EQ(search.clip, 7500);
  EXPECT_EQ(search.cleared[99], 7466 - 1000);
  EXPECT_EQ(search.cleared[92], 0);
  EXPECT_EQ(search.centre, 149);
  EXPECT_EQ(search.leftMass, 29 * 7500 + 22864);
  EXPECT_EQ(search.rightMass, 30 * 7500 + 22864);
  EXPECT_EQ(search.left, 97);
  EXPECT_EQ(search.right, 202);
  EXPECT_TRUE(search.found);
  EXPECT_EQ(search.firstSample, 2028U);
  EXPECT_EQ(search.lastSample, 14417U);
}

TEST(SpeechBoundsTwin, FirstOfTwoEqualPeaksWins) {
  Envelope envelope = Burst(1000, 100);
  std::fill_n(envelope.begin() + 600, 100, std::int16_t{16000});
  EXPECT_EQ(Search(envelope).centre, 149);
  std::fill_n(envelope.begin() + 600, 100, std::int16_t{16001});
  EXPECT_EQ(Search(envelope).centre, 649);
}

TEST(SpeechBoundsTwin, LowestOfTwoEqualModesWins) {
  Envelope envelope(60, 1150);
  envelope.insert(envelope.end(), 60, 3200);
  envelope.insert(envelope.end(), 60, 250);
  const twins::SpeechSearch search = Search(envelope);
  EXPECT_EQ(search.histogram[2], 53U);
  EXPECT_EQ(search.histogram[11], 53U);
  EXPECT_EQ(search.mode, 2);
  EXPECT_EQ(search.noise, 400);
}

TEST(SpeechBoundsTwin, UpperHalfOfTheHistogramIsNoNoise) {
  Envelope envelope(100, 1600);  // Bin 16.
  envelope.insert(envelope.end(), 30, 3200);
  const twins::SpeechSearch search = Search(envelope);
  EXPECT_EQ(search.histogram[16], 93U);
  EXPECT_EQ(search.mode, 0);
}

TEST(SpeechBoundsTwin, ValuesBeyondTheLastBinCountInIt) {
  const twins::SpeechSearch search = Search(Envelope(10, 1023));  // 1,023 / 31 is 33.
  EXPECT_EQ(search.histogram[31], 10U);
}

TEST(SpeechBoundsTwin, ValueEqualToTheNoiseBecomesZero) {
  Envelope envelope(100, 1000);
  envelope.insert(envelope.end(), 100, 16000);
  const twins::SpeechSearch search = Search(envelope);
  EXPECT_EQ(search.noise, 2000);  // 500 x 2 + 1,000
  EXPECT_EQ(search.cleared[0], 0);
  EXPECT_EQ(search.cleared[92], 0);  // 1,000 lies below the noise.
  EXPECT_EQ(search.cleared[93], 0);  // So does 2,000, by nothing.
  EXPECT_EQ(search.cleared[94], 1000);
}

TEST(SpeechBoundsTwin, EvenLoudnessIsCutToTheWindowAfterThePeak) {
  const twins::SpeechSearch search = Search(Envelope(1000, 16000));
  EXPECT_EQ(search.peakBlock, 0U);
  EXPECT_EQ(search.centre, 100);  // Blocks 0 to 200.
  EXPECT_EQ(search.left, 0);      // Blocks 0 to 79.
  EXPECT_EQ(search.right, 300);   // Blocks 121 to 300.
  EXPECT_EQ(search.firstSample, 0U);
  EXPECT_EQ(search.lastSample, 19807U);
}

TEST(SpeechBoundsTwin, ShortEvenLoudnessKeepsTheWholeRecording) {
  const twins::SpeechSearch search = Search(Envelope(100, 1000));
  EXPECT_EQ(search.centre, 49);
  EXPECT_EQ(search.left, 0);
  EXPECT_EQ(search.right, 99);
  EXPECT_EQ(search.lastSample, 5499U);  // Lowered from 8,752.
}

TEST(SpeechBoundsTwin, EndsWrapAt16Bits) {
  const twins::SpeechSearch below = Search(Burst(40000, 32660));
  EXPECT_EQ(below.mode, 0);  // 39,886 silent blocks in one bin.
  EXPECT_EQ(below.firstSample, 1792828U);
  EXPECT_EQ(below.lastSample, 1805217U);

  const twins::SpeechSearch across = Search(Burst(40000, 32700));
  EXPECT_EQ(across.left, 32697);
  EXPECT_EQ(across.right, 32802 - 65536);
  EXPECT_FALSE(across.found);
  EXPECT_EQ(across.lastSample, 40000U * 55 - 1);

  EXPECT_FALSE(Search(Burst(40000, 33000)).found);

  const twins::SpeechSearch zero = Search(Burst(70000, 65500));
  EXPECT_EQ(zero.left, -39);
  EXPECT_EQ(zero.firstSample, 0U);
  EXPECT_EQ(zero.lastSample, 6937U);

  const twins::SpeechSearch around = Search(Burst(70000, 66000));
  EXPECT_EQ(around.firstSample, 22048U);
  EXPECT_EQ(around.lastSample, 34437U);
}

}  // namespace
