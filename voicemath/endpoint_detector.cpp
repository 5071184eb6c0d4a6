#include "voicemath/endpoint_detector.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <limits>

#include "voicemath/vector_clones.h"

namespace voicemath {
namespace {

constexpr std::int64_t kForwardBlocks = 8;   ///< Smoothing looks this far ahead, itself included.
constexpr std::int64_t kBackwardBlocks = 7;  ///< And this far back.
constexpr std::size_t kHistogramBins = 32;
constexpr std::size_t kNoiseBins = 16;  ///< The noise is looked for in the lower half only.
constexpr std::int64_t kReach = 200;    ///< Blocks on either side of the middle that count, 1 s.
constexpr std::int64_t kCore = 20;      ///< Blocks around the middle taken as speech, 0.1 s.
constexpr std::int32_t kMarginSamples = 3307;  ///< Kept before and behind the speech, 0.3 s.

std::int16_t Narrow(std::int64_t value) { return static_cast<std::int16_t>(value); }

/// Mean over the neighbourhood of each block, in place, from a sum that runs along: one block comes
/// in ahead, one goes out behind. Block 0 counts only where the forward run begins with it, never
/// as a neighbour behind: the test for neighbours is "greater than zero", deliberately.
void Smooth(std::span<std::int16_t> envelope) {
  constexpr std::int32_t kAllBlocks = kBackwardBlocks + kForwardBlocks;
  // Values of the last blocks before they were smoothed.
  std::array<std::int16_t, kBackwardBlocks + 1> unsmoothed{};
  const auto blocks = static_cast<std::int64_t>(envelope.size());
  std::int32_t sum = 0;
  std::int32_t count = 0;
  for (std::int64_t b = 0; b < std::min(kForwardBlocks, blocks); ++b, ++count) {
    sum += envelope[static_cast<std::size_t>(b)];
  }
  for (std::int64_t block = 0; block < blocks; ++block) {
    auto& value = envelope[static_cast<std::size_t>(block)];
    unsmoothed[static_cast<std::size_t>(block) % unsmoothed.size()] = value;
    value = Narrow(count == kAllBlocks ? sum / kAllBlocks : sum / count);
    // On to the next block.
    if (block + kForwardBlocks < blocks) {
      sum += envelope[static_cast<std::size_t>(block + kForwardBlocks)];
      ++count;
    }
    const std::int64_t leaving = block - kBackwardBlocks;
    if (block == 0 || leaving > 0) {
      sum -= unsmoothed[static_cast<std::size_t>(std::max<std::int64_t>(leaving, 0)) %
                        unsmoothed.size()];
      --count;
    }
  }
}

/// The noise level under the speech: the mode of the lower half of the amplitudes, and a little.
std::int16_t NoiseLevel(std::span<const std::int16_t> envelope, std::int16_t peak,
                        std::int16_t binWidth) {
  // Division by a product with the reciprocal, rounded up, in units of 2^-31. With a value below
  // 2^15 it comes out too large by less than 2^-16, and a width below 2^10 leaves more room than
  // that up to the next whole number.
  const std::uint64_t reciprocal =
      (std::uint64_t{1} << 31U) / static_cast<std::uint64_t>(binWidth) + 1;
  std::array<std::uint32_t, kHistogramBins> histogram{};
  for (const std::int16_t value : envelope) {
    const std::uint64_t bin = (static_cast<std::uint64_t>(value) * reciprocal) >> 31U;
    ++histogram[static_cast<std::size_t>(std::min<std::uint64_t>(bin, kHistogramBins - 1))];
  }
  const auto mode = std::max_element(histogram.begin(), histogram.begin() + kNoiseBins);
  return Narrow(binWidth * (mode - histogram.begin()) + peak / 16);
}

/// The envelope above the noise, with peaks cut at half height so that one loud syllable does not
/// outweigh the others.
struct ClippedEnvelope {
  std::span<const std::int16_t> envelope;
  std::int16_t clip;

