// The fast forms of what makes a template of a recording against the literal twins, bit for bit, in
// numbers.

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <random>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/signals.h"
#include "tests/voicemath/bits.h"
#include "tests/voicemath/sample_recordings.h"
#include "tests/voicemath/twins/features.h"
#include "tests/voicemath/twins/speech_bounds.h"
#include "voicemath/band_features.h"
#include "voicemath/endpoint_detector.h"
#include "voicemath/fft.h"
#include "voicemath/vector_clones.h"

namespace voicemath {
namespace {

using support::Samples;

constexpr std::uint32_t kUtterances = 1000;

constexpr std::size_t kThreeSeconds = 33075;

/// Of each utterance at most so many frames, and of each that is three seconds long. The literal
/// transform takes an emulated machine without floating-point unit half a second for a hundred.
#if defined(__SOFTFP__)
constexpr std::size_t kFramesOfEach = 1;
constexpr std::size_t kFramesOfLong = 5;
#else
constexpr std::size_t kFramesOfEach = 12;
constexpr std::size_t kFramesOfLong = 63;
#endif

bool IsSpeech(std::uint32_t seed) { return seed % 5 == 0; }

/// Some with speech, and some of every other kind.
bool IsLong(std::uint32_t seed) { return seed % 40 == 0 || seed % 64 == 1; }

/// A spoken name from any place on, its end followed by its beginning; fainter, or louder up to
/// beyond full scale; in noise.
Samples DrawSpeech(std::size_t count, std::uint32_t seed) {
  std::mt19937 random(seed);
  const Samples& name = SampleRecordings()[support::Draw(random, kSampleRecordings)];
  const std::size_t from = support::Draw(random, kThreeSeconds);
  const auto quarters = static_cast<std::int32_t>(1 + support::Draw(random, 16));
  Samples speech = support::Noise(count, static_cast<int>(1U << support::Draw(random, 11)), seed);
  for (std::size_t i = 0; i < count; ++i) {
    const int sum = speech[i] + name[(from + i) % name.size()] * quarters / 4;
    speech[i] = static_cast<std::int16_t>(std::clamp(sum, -32768, 32767));
  }
  return speech;
}

/// Speech, tones, noise of every strength, full scale, and what makes 16-bit distances wrap, in
/// turn.
Samples DrawUtterance(std::uint32_t seed) {
  const std::size_t count = IsLong(seed) ? kThreeSeconds : 1024 + 97 * (seed % 60);
  switch (seed % 5) {
    case 0:
      return DrawSpeech(count, seed);
    case 1: {
      Samples word = support::Tone(count / 2, 20.0 + seed % 200, 200.0 + 30.0 * seed);
      return support::Mixed(support::Noise(count, 60, seed), count / 4, word);
    }
    case 2:
      return support::Noise(count, 1 << (seed / 5 % 15), seed);
    case 3:
      return support::Extremes(count, seed);
    default:
      return support::Square(count, 1 + seed % 300, 32767, -32768);
  }
}

TEST(FastEndpointDetection, EqualsItsTwinOnAThousandUtterances) {
  int wrapped = 0;
  int found = 0;
  for (std::uint32_t seed = 0; seed < kUtterances; ++seed) {
    const Samples samples = DrawUtterance(seed);
    std::vector<std::int16_t> expected(samples.size() / kBlockStep - 1);
    for (std::size_t block = 0; block < expected.size(); ++block) {
      const auto of = std::span(samples).subspan(block * kBlockStep, kBlockSamples);
      expected[block] = twins::BlockEnvelope(of);
      wrapped += std::ranges::max(of) - std::ranges::min(of) > 65000 ? 1 : 0;
    }
    std::vector<std::int16_t> envelope(expected.size());
    MeasureEnvelope(samples, envelope);
    ASSERT_EQ(envelope, expected) << seed;

    const auto bytes = static_cast<std::uint32_t>(2 * samples.size());
    const twins::SpeechSearch search = twins::LocateSpeech(expected, bytes);
    const auto speech = LocateSpeech(envelope, bytes / 2);
    ASSERT_EQ(speech.has_value(), search.found) << seed;
    found += speech && IsSpeech(seed) ? 1 : 0;
    if (speech) {
      ASSERT_EQ(*speech, (Segment{search.firstSample, search.lastSample})) << seed;
    }
  }
  EXPECT_GT(wrapped, 1000);
  EXPECT_GT(found, 150);  // Of the two hundred with speech.
}

TEST(FastTransform, EqualsItsTwinOnAThousandUtterances) {
  std::size_t left = 0;  // Frames that do not fill all lanes.
  std::size_t checked = 0;
  for (std::uint32_t seed = 0; seed < kUtterances; ++seed) {
    const Samples samples = DrawUtterance(seed);
    const std::size_t all = (samples.size() - kFrameSamples) / kFrameHop + 1;
    const std::size_t frames = std::min(IsLong(seed) ? kFramesOfLong : kFramesOfEach, all);
    const auto some = std::span(samples).subspan((all - frames) / 2 * kFrameHop);
    std::vector<float> bands(frames * kBandCount);
    BandFeatures(some, kFrameHop, bands);
    for (std::size_t frame = 0; frame < frames; ++frame) {
      const auto of = some.subspan(frame * kFrameHop, kFrameSamples);
      ASSERT_EQ(BitsOf(std::span(bands).subspan(frame * kBandCount, kBandCount)),
                BitsOf(twins::FrameBands(of)))
          << seed << " at " << frame;
    }
    left += frames % kFrameLanes;
    checked += frames;
  }
  EXPECT_EQ(left > 0, kFrameLanes > 1);
  EXPECT_GT(checked, kUtterances + 100);
}

TEST(Magnitude, InIntegersEqualsThatInDouble) {
  std::mt19937 random(20);
  for (int round = 0; round < 20000; ++round) {
    // Of like and of very unlike size, from what is no normal number up; zeros; whole numbers.
    float re = DrawFloat(random, round % 4 == 0 ? 0 : 120, round % 4 == 0 ? 250 : 30);
    float im = round % 16 == 1 ? re : DrawFloat(random, round % 4 == 0 ? 0 : 120, 30);
    if (round % 4 == 2) {
      re = static_cast<float>(support::Draw(random, 1000));
      im = static_cast<float>(support::Draw(random, 1000));
    }
    const auto weight = static_cast<std::int32_t>(1 + support::Draw(random, 255));
    ASSERT_EQ(std::bit_cast<std::uint32_t>(WeighMagnitudeInIntegers(re, im, weight)),
              std::bit_cast<std::uint32_t>(WeighMagnitudeInDouble(re, im, weight)))
        << re << ' ' << im << ' ' << weight;
  }
}

}  // namespace
}  // namespace voicemath
