#include "voicemath/take_template.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "voicemath/band_features.h"
#include "voicemath/constants.h"

namespace voicemath {
namespace {

/// Returns the envelope of the whole recording. The last block lacks samples. LearnFile reads each
/// block over the one before, so it has there what that block has at the same place.
std::vector<std::int16_t> EnvelopeOf(std::span<const std::int16_t> samples) {
  std::vector<std::int16_t> envelope(samples.size() / kBlockStep);
  const std::size_t whole = std::max<std::size_t>(envelope.size(), 1) - 1;
  if (whole > 0) {
    MeasureEnvelope(samples, std::span(envelope).first(whole));
  }
  std::array<std::int16_t, kBlockSamples> read{};
  for (std::size_t block = std::max<std::size_t>(whole, 1) - 1; block < envelope.size(); ++block) {
    const auto left = samples.subspan(block * kBlockStep);
    std::ranges::copy(left.first(std::min(left.size(), kBlockSamples)), read.begin());
    envelope[block] = BlockEnvelope(read);
  }
  return envelope;
}

}  // namespace

Segment FindKeptPart(std::span<const std::int16_t> samples) {
  std::vector<std::int16_t> envelope = EnvelopeOf(samples);
  const auto total = static_cast<std::uint32_t>(samples.size());
  return LocateSpeech(envelope, total).value_or(Segment{0, total - 1});
}

std::vector<float> ComputeLearnedTemplate(std::span<const std::int16_t> samples) {
  const Segment kept = FindKeptPart(samples);
  const auto part = samples.subspan(kept.first, kept.last - kept.first + 1);
  if (part.size() < kFrameSamples) {
    return {};
  }
  std::vector<float> features((part.size() / kFrameHop - 1) * kBandCount);
  BandFeatures(part, kFrameHop, features);
  SubtractBandMinima(features);
  return features;
}

}  // namespace voicemath
