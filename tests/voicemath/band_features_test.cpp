#include "voicemath/band_features.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/signals.h"
#include "tests/voicemath/bits.h"
#include "tests/voicemath/signal_catalogue.h"
#include "tests/voicemath/twins/features.h"
#include "voicemath/vector_clones.h"

namespace voicemath {
namespace {

void ExpectSameAsTwin(std::span<const std::int16_t> frame, const std::string& name) {
  std::array<float, kBandCount> bands{};
  // Whatever stood there before does not count.
  bands.fill(-1.0F);
  BandFeatures(frame, 0, bands);
  EXPECT_EQ(BitsOf(bands), BitsOf(twins::FrameBands(frame))) << name;
}

TEST(BandFeatures, EqualTheirTwinOnEveryKindOfFrame) {
  for (const NamedSignal& signal : CatalogueOfFrames()) {
    ExpectSameAsTwin(signal.samples, signal.name);
  }
}

TEST(BandFeatures, EqualTheirTwinOnRandomFrames) {
  for (std::uint32_t seed = 0; seed < 200; ++seed) {
    const int amplitude = seed % 15 == 14 ? 32767 : 1 << (seed % 15);
    ExpectSameAsTwin(support::Noise(kFrameSamples, amplitude, seed), std::to_string(seed));
  }
}

TEST(BandFeatures, EqualTheirTwinOnFramesOfSpeech) {
  const support::Samples speech = support::SpeechLike(33075, 20000.0, 3);
  for (std::size_t start = 0; start + kFrameSamples <= speech.size(); start += kFrameHop) {
    ExpectSameAsTwin(std::span(speech).subspan(start), std::to_string(start));
  }
}

TEST(BandFeatures, OfManyFramesAreThoseOfEach) {
  const support::Samples speech = support::SpeechLike(33075, 20000.0, 4);
  for (const std::size_t hop : {std::size_t{1}, kFrameHop, kFrameSamples}) {
    for (std::size_t frames = 0; frames <= 2 * kFrameLanes + 1; ++frames) {
      std::vector<float> features(frames * kBandCount + 1, -1.0F);
      BandFeatures(speech, hop, std::span(features).first(frames * kBandCount));
      for (std::size_t frame = 0; frame < frames; ++frame) {
        const auto expected =
            twins::FrameBands(std::span(speech).subspan(frame * hop, kFrameSamples));
        EXPECT_EQ(BitsOf(std::span<const float>(features).subspan(frame * kBandCount, kBandCount)),
                  BitsOf(expected))
            << hop << ' ' << frames << ' ' << frame;
      }
      EXPECT_EQ(features.back(), -1.0F) << frames;
    }
  }
}

TEST(BandFeatures, EqualTheirTwinOnASingleSampleOfEachPower) {
  for (unsigned bit = 0; bit < 16; ++bit) {
    support::Samples frame(kFrameSamples);
    frame[1023 - bit * 64] = static_cast<std::int16_t>(std::uint16_t{1} << bit);
    ExpectSameAsTwin(frame, std::to_string(bit));
  }
}

TEST(SubtractBandMinima, EqualsItsTwinForEveryNumberOfFrames) {
  std::mt19937 random(99);
  for (const unsigned frames : {0U, 1U, 2U, 3U, 10U, 63U, 64U, 65U, 1000U, 65535U}) {
    twins::Template expected{.frameCount = static_cast<std::uint16_t>(frames), .values = {}};
    for (std::size_t i = 0; i < std::size_t{frames} * kBandCount; ++i) {
      expected.values.push_back(std::abs(DrawFloat(random, 130, 24)));
    }
    std::vector<float> features = expected.values;
    SubtractBandMinima(features);
    twins::SubtractMinima(expected);
    EXPECT_EQ(BitsOf(features), BitsOf(expected.values)) << frames;
  }
}

TEST(SubtractBandMinima, EqualsItsTwinIfTheMinimumIsLastOrRepeated) {
  twins::Template expected{.frameCount = 3,
                           .values = {5, 1, 3, 7, 0, 4, 1, 3, 2, 0, 3, 1, 9, 2, 1e30F}};
  std::vector<float> features = expected.values;
  SubtractBandMinima(features);
  twins::SubtractMinima(expected);
  EXPECT_EQ(BitsOf(features), BitsOf(expected.values));
}

}  // namespace
}  // namespace voicemath
