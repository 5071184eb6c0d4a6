#include "voicemath/template_distance.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

#include "voicemath/template_pair.h"
#include "voicemath/vector_clones.h"

// How a comparison saves most of its work.
//
// The exact sum of a shift is slow, since its additions have to follow each other. It is needed
// only for shifts that may win. So each shift is judged before by its grid (prepared_template.h).
// That is a sum of whole numbers that cannot be far from the exact sum, and whole numbers may be
// added in any order, many at a time. The likeliest shift comes first: the lower the best distance
// so far, the more shifts can be left out. And since a sum of squares never falls, an exact sum is
// abandoned as soon as it is no longer below the best one.
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

namespace voicemath {
namespace {

constexpr auto kLanes = static_cast<std::int32_t>(kFloatLanes);
static_assert(kProductLanes == kFloatLanes);

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

/// What the sums begin with: nothing for each shift, and for a lane without one what never wins.
/// The lanes of `count` shifts begin `count` places before the second half.
constexpr auto kNothingYet = [] {
  std::array<float, 2 * std::size_t{kFewShifts}> sums{};
  std::fill(sums.begin() + kFewShifts, sums.end(), std::numeric_limits<float>::infinity());
  return sums;
}();

/// Returns the least of the float sums of all shifts of a pair that has at most kGroups * kWidth of
/// them, which are at most kFewShifts. A sum that is no number does not count.
///
/// Each addition waits for the one before it, so one frame of all shifts takes hardly longer than
/// one frame of one shift. Names have so few shifts that nothing is gained by leaving some out, and
/// the loop has no branch that a processor could guess wrongly but its end.
template <std::size_t kWidth, std::size_t kGroups>
VOXTREL_INLINE float LeastSum(const Pair& pair, float bound) {
  static_assert(kFewShifts <= static_cast<std::int32_t>(PreparedTemplate::kHeldShapes));
  using Lanes = typename LanesOf<kWidth>::Type;
  using LanesInArray = typename LanesOf<kWidth>::InArray;
  const auto& [shorter, longer] = pair;
  std::array<Lanes, kGroups> sums;
  const float* nothing = kNothingYet.data() + (kFewShifts - pair.ShiftCount());
  for (Lanes& group : sums) {
    group = *reinterpret_cast<const LanesInArray*>(nothing);
    nothing += kWidth;
  }
  const float* slid = shorter.Shape(0, pair.LowestShift());
  const std::ptrdiff_t row = shorter.Shape(1, 0) - shorter.Shape(0, 0);
  const float* fixed = longer.ShapeByFrame(0);
  // Without a bound hardly any sum is given up.
  const std::int32_t step = bound < kMaxDistance ? kFramesBetweenLooks : longer.Frames();
  for (std::int32_t frame = 0; frame < longer.Frames();) {
    const std::int32_t look = std::min(frame + step, longer.Frames());
    for (; frame < look; ++frame, ++slid, fixed += kBandCount) {
      for (std::size_t band = 0; band < kBandCount; ++band) {
        for (std::size_t group = 0; group < kGroups; ++group) {
          const Lanes values = *reinterpret_cast<const LanesInArray*>(
              slid + static_cast<std::ptrdiff_t>(band) * row + group * kWidth);
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
  Lanes least = Lanes{} + bound;
  for (const Lanes& group : sums) {
    least = group < least ? group : least;
  }
  std::array<float, kWidth> each;
  std::memcpy(each.data(), &least, sizeof least);
  for (std::size_t half = kWidth / 2; half > 0; half /= 2) {
    for (std::size_t lane = 0; lane < half; ++lane) {
      each[lane] = std::min(each[lane], each[lane + half]);
    }
  }
  return each[0];
}

VOXTREL_WIDE float LeastSumWide(Pair pair, float bound) {
  return pair.ShiftCount() <= kLanes ? LeastSum<8, 1>(pair, bound) : LeastSum<8, 2>(pair, bound);
}
float LeastSumNarrow(Pair pair, float bound) {
  return pair.ShiftCount() <= kLanes ? LeastSum<4, 2>(pair, bound) : LeastSum<4, 4>(pair, bound);
}

/// Returns the root of the grid distance from which on no shift can win, as derived above.
VOXTREL_INLINE std::int32_t GridLimitRoot(const PreparedTemplate& longer,
                                          const DistanceBound& bound) {
  const std::int32_t values = longer.Frames() * static_cast<std::int32_t>(kBandCount);
  return bound.GridRoot() + longer.RootOfSize() + values / 512 + 1;
}

/// Returns whether one of `count` grid distances from the first on leaves it open that a shift
/// wins.
template <typename Number>
VOXTREL_INLINE bool AnyCanWin(const Number* distances, std::int32_t count, std::int32_t limitRoot) {
  return *std::min_element(distances, distances + count) < std::int64_t{limitRoot} * limitRoot;
}

/// Looks for the shift with the smallest sum below a bound.
class Search {
 public:
  Search(const Pair& pair, const DistanceBound& bound) : m_pair(pair), m_bound(bound) {}

  [[nodiscard]] float Best() const { return m_bound.Distance(); }

  /// Forms the exact sums of the shifts of a near pair that can win. Begins near the likeliest one.
  VOXTREL_INLINE void TryNear() {
    const std::int32_t count = m_pair.ShiftCount();
    Distances distances;
    for (std::int32_t index = 0; index < count; index += kLanes) {
      const auto some = GridDistances(m_pair, m_pair.LowestShift() + index);
      std::ranges::copy(some, distances.begin() + index);
    }
    const auto likeliest = static_cast<std::int32_t>(
        std::min_element(distances.begin(), distances.begin() + count) - distances.begin());
    const std::int32_t first = std::clamp(likeliest - kLanes / 2, 0, std::max(count - kLanes, 0));
    TryNear(distances, first, std::min(first + kLanes, count));
    TryNear(distances, 0, first);
    TryNear(distances, first + kLanes, count);
  }

  /// Forms the exact sums of kLanes shifts of any other pair from the `index`-th on, or of as many
  /// as there are, if one of them can win.
  VOXTREL_INLINE void TryFar(std::int32_t index) {
    if (!m_pair.IsOnGrid() ||
        AnyCanWin(FarGridDistances(m_pair, m_pair.LowestShift() + index).data(), LanesFrom(index),
                  GridLimitRoot(m_pair.longer, m_bound))) {
      Try(index);
    }
  }

 private:
  using Distances =
      std::array<std::uint32_t, static_cast<std::size_t>(kShiftsAtOnce) + kFloatLanes>;

  /// An order in which what is no number comes last.
  static bool IsLower(float a, float b) { return a < b || (b != b && a == a); }

  /// Returns how many of kLanes lanes hold a shift, if the first one holds the `index`-th.
  [[nodiscard]] std::int32_t LanesFrom(std::int32_t index) const {
    return std::min(kLanes, m_pair.ShiftCount() - index);
  }

  /// Forms those of the shifts from the `begin`-th up to the `end`-th.
  VOXTREL_INLINE void TryNear(const Distances& distances, std::int32_t begin, std::int32_t end) {
    for (std::int32_t index = begin; index < end; index += kLanes) {
      if (AnyCanWin(&distances[static_cast<std::size_t>(index)], std::min(kLanes, end - index),
                    GridLimitRoot(m_pair.longer, m_bound))) {
        Try(index);
      }
    }
  }

  /// Forms the exact sums of kLanes shifts from the `index`-th on, or as many as there are.
  VOXTREL_INLINE void Try(std::int32_t index) {
    const LaneSums sums = ExactSums(m_pair, m_pair.LowestShift() + index, Best());
    const float best = *std::min_element(sums.begin(), sums.begin() + LanesFrom(index), IsLower);
    if (best < Best()) {
      m_bound = DistanceBound(best);
    }
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
  const std::int32_t shifts = pair.ShiftCount();
  if (kVectorsFast && kLead - pair.LowestShift() < kFewShifts) {
    return HasWideVectors() ? LeastSumWide(pair, bound.Distance())
                            : LeastSumNarrow(pair, bound.Distance());
  }
  if (IsFar(pair)) {
    const std::size_t count = FarScratchSize(pair);
    const std::unique_ptr<float[]> scratch(new (std::nothrow) float[count]);
    if (scratch) {
      return FarDistance(pair, bound.Distance(), {scratch.get(), count}, goOn);
    }
  }
  Search search(pair, bound);
  if (pair.IsNear()) {
    search.TryNear();
    return search.Best();
  }
  for (std::int32_t index = 0; index < shifts && search.Best() > 0.0F; index += kLanes) {
    if (index % kShiftsAtOnce == 0 && goOn && !goOn()) {
      break;
    }
    search.TryFar(index);
  }
  return search.Best();
}

std::uint32_t GridLimit(const PreparedTemplate& longer, const DistanceBound& bound) {
  const auto root = static_cast<std::uint32_t>(GridLimitRoot(longer, bound));
  return root * root;
}

float TemplateDistance(std::span<const float> a, std::span<const float> b) {
  PreparedTemplate first;
  PreparedTemplate second;
  return first.Prepare(a) && second.Prepare(b) ? TemplateDistance(first, second) : kMaxDistance;
}

}  // namespace voicemath
