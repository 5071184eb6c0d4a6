#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include "voicemath/endpoint_detector.h"
#include "voicemath/vector_clones.h"

// The envelope looks at every sample of the recording, so it reads each one once. A block is two
// half blocks, and each half block belongs to two blocks: its sum, its lowest and its highest
// sample are measured once and used twice. The largest distance from the mean is that of the lowest
// or of the highest sample, so the samples need not be read again when the mean is known.

namespace voicemath {
namespace {

/// What a block needs to know of each of its halves.
struct HalfBlock {
  std::int32_t sum = 0;
  std::int16_t lowest = 0;
  std::int16_t highest = 0;
};

/// Samples side by side, and sums of them in as many bits.
struct EightLanes {
  static constexpr std::size_t kCount = 8;
  using Samples [[gnu::vector_size(sizeof(std::int16_t) * kCount)]] = std::int16_t;
  using Sums [[gnu::vector_size(sizeof(std::int16_t) * kCount)]] = std::uint16_t;

  VOXTREL_INLINE static Samples At(const std::int16_t* samples) {
    Samples values;
    std::memcpy(&values, samples, sizeof values);
    return values;
  }
  /// Returns all bits, except those of the lanes that the last samples of a half block share with
  /// the samples before.
  VOXTREL_INLINE static Samples LastCounted() {
    static_assert(kBlockStep % kCount == kCount - 1);
    Samples counted = ~Samples{};
    counted[0] = 0;
    return counted;
  }
};
/// A single sample, for processors without vectors.
struct OneLane {
  [[maybe_unused]] static constexpr std::size_t kCount = 1;
  using Samples = std::int32_t;
  using Sums = std::uint32_t;

  VOXTREL_INLINE static Samples At(const std::int16_t* samples) { return *samples; }
  VOXTREL_INLINE static Samples LastCounted() { return ~Samples{}; }
};

using InLanes = std::conditional_t<kVectorsFast, EightLanes, OneLane>;
using SampleLanes = InLanes::Samples;
using SumLanes = InLanes::Sums;

VOXTREL_INLINE SampleLanes Higher(SampleLanes a, SampleLanes b) { return a > b ? a : b; }
VOXTREL_INLINE SumLanes Sum(SumLanes a, SumLanes b) { return a + b; }

/// Returns all lanes of `a` taken together, and all of `b`: both at once in one vector, which is
/// halved three times.
template <typename AnyLanes>
VOXTREL_INLINE auto Fold(AnyLanes a, AnyLanes b, AnyLanes together(AnyLanes, AnyLanes)) {
  if constexpr (std::is_integral_v<AnyLanes>) {
    return std::pair(a, b);
  } else {
    a = together(AnyLanes{a[0], b[0], a[1], b[1], a[2], b[2], a[3], b[3]},
                 AnyLanes{a[4], b[4], a[5], b[5], a[6], b[6], a[7], b[7]});
    a = together(a, AnyLanes{a[4], a[5], a[6], a[7], a[0], a[1], a[2], a[3]});
    a = together(a, AnyLanes{a[2], a[3], a[0], a[1], a[6], a[7], a[4], a[5]});
    const auto ofA = a[0];
    const auto ofB = a[1];
    return std::pair(ofA, ofB);
  }
}

/// Measures a half block, several samples side by side, and never leaves 16 bits.
///
/// The sum of the samples does not fit, so two sums are kept: that of the upper halves, v >> 8,
/// which fits, and that of the samples themselves, which wraps. What 256 times the first lacks of
/// the second is the sum of the lower halves. It fits, so it is right however often the other
/// wrapped.
class HalfBlockLanes {
 public:
  VOXTREL_INLINE explicit HalfBlockLanes(SampleLanes values)
      : m_highest(values),
        m_lowest(values),
        m_sum(std::bit_cast<SumLanes>(values)),
        m_upperSum(values >> 8) {}

  /// Takes more samples. Lanes without a bit in `counted` were added before.
  VOXTREL_INLINE void Take(SampleLanes values, SampleLanes counted) {
    m_highest = Higher(m_highest, values);
    m_lowest = values < m_lowest ? values : m_lowest;
    m_sum += std::bit_cast<SumLanes>(values & counted);
    m_upperSum += (values & counted) >> 8;
  }

  [[nodiscard]] VOXTREL_INLINE HalfBlock Together() const {
    const auto uppers = std::bit_cast<SumLanes>(m_upperSum);
    const auto [upperSum, lowerSum] = Fold(uppers, m_sum - (uppers << 8), Sum);
    // ~v always fits, and rises as v falls.
    const auto [highest, highestInverse] = Fold(m_highest, ~m_lowest, Higher);
    return {.sum = static_cast<std::int16_t>(upperSum) * 256 + static_cast<std::int32_t>(lowerSum),
            .lowest = static_cast<std::int16_t>(~highestInverse),
            .highest = static_cast<std::int16_t>(highest)};
  }

 private:
  SampleLanes m_highest;
  SampleLanes m_lowest;
  SumLanes m_sum;
  SampleLanes m_upperSum;
};

VOXTREL_INLINE HalfBlock MeasureHalf(const std::int16_t* samples) {
  constexpr std::size_t kLast = kBlockStep - InLanes::kCount;
  HalfBlockLanes lanes(InLanes::At(samples));
  for (std::size_t at = InLanes::kCount; at < kLast; at += InLanes::kCount) {
    lanes.Take(InLanes::At(samples + at), ~SampleLanes{});
  }
  // The last samples end with the half block, and repeat one of those before.
  lanes.Take(InLanes::At(samples + kLast), InLanes::LastCounted());
  return lanes.Together();
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
    // If no distance leaves 16 bits, the largest is that of the lowest or the highest sample.
    envelope[block] =
        largest <= std::numeric_limits<std::int16_t>::max()
            ? static_cast<std::int16_t>(largest)
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
    // In 16 bits, deliberately: a distance of 32,768 or more becomes negative and never wins.
    const std::int16_t distance = static_cast<std::int16_t>(std::abs(sample - mean));
    largest = std::max(largest, distance);
  }
  return largest;
}

}  // namespace voicemath
