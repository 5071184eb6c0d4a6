// The fast forms of what makes a template of a recording against the literal twins, bit for bit, in
// numbers.

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/signals.h"
#include "tests/voicemath/bits.h"
#include "tests/voicemath/twins/features.h"
#include "tests/voicemath/twins/speech_bounds.h"
#include "voicemath/band_features.h"
#include "voicemath/block_envelope.h"
#include "voicemath/endpoint_detector.h"
#include "voicemath/magnitude.h"
#include "voicemath/vector_clones.h"

namespace voicemath {
namespace {

using support::Samples;

constexpr std::uint32_t kUtterances = 1000;

/// Of each utterance so many frames. The literal transform takes an emulated machine without
/// floating-point unit half a second for a hundred.
#if defined(__SOFTFP__)
constexpr std::size_t kFramesOfEach = 1;
#else
constexpr std::size_t kFramesOfEach = 12;
#endif

/// Speech, noise of every strength, full scale, and what makes 16-bit distances wrap, in turn.
Samples DrawUtterance(std::uint32_t seed) {
  const std::size_t count = 1024 + 97 * (seed % 60);
  switch (seed % 4) {
    case 0: {
      Samples word = support::Tone(count / 2, 20.0 + seed % 200, 200.0 + 30.0 * seed);
      return support::Mixed(support::Noise(count, 60, seed), count / 4, word);
    }
    case 1:
      return support::Noise(count, 1 << (seed / 4 % 15), seed);
    case 2:
      return support::Extremes(count, seed);
    default:
      return support::Square(count, 1 + seed % 300, 32767, -32768);
  }
}

TEST(FastEndpointDetection, EqualsItsTwinOnAThousandUtterances) {
  int wrapped = 0;
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
    if (speech) {
      ASSERT_EQ(*speech, (Segment{search.firstSample, search.lastSample})) << seed;
    }
  }
  EXPECT_GT(wrapped, 1000);
}

TEST(FastTransform, EqualsItsTwinOnAThousandUtterances) {
  std::size_t left = 0;  // Frames that do not fill all lanes.
  for (std::uint32_t seed = 0; seed < kUtterances; ++seed) {
    const Samples samples = DrawUtterance(seed);
    const std::size_t frames =
        std::min(kFramesOfEach, (samples.size() - kFrameSamples) / kFrameHop + 1);
    std::vector<float> bands(frames * kBandCount);
    BandFeatures(samples, kFrameHop, bands);
    for (std::size_t frame = 0; frame < frames; ++frame) {
      const auto of = std::span(samples).subspan(frame * kFrameHop, kFrameSamples);
      ASSERT_EQ(BitsOf(std::span(bands).subspan(frame * kBandCount, kBandCount)),
                BitsOf(twins::FrameBands(of)))
          << seed << " at " << frame;
    }
    left += frames % kFrameLanes;
  }
  EXPECT_EQ(left > 0, kFrameLanes > 1);
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
