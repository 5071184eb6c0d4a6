#include "voicemath/endpoint_detector.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "voicemath/constants.h"
#include "voicemath/vector_clones.h"

namespace voicemath {
namespace {

constexpr std::size_t kHistogramBins = 32;
constexpr std::size_t kNoiseBins = 16;  ///< The noise is looked for in the lower half only.
constexpr std::int64_t kReach = 200;    ///< Blocks on either side of the middle that count, 1 s.
constexpr std::int64_t kCore = 20;      ///< Blocks around the middle taken as speech, 0.1 s.
constexpr std::int32_t kMarginSamples = 3307;  ///< Kept before and after the speech, 0.3 s.

std::int16_t Narrow(std::int64_t value) { return static_cast<std::int16_t>(value); }

struct Peak {
  std::int16_t height = 0;
  std::size_t block = 0;  ///< The first of that height.
};

/// Puts the mean of its neighbourhood in the place of each block, and finds the highest mean.
///
/// The sum of the neighbourhood runs along: one block comes in ahead and one goes out at the back,
/// so each block costs the same, however wide the neighbourhood is. Blocks that were replaced are
/// still needed unsmoothed until they have gone out, so the last few are kept.
///
/// Block 0 is never an earlier neighbour, deliberately: the test for neighbours has always been
/// "greater than zero". It counts only in its own mean.
class Smoothing {
 public:
  explicit Smoothing(std::span<std::int16_t> envelope) : m_envelope(envelope) {
    for (; m_count < std::min(kForwardBlocks, envelope.size()); ++m_count) {
      m_sum += static_cast<std::uint32_t>(envelope[m_count]);
    }
  }

  VOXTREL_INLINE Peak Run() {
    const std::size_t blocks = m_envelope.size();
    const std::size_t full = blocks - std::min(kForwardBlocks, blocks);  // Those with eight ahead.
    std::size_t block = 0;
    for (; block < std::min(kBackwardBlocks + 1, full); ++block) {
      Put(block, m_sum / m_count++);
      Enter(block);
      if (block == 0) {
        Leave(block);
        --m_count;
      }
    }
    for (; block < full; ++block) {
      Put(block, m_sum / kAllBlocks);
      Enter(block);
      Leave(block - kBackwardBlocks);
    }
    for (; block < blocks; ++block) {
      Put(block, m_sum / m_count);
      if (block == 0 || block > kBackwardBlocks) {
        Leave(block == 0 ? 0 : block - kBackwardBlocks);
        --m_count;
      }
    }
    return m_peak;
  }

 private:
  static constexpr std::size_t kForwardBlocks = 8;   ///< Looks this far ahead, itself included,
  static constexpr std::size_t kBackwardBlocks = 7;  ///< and this far back.
  static constexpr std::uint32_t kAllBlocks = kForwardBlocks + kBackwardBlocks;

  VOXTREL_INLINE void Put(std::size_t block, std::uint32_t mean) {
    m_unsmoothed[block % m_unsmoothed.size()] = m_envelope[block];
    const auto height = static_cast<std::int16_t>(mean);
    m_envelope[block] = height;
    if (height > m_peak.height) {
      m_peak = {height, block};
    }
  }
  /// On to the block after `block`.
  VOXTREL_INLINE void Enter(std::size_t block) {
    m_sum += static_cast<std::uint32_t>(m_envelope[block + kForwardBlocks]);
  }
  VOXTREL_INLINE void Leave(std::size_t block) {
    m_sum -= static_cast<std::uint32_t>(m_unsmoothed[block % m_unsmoothed.size()]);
  }

  std::span<std::int16_t> m_envelope;
  std::array<std::int16_t, kBackwardBlocks + 1> m_unsmoothed{};  ///< Of the last blocks.
  std::uint32_t m_sum = 0;
  std::uint32_t m_count = 0;
  Peak m_peak;
};

/// Returns the noise level under the speech: the commonest of the lower amplitudes, and a sixteenth
/// of the peak. Most blocks of a recording are no speech, so the commonest amplitude is the room's.
VOXTREL_INLINE std::int16_t NoiseLevel(std::span<const std::int16_t> envelope, std::int16_t peak,
                                       std::int16_t binWidth) {
  // Divides by a product with a number above the reciprocal, in units of 2^-31. With a value below
  // 2^15 the product is too large by less than 2^-16, and a width below 2^10 leaves more room than
  // that up to the next whole number.
  const std::uint64_t reciprocal =
      (std::uint64_t{1} << 31U) / static_cast<std::uint64_t>(binWidth) + 1;
  // Neighbours mostly fall into the same bin. In four histograms they need not wait for each other.
  std::array<std::array<std::uint32_t, kHistogramBins>, 4> histograms{};
  std::size_t apart = 0;
  for (const std::int16_t value : envelope) {
    const std::uint64_t bin = (static_cast<std::uint64_t>(value) * reciprocal) >> 31U;
    ++histograms[apart++ % histograms.size()]
                [static_cast<std::size_t>(std::min<std::uint64_t>(bin, kHistogramBins - 1))];
  }
  std::array<std::uint32_t, kNoiseBins> histogram{};
  for (const auto& each : histograms) {
    for (std::size_t bin = 0; bin < kNoiseBins; ++bin) {
      histogram[bin] += each[bin];
    }
  }
  const auto mode = std::ranges::max_element(histogram);
  return Narrow(binWidth * (mode - histogram.begin()) + peak / 16);
}

/// The envelope above the noise, with peaks cut at half height so that one loud syllable does not
/// outweigh the others.
///
/// 32 bits hold every sum: 2 * kReach + 1 blocks are within reach, each below 2^14, so their sum is
/// below 2^23. Their distances from the first block add up to 80,200, so the sum of the products is
/// below 2^31.
struct ClippedEnvelope {
  std::span<const std::int16_t> envelope;
  std::int16_t clip;

