#include "audio/samples.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "tests/support/signals.h"

namespace {

TEST(RecordedSamples, AreTheSameAfterTheWayThroughBytes) {
  const support::Samples samples{0, 1, -1, 258, -32768, 32767};
  EXPECT_EQ(audio::ToBytes(samples), support::BytesOf(samples));
  EXPECT_EQ(audio::ToSamples(audio::ToBytes(samples)), samples);
}

TEST(RecordedSamples, ALeftOverByteIsNoSample) {
  const std::vector<std::byte> bytes(5, std::byte{1});
  EXPECT_EQ(audio::ToSamples(bytes), (support::Samples{257, 257}));
}

TEST(RecordedSamples, MakeTheFileThatTheRecorderWrites) {
  EXPECT_EQ(audio::ToWaveFile(support::Noise(100, 900, 1)),
            support::WaveFile(support::Noise(100, 900, 1)));
}

TEST(ToneThatSaysNow, IsHeardAndSoftAndBeginsAndEndsWithoutAClick) {
  const support::Samples tone = audio::MakeTone();
  ASSERT_EQ(tone.size(), 2205U);
  const auto [lowest, highest] = std::ranges::minmax(tone);
  EXPECT_GT(highest, 4000);
  EXPECT_LT(highest, 10000);
  EXPECT_GT(lowest, -10000);
  EXPECT_LT(std::abs(int{tone.front()}), 100);
  EXPECT_LT(std::abs(int{tone.back()}), 100);
}

}  // namespace
