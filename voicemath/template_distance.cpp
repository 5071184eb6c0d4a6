#include "voicemath/template_distance.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>

#include "voicemath/template_pair.h"
#include "voicemath/vector_clones.h"

// How a comparison saves most of its work.
//
// The exact sum of a shift is slow, since its additions have to follow each other. It is needed
// only for shifts that may win. So each shift is judged twice before, first by its outline and then
// by its grid (prepared_template.h). Both are sums of whole numbers that cannot be far from the
// exact sum, and a whole number may be added in any order, many at a time. The likeliest shift
// comes first: the lower the best distance so far, the more shifts can be left out. And since a sum
// of squares never falls, an exact sum is abandoned as soon as it is no longer below the best one.
//
// Why a shift that is left out cannot win.
//
// Let u and v be the n values of the shapes that one shift holds against each other, p and q the
// same values on the grid of G = kGridSteps steps, and F the float sum of the squares of u - v.
// A shift is left out if F is proven not to be below the best distance so far, B.
//
// (1) From grid to shape. Neither p / G nor q / G is further than 1 / (2 G) from its value, so
//     ||p - q|| <= G ||u - v|| + sqrt(n), in the Euclidean norm. ||p - q|| squared, the grid
//     distance, is formed in whole numbers and therefore exact.
// (2) From exact to float. Every rounding errs by a factor of 1 - e at worst, e = 2^-24. A term
//     takes part in at most n + 3 of them: its difference and its square (that factor twice, and
//     once), and n additions. Only a product can also fall below the normal numbers, and then loses
//     less than 2^-149. So F >= ||u - v||^2 (1 - e)^(n + 3) - n 2^-149, and with n < 2^19,
//     F >= B if ||u - v||^2 >= (B + 2^-100) (1 + 2 (n + 3) e).
// (3) The root of the right side is at most sqrt(B + 2^-100) (1 + (n + 3) e). G times it is, with
//     B <= 2, at most G sqrt(B + 2^-100) + (n + 3) / 724.
//
// Together: if the grid distance is at least the square of
//     G sqrt(B + 2^-100) + (n + 3) / 724 + sqrt(n),
// the shift cannot win. GridRoot() is not below the first term, RootOfSize() not below the last.
//
// Most shifts need not even the grid distance, but only that of the outlines.
//
// (4) From outline to grid. The square of the sum of four differences is at most four times the sum
//     of their squares, so half the sums of groups of four frames are no further from each other
//     than p and q. Rounded to whole numbers, all up, at most n / 4 differences change by at most
//     1 / 2, so the root of the outline distance is above ||p - q|| by at most sqrt(n) / 4.