  [[nodiscard]] std::int64_t LastBlock() const {
    return static_cast<std::int64_t>(envelope.size()) - 1;
  }
  [[nodiscard]] std::int64_t At(std::int64_t block) const {
    return std::min(envelope[static_cast<std::size_t>(block)], clip);
  }
  /// Sum over blocks `from` to `to`, both included.
  [[nodiscard]] std::int64_t Mass(std::int64_t from, std::int64_t to) const {
    std::int64_t mass = 0;
    for (std::int64_t block = from; block <= to; ++block) {
      mass += At(block);
    }
    return mass;
  }
  /// Centre of mass of the surroundings of `peak`; nothing where there is no mass.
  [[nodiscard]] std::optional<std::int64_t> Centre(std::int64_t peak) const {
    std::int64_t moment = 0;
    std::int64_t mass = 0;
    const std::int64_t end = std::min(peak + kReach, LastBlock());
    for (std::int64_t block = std::max<std::int64_t>(peak - kReach, 0); block <= end; ++block) {
      moment += block * At(block);
      mass += At(block);
    }
    return mass == 0 ? std::nullopt : std::optional(moment / mass);
  }
};

/// What a block needs to know of each of its halves.
struct HalfBlock {
  std::int32_t sum = 0;
  std::int16_t lowest = std::numeric_limits<std::int16_t>::max();
  std::int16_t highest = std::numeric_limits<std::int16_t>::min();
};

VOXTREL_INLINE HalfBlock MeasureHalf(const std::int16_t* samples) {
  HalfBlock half;
  for (std::size_t i = 0; i < kBlockStep; ++i) {
    half.sum += samples[i];
    half.lowest = std::min(half.lowest, samples[i]);
    half.highest = std::max(half.highest, samples[i]);
  }
  return half;
}

}  // namespace

VOXTREL_VECTOR_CLONES
void MeasureEnvelope(std::span<const std::int16_t> samples, std::span<std::int16_t> envelope) {
  HalfBlock first = MeasureHalf(samples.data());
  for (std::size_t block = 0; block < envelope.size(); ++block) {
    const HalfBlock second = MeasureHalf(samples.data() + (block + 1) * kBlockStep);
    const std::int32_t mean = (first.sum + second.sum) / static_cast<std::int32_t>(kBlockSamples);
    const std::int32_t largest = std::max(std::max(first.highest, second.highest) - mean,
                                          mean - std::min(first.lowest, second.lowest));
    // Where no distance leaves 16 bits the largest is that of the lowest or the highest sample.
    envelope[block] =
        largest <= std::numeric_limits<std::int16_t>::max()
            ? Narrow(largest)
            : BlockEnvelope(samples.subspan(block * kBlockStep).first<kBlockSamples>());
    first = second;
  }
}

std::int16_t BlockEnvelope(std::span<const std::int16_t, kBlockSamples> block) {
  std::int32_t sum = 0;
  for (const std::int16_t sample : block) {
    sum += sample;
  }
  const std::int32_t mean = sum / static_cast<std::int32_t>(kBlockSamples);
  std::int16_t largest = 0;
  for (const std::int16_t sample : block) {
    // Kept in 16 bits: a distance of 32,768 or more wraps to a negative value and never wins.
    const std::int16_t distance = Narrow(std::abs(sample - mean));
    largest = std::max(largest, distance);
  }
  return largest;
}

std::optional<Segment> LocateSpeech(std::span<std::int16_t> envelope, std::uint32_t totalSamples) {
  if (envelope.empty()) {
    return std::nullopt;
  }
  Smooth(envelope);
  std::int16_t peak = 0;
  for (const std::int16_t value : envelope) {
    peak = std::max(peak, value);
  }
  const auto binWidth = Narrow(peak / static_cast<std::int32_t>(kHistogramBins));
  if (binWidth == 0) {
    return std::nullopt;  // Next to silence: nothing to tell speech from.
  }
  const auto peakAt = std::ranges::find(envelope, peak) - envelope.begin();
  const std::int16_t noise = NoiseLevel(envelope, peak, binWidth);
  for (std::int16_t& value : envelope) {
    value = value < noise ? std::int16_t{0} : Narrow(value - noise);
  }
  const ClippedEnvelope clipped{envelope, Narrow((peak - noise) / 2)};
  const auto centre = clipped.clip == 0 ? std::nullopt : clipped.Centre(peakAt);
  if (!centre) {
    return std::nullopt;
  }

  const std::int64_t leftMass =
      clipped.Mass(std::max<std::int64_t>(*centre - kReach, 0), *centre - kCore - 1);
  const std::int64_t rightMass =
      clipped.Mass(*centre + kCore + 1, std::min(*centre + kReach, clipped.LastBlock()));
  const std::int16_t left = Narrow(*centre - leftMass / clipped.clip - kCore);
  const std::int16_t right = Narrow(*centre + rightMass / clipped.clip + kCore);

  constexpr auto kStep = static_cast<std::int32_t>(kBlockStep);
  const std::int32_t first = std::max(left * kStep - kMarginSamples, 0);
  const std::int32_t last = static_cast<std::int32_t>(
      std::min<std::int64_t>(right * kStep + kMarginSamples, std::int64_t{totalSamples} - 1));
  if (first > last) {
    return std::nullopt;
  }
  return Segment{static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(last)};
}

}  // namespace voicemath