  /// Returns the blocks `from` up to `to`, as far as they exist.
  [[nodiscard]] std::span<const std::int16_t> Blocks(std::int64_t from, std::int64_t to) const {
    const std::int64_t begin = std::max<std::int64_t>(from, 0);
    const std::int64_t end = std::min(to + 1, static_cast<std::int64_t>(envelope.size()));
    return begin < end ? envelope.subspan(static_cast<std::size_t>(begin),
                                          static_cast<std::size_t>(end - begin))
                       : std::span<const std::int16_t>{};
  }
  [[nodiscard]] VOXTREL_INLINE std::int32_t Mass(std::span<const std::int16_t> blocks) const {
    std::int32_t mass = 0;
    for (const std::int16_t height : blocks) {
      mass += std::min(height, clip);
    }
    return mass;
  }
  /// Returns the centre of mass of the surroundings of `peak`. Returns nothing if there is no mass.
  [[nodiscard]] VOXTREL_INLINE std::optional<std::int64_t> Centre(std::int64_t peak) const {
    const auto blocks = Blocks(peak - kReach, peak + kReach);
    const std::int32_t mass = Mass(blocks);
    std::int32_t moment = 0;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
      moment += std::int32_t{static_cast<std::int16_t>(i)} * std::min(blocks[i], clip);
    }
    if (mass == 0) {
      return std::nullopt;
    }
    return std::max<std::int64_t>(peak - kReach, 0) + moment / mass;
  }
};

}  // namespace

bool SpeechBlocks::HavePlace() const { return left == Narrow(left) && right == Narrow(right); }

VOXTREL_VECTOR_CLONES
std::optional<SpeechBlocks> FindSpeech(std::span<std::int16_t> envelope) {
  if (envelope.empty()) {
    return std::nullopt;
  }
  const Peak peak = Smoothing(envelope).Run();
  const auto binWidth = Narrow(peak.height / static_cast<std::int32_t>(kHistogramBins));
  if (binWidth == 0) {
    return std::nullopt;  // Almost silence: there is no speech to be found.
  }
  const std::int16_t noise = NoiseLevel(envelope, peak.height, binWidth);
  for (std::int16_t& value : envelope) {
    value = Narrow(std::max(value, noise) - noise);
  }
  const ClippedEnvelope clipped{envelope, Narrow((peak.height - noise) / 2)};
  const auto centre =
      clipped.clip == 0 ? std::nullopt : clipped.Centre(static_cast<std::int64_t>(peak.block));
  if (!centre) {
    return std::nullopt;
  }

  const std::int32_t leftMass = clipped.Mass(clipped.Blocks(*centre - kReach, *centre - kCore - 1));
  const std::int32_t rightMass =
      clipped.Mass(clipped.Blocks(*centre + kCore + 1, *centre + kReach));
  return SpeechBlocks{*centre - leftMass / clipped.clip - kCore,
                      *centre + rightMass / clipped.clip + kCore};
}

std::optional<Segment> ToSegment(const SpeechBlocks& speech, std::uint32_t totalSamples) {
  // In 16 bits, deliberately: what lies after block 32,767 is not found again.
  const std::int16_t left = Narrow(speech.left);
  const std::int16_t right = Narrow(speech.right);
  constexpr auto kStep = static_cast<std::int32_t>(kBlockStep);
  const std::int32_t first = std::max(left * kStep - kMarginSamples, 0);
  const std::int32_t last = static_cast<std::int32_t>(
      std::min<std::int64_t>(right * kStep + kMarginSamples, std::int64_t{totalSamples} - 1));
  if (first > last) {
    return std::nullopt;
  }
  return Segment{static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(last)};
}

std::optional<Segment> LocateSpeech(std::span<std::int16_t> envelope, std::uint32_t totalSamples) {
  const auto speech = FindSpeech(envelope);
  return speech ? ToSegment(*speech, totalSamples) : std::nullopt;
}

}  // namespace voicemath