namespace voicemath {
namespace {

constexpr auto kStep = static_cast<std::int32_t>(kProductLanes);
constexpr auto kLanes = static_cast<std::int32_t>(kFloatLanes);

/// The shifts of two names.
constexpr std::int32_t kFewShifts = 16;

/// After so many frames an exact sum looks whether any lane can still win.
constexpr std::int32_t kFramesBetweenLooks = kLanes;

using LaneSums = std::array<float, kFloatLanes>;

/// Returns the float sums of `shift` and of the kLanes - 1 shifts above it. Gives up as soon as
/// none of them is below `bound`, and then returns sums that are not below it either. A sum that is
/// no number never wins.
VOXTREL_INLINE LaneSums ExactSums(const Pair& pair, std::int32_t shift, float bound) {
  const auto& [shorter, longer] = pair;
  ShiftLanes sums{};
  LaneSums seen{};
  const auto canWin = [bound](float sum) { return sum < bound; };
  std::array<const float*, kBandCount> slid;
  for (std::size_t band = 0; band < kBandCount; ++band) {
    slid[band] = shorter.Shape(band, 0);
  }
  for (std::int32_t frame = 0; frame < longer.Frames() && std::ranges::any_of(seen, canWin);) {
    const std::int32_t look = std::min(frame + kFramesBetweenLooks, longer.Frames());
    for (; frame < look; ++frame) {
      const std::int32_t held = std::clamp(frame + shift, -kLanes, shorter.Frames());
      const float* fixed = longer.ShapeByFrame(frame);
      for (std::size_t band = 0; band < kBandCount; ++band) {
        const ShiftLanes values = *reinterpret_cast<const ShiftLanesInArray*>(slid[band] + held);
        const ShiftLanes differences = values - fixed[band];
        const ShiftLanes squares = differences * differences;
        sums += squares;
      }
    }
    std::memcpy(seen.data(), &sums, sizeof sums);
  }
  return seen;
}

/// So many floats side by side, and the same if they lie in an array of floats.
template <std::size_t kWidth>
struct LanesOf {
  using Type [[gnu::vector_size(sizeof(float) * kWidth)]] = float;
  using InArray
      [[gnu::vector_size(sizeof(float) * kWidth), gnu::aligned(alignof(float)), gnu::may_alias]] =
          float;
};

/// Returns whether one of the numbers is below the bound.
template <typename Lanes, std::size_t kGroups>
VOXTREL_INLINE bool AnyIsBelow(const std::array<Lanes, kGroups>& numbers, float bound) {
  auto below = numbers[0] < bound;
  for (std::size_t group = 1; group < kGroups; ++group) {
    below |= numbers[group] < bound;
  }
  std::array<std::uint64_t, sizeof(Lanes) / sizeof(std::uint64_t)> parts;
  std::memcpy(parts.data(), &below, sizeof below);
  std::uint64_t any = 0;
  for (const std::uint64_t part : parts) {
    any |= part;
  }
  return any != 0;
}

/// Returns the least of the float sums of all shifts of a pair that has at most kGroups * kWidth of
/// them. A sum that is no number does not count.
///
/// Each addition waits for the one before it, so one frame of all shifts takes hardly longer than
/// one frame of one shift. Names have so few shifts that nothing is gained by leaving some out, and
/// the loop has no branch that a processor could guess wrongly but its end.
template <std::size_t kWidth, std::size_t kGroups>
VOXTREL_INLINE float LeastSum(const Pair& pair, float bound) {
  using Lanes = typename LanesOf<kWidth>::Type;
  using LanesInArray = typename LanesOf<kWidth>::InArray;
  const auto& [shorter, longer] = pair;
  std::array<Lanes, kGroups> sums{};
  const float* slid = shorter.Shape(0, 0);
  const std::ptrdiff_t row = shorter.Shape(1, 0) - slid;
  const float* fixed = longer.ShapeByFrame(0);
  const std::int32_t end = pair.LowestShift() + longer.Frames();
  for (std::int32_t place = pair.LowestShift(); place < end;) {
    const std::int32_t look = std::min(place + kFramesBetweenLooks, end);
    for (; place < look; ++place, fixed += kBandCount) {
      std::array<const float*, kGroups> at;
      for (std::size_t group = 0; group < kGroups; ++group) {
        at[group] = slid + std::clamp(place + static_cast<std::int32_t>(group * kWidth), -kLanes,
                                      shorter.Frames());
      }
      for (std::size_t band = 0; band < kBandCount; ++band) {
        for (std::size_t group = 0; group < kGroups; ++group) {
          const Lanes values = *reinterpret_cast<const LanesInArray*>(
              at[group] + static_cast<std::ptrdiff_t>(band) * row);
          // The square is the same either way. Wide vectors subtract what lies in memory with one
          // instruction less, and narrow ones what lies in a register.
          const Lanes differences = kWidth == 8 ? fixed[band] - values : values - fixed[band];
          const Lanes squares = differences * differences;
          sums[group] += squares;
        }
      }
    }
    if (!AnyIsBelow(sums, bound)) {
      return bound;
    }
  }
  std::array<float, kGroups * kWidth> seen;
  std::memcpy(seen.data(), sums.data(), sizeof seen);
  for (std::int32_t index = 0; index < pair.ShiftCount(); ++index) {
    const float sum = seen[static_cast<std::size_t>(index)];
    bound = sum < bound ? sum : bound;
  }
  return bound;
}

VOXTREL_WIDE float LeastSumWide(const Pair& pair, float bound) {
  return pair.ShiftCount() <= kLanes ? LeastSum<8, 1>(pair, bound) : LeastSum<8, 2>(pair, bound);
}
float LeastSumNarrow(const Pair& pair, float bound) {
  return pair.ShiftCount() <= kLanes ? LeastSum<4, 2>(pair, bound) : LeastSum<4, 4>(pair, bound);
}

/// Returns the root of the grid distance from which on no shift can win, as derived above.
VOXTREL_INLINE std::int32_t GridLimitRoot(const PreparedTemplate& longer,
                                          const DistanceBound& bound) {
  const std::int32_t values = longer.Frames() * static_cast<std::int32_t>(kBandCount);
  return bound.GridRoot() + longer.RootOfSize() + values / 512 + 1;
}

/// Returns the outline distance from which on no shift can win, as derived above.
VOXTREL_INLINE std::uint32_t OutlineLimit(const PreparedTemplate& longer,
                                          const DistanceBound& bound) {
  const std::int32_t root = GridLimitRoot(longer, bound) + longer.RootOfSize() / 4 + 1;
  return static_cast<std::uint32_t>(root * root);
}

/// Looks for the shift with the smallest sum below a bound.
class Search {
 public:
  Search(const Pair& pair, const DistanceBound& bound) : m_pair(pair), m_bound(bound) {}

  [[nodiscard]] float Best() const { return m_bound.Distance(); }

  /// Forms the exact sums of kLanes shifts from the `index`-th on, or as many as there are.
  VOXTREL_INLINE void Try(std::int32_t index) {
    const LaneSums sums = ExactSums(m_pair, m_pair.LowestShift() + index, Best());
    const std::int32_t lanes = std::min(kLanes, m_pair.ShiftCount() - index);
    const float best = *std::min_element(sums.begin(), sums.begin() + lanes, IsLower);
    if (best < Best()) {
      m_bound = DistanceBound(best);
    }
  }

