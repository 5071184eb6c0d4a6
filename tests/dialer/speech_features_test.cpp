#include "dialer/speech_features.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>

#include "tests/support/signals.h"

namespace {

using dialer::SpeechFeatures;
using dialer::WarpingDistance;

support::Samples Syllables(std::uint32_t seed, std::size_t count = 6000) {
  return support::Mixed(support::Noise(count + 4000, 5, seed), 2000,
                        support::SpeechLike(count, 9000, seed));
}

support::Samples Scaled(support::Samples samples, double factor) {
  for (std::int16_t& sample : samples) {
    sample = static_cast<std::int16_t>(std::lround(sample * factor));
  }
  return samples;
}

/// Other numbers for the same words: each sample a mean of the last two, as a dull microphone does.
support::Samples Dulled(const support::Samples& samples) {
  support::Samples dulled = samples;
  for (std::size_t i = 1; i < samples.size(); ++i) {
    dulled[i] = static_cast<std::int16_t>((samples[i] + samples[i - 1]) / 2);
  }
  return dulled;
}

/// The same as WarpingDistance, as it is defined: the cheapest of all ways.
double LiteralDistance(const SpeechFeatures& a, const SpeechFeatures& b) {
  const std::size_t rows = a.Frames();
  const std::size_t columns = b.Frames();
  const auto cost = [&](std::size_t i, std::size_t j) {
    double sum = 0;
    for (std::size_t f = 0; f < SpeechFeatures::kCount; ++f) {
      const double difference = a.Get(f)[i] - b.Get(f)[j];
      sum += difference * difference;
    }
    return sum / SpeechFeatures::kCount;
  };
  std::vector<double> ways(rows * columns, std::numeric_limits<double>::infinity());
  for (std::size_t i = 0; i < rows; ++i) {
    for (std::size_t j = 0; j < columns; ++j) {
      double& way = ways[i * columns + j];
      const double here = cost(i, j);
      if (i == 0 && j == 0) way = 2 * here;
      if (i > 0) way = std::min(way, ways[(i - 1) * columns + j] + here);
      if (j > 0) way = std::min(way, ways[i * columns + j - 1] + here);
      if (i > 0 && j > 0) way = std::min(way, ways[(i - 1) * columns + j - 1] + 2 * here);
    }
  }
  return ways.back() / static_cast<double>(rows + columns);
}

TEST(SpeechFeatures, ARecordingIsNoDistanceFromItself) {
  const SpeechFeatures features(Syllables(1));
  EXPECT_FLOAT_EQ(WarpingDistance(features, features), 0);
}

TEST(SpeechFeatures, ThereIsATimeForEachHundredthOfASecondOfSpeechAndItsMargins) {
  const SpeechFeatures features(Syllables(1, 11025));
  EXPECT_GT(features.Frames(), 90U);
  EXPECT_LT(features.Frames(), 130U);
}

TEST(SpeechFeatures, SilenceBeforeAndAfterTheSpeechDoesNotCount) {
  const support::Samples speech = support::SpeechLike(6000, 9000, 2);
  const auto within = [&](std::size_t before, std::size_t after) {
    return SpeechFeatures(
        support::Mixed(support::Noise(before + 6000 + after, 5, 3), before, speech));
  };
  const float moved = WarpingDistance(within(2000, 2000), within(9000, 12000));
  const float other = WarpingDistance(within(2000, 2000), SpeechFeatures(Syllables(4)));
  EXPECT_LT(moved, other / 10);
}

TEST(SpeechFeatures, LoudnessDoesNotCount) {
  const support::Samples speech = Syllables(5);
  const float softer = WarpingDistance(SpeechFeatures(speech), SpeechFeatures(Scaled(speech, 0.2)));
  const float other = WarpingDistance(SpeechFeatures(speech), SpeechFeatures(Syllables(6)));
  EXPECT_LT(softer, other / 50);
}

TEST(SpeechFeatures, AnotherMicrophoneCountsLittle) {
  const support::Samples speech = Syllables(7);
  const float dulled = WarpingDistance(SpeechFeatures(speech), SpeechFeatures(Dulled(speech)));
  const float other = WarpingDistance(SpeechFeatures(speech), SpeechFeatures(Syllables(8)));
  EXPECT_LT(dulled, other / 20);
}

TEST(SpeechFeatures, ToTurnItTwiceOrToSwapAnEvenLengthTwiceGivesItBack) {
  const SpeechFeatures features(Syllables(9));
  const SpeechFeatures twice = features.Backwards().Backwards();
  for (std::size_t f = 0; f < SpeechFeatures::kCount; ++f) {
    EXPECT_TRUE(std::ranges::equal(features.Get(f), twice.Get(f)));
  }
  EXPECT_GT(WarpingDistance(features, features.Backwards()), 0);
  EXPECT_GT(WarpingDistance(features, features.Swapped()), 0);
}

TEST(SpeechFeatures, BackwardsTheSlopesChangeTheirSigns) {
  const SpeechFeatures features(Syllables(10));
  const SpeechFeatures backwards = features.Backwards();
  const std::size_t last = features.Frames() - 1;
  EXPECT_EQ(backwards.Get(0)[0], features.Get(0)[last]);
  EXPECT_EQ(backwards.Get(SpeechFeatures::kCepstra)[5],
            -features.Get(SpeechFeatures::kCepstra)[last - 5]);
}

TEST(SpeechFeatures, EachCepstrumHasNoMean) {
  const SpeechFeatures features(Syllables(11));
  for (std::size_t c = 0; c < SpeechFeatures::kCepstra; ++c) {
    double sum = 0;
    for (const float value : features.Get(c)) {
      sum += value;
    }
    EXPECT_NEAR(sum / static_cast<double>(features.Frames()), 0, 1e-4) << c;
  }
}

/// The first cepstrum of a sound is high if its low bands are loud, and falls as a tone rises.
TEST(SpeechFeatures, ARisingToneFallsInTheFirstCepstrum) {
  const SpeechFeatures features(support::Sweep(11025, 20, 300, 9000));
  const auto first = features.Get(0);
  EXPECT_GT(first[10], first[features.Frames() / 2]);
  EXPECT_GT(first[features.Frames() / 2], first[features.Frames() - 10]);
}

TEST(SpeechFeatures, WhatHoldsNoSoundIsFiniteAndFarFromNothing) {
  for (const support::Samples& samples :
       {support::Samples(), support::Samples(1), support::Constant(300, 7),
        support::Constant(20000, -32768), support::Extremes(20000, 1)}) {
    const SpeechFeatures features(samples);
    ASSERT_GE(features.Frames(), 1U);
    EXPECT_TRUE(std::isfinite(WarpingDistance(features, SpeechFeatures(Syllables(1)))));
    EXPECT_TRUE(std::isfinite(WarpingDistance(features.Swapped(), features.Backwards())));
  }
}

TEST(WarpingDistance, IsTheCheapestWay) {
  for (const std::uint32_t seed : {1U, 2U, 3U}) {
    const SpeechFeatures a(Syllables(seed, 3000 + 1500 * seed));
    const SpeechFeatures b(Syllables(seed + 10));
    const double literal = LiteralDistance(a, b);
    EXPECT_NEAR(WarpingDistance(a, b), literal, literal * 1e-4);
    EXPECT_NEAR(WarpingDistance(b, a), literal, literal * 1e-4);
  }
}

}  // namespace