  /// Forms the exact sums of those of the `count` shifts from the `index`-th on that can win.
  /// Begins near the likeliest one.
  VOXTREL_INLINE void TryPromising(std::int32_t index, std::int32_t count) {
    const OutlineDistances outlines(m_pair);
    const auto likeliest = static_cast<std::int32_t>(
        std::min_element(outlines.At(0), outlines.At(count)) - outlines.At(0));
    const std::int32_t first = std::clamp(likeliest - kLanes / 2, 0, std::max(count - kLanes, 0));
    TryIfPromising(index, first, count, outlines);
    for (std::int32_t i = 0; i < first; i += kLanes) {
      TryIfPromising(index, i, first, outlines);
    }
    for (std::int32_t i = first + kLanes; i < count; i += kLanes) {
      TryIfPromising(index, i, count, outlines);
    }
  }

 private:
  /// An order in which what is no number comes last.
  static bool IsLower(float a, float b) { return a < b || (b != b && a == a); }

  /// Tries kLanes shifts, or those up to the `end`-th, if one of them can win.
  VOXTREL_INLINE void TryIfPromising(std::int32_t index, std::int32_t begin, std::int32_t end,
                                     const OutlineDistances& outlines) {
    end = std::min(begin + kLanes, end);
    const std::uint32_t limit = OutlineLimit(m_pair.longer, m_bound);
    for (std::int32_t i = begin; i < end; i += kStep) {
      const std::int32_t lanes = std::min(kStep, end - i);
      if (*std::min_element(outlines.At(i), outlines.At(i + lanes)) < limit &&
          IsPromisingOnGrid(index + i, lanes)) {
        Try(index + begin);
        return;
      }
    }
  }

  /// Returns whether one of `lanes` shifts, at most kStep, can win.
  VOXTREL_INLINE bool IsPromisingOnGrid(std::int32_t index, std::int32_t lanes) const {
    if (m_pair.IsNear() && Best() == kMaxDistance) {
      return true;  // Most are below it.
    }
    const std::int64_t root = GridLimitRoot(m_pair.longer, m_bound);
    const auto anyIsBelow = [&](const auto& distances) {
      return *std::min_element(distances.begin(), distances.begin() + lanes) < root * root;
    };
    const std::int32_t shift = m_pair.LowestShift() + index;
    return m_pair.IsNear() ? anyIsBelow(GridDistances(m_pair, shift))
                           : anyIsBelow(FarGridDistances(m_pair, shift));
  }

  const Pair& m_pair;
  DistanceBound m_bound;
};

}  // namespace

DistanceBound::DistanceBound(float distance)
    : m_distance(distance),
      // 1 for the fraction that is cut off, and 1 for the rounding of the product and the root.
      m_gridRoot(static_cast<std::int32_t>(PreparedTemplate::kGridSteps *
                                           std::sqrt(static_cast<double>(distance) + 0x1p-100)) +
                 2) {}

VOXTREL_VECTOR_CLONES
float TemplateDistance(const PreparedTemplate& a, const PreparedTemplate& b,
                       const DistanceBound& bound, const GoOn& goOn) {
  const Pair pair(a, b);
  if (pair.shorter.Frames() == 0) {
    const float distance = pair.longer.Frames() == 0 ? 0.0F : kMaxDistance;
    return std::min(distance, bound.Distance());
  }
  if (IsFar(pair)) {
    const std::size_t count = FarScratchSize(pair);
    const std::unique_ptr<float[]> scratch(new (std::nothrow) float[count]);
    if (scratch) {
      return FarDistance(pair, bound.Distance(), {scratch.get(), count}, goOn);
    }
  }
  const std::int32_t shifts = pair.ShiftCount();
  if (kVectorsFast && shifts <= kFewShifts) {
    return HasWideVectors() ? LeastSumWide(pair, bound.Distance())
                            : LeastSumNarrow(pair, bound.Distance());
  }
  Search search(pair, bound);
  for (std::int32_t index = 0; index < shifts && search.Best() > 0.0F; index += kShiftsAtOnce) {
    const std::int32_t count = std::min(kShiftsAtOnce, shifts - index);
    if (goOn && !goOn()) {
      break;
    }
    if (pair.IsOnGrid()) {
      search.TryPromising(index, count);
    } else {
      for (std::int32_t i = 0; i < count; i += kLanes) {
        search.Try(index + i);
      }
    }
  }
  return search.Best();
}

VOXTREL_VECTOR_CLONES
std::uint32_t LeastOutlineDistance(const PreparedTemplate& a, const PreparedTemplate& b) {
  const Pair pair(a, b);
  if (pair.shorter.Frames() == 0 || !pair.IsNear()) {
    return 0;
  }
  return OutlineDistances(pair).Least();
}

bool CanBeBelow(const DistanceBound& bound, const PreparedTemplate& a, const PreparedTemplate& b,
                std::uint32_t leastOutlineDistance) {
  return leastOutlineDistance < OutlineLimit(a.Frames() < b.Frames() ? b : a, bound);
}

float TemplateDistance(std::span<const float> a, std::span<const float> b) {
  PreparedTemplate first;
  PreparedTemplate second;
  return first.Prepare(a) && second.Prepare(b) ? TemplateDistance(first, second) : kMaxDistance;
}

}  // namespace voicemath
