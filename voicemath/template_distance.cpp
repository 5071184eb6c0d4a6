#include "voicemath/template_distance.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "voicemath/vector_clones.h"

// Why most shifts need no exact sum.
//
// Let u and v be the n values of the shapes that one shift holds against each other, p and q the
// same values on the grid of G = kGridSteps steps, and F the float sum of the squares of u - v.
// A shift is left out where F is proven not to be below the best distance so far, B.
//
// (1) From grid to shape. Neither p / G nor q / G is further than 1 / (2 G) from its value, so
//     ||p - q|| <= G ||u - v|| + sqrt(n), in the Euclidean norm. ||p - q|| squared, the grid
//     distance, is formed in whole numbers and therefore exact.
// (2) From exact to float. Every rounding errs by a factor of 1 - e at worst, e = 2^-24. A term
//     takes part in at most n + 3 of them: its difference and its square (that factor twice, and
//     once), and n additions. Only a product can also fall below the normal numbers, and then loses
//     less than 2^-149. So F >= ||u - v||^2 (1 - e)^(n + 3) - n 2^-149, and with n < 2^19,
//     F >= B wherever ||u - v||^2 >= (B + 2^-100) (1 + 2 (n + 3) e).
// (3) The root of the right side is at most sqrt(B + 2^-100) (1 + (n + 3) e). G times it is, with
//     B <= 2, at most G sqrt(B + 2^-100) + (n + 3) / 724.
//
// Together: where the grid distance is at least the square of
//     G sqrt(B + 2^-100) + (n + 3) / 724 + sqrt(n),
// the shift cannot win. GridRoot() is not below the first term, RootOfSize() not below the last.

namespace voicemath {
namespace {

/// How far the shorter template may run out at either end of the longer one, in frames.
constexpr std::int32_t kLead = 2;

/// Shifts that are looked at together: those of two words of usual lengths.
constexpr std::int32_t kShiftsAtOnce = 64;

constexpr auto kStep = static_cast<std::int32_t>(kProductLanes);
constexpr auto kLanes = static_cast<std::int32_t>(kFloatLanes);

/// Frames between two looks at whether any lane can still win.
constexpr std::int32_t kFramesBetweenLooks = kLanes;

/// One float for each of kLanes neighbouring shifts. Each lane is rounded as a float by itself is.
using Lanes [[gnu::vector_size(sizeof(float) * kFloatLanes)]] = float;
/// The same where they lie in an array of floats.
using LanesInArray [[gnu::vector_size(sizeof(float) * kFloatLanes), gnu::aligned(alignof(float)),
                     gnu::may_alias]] = float;
using ProductSums = std::array<std::int32_t, kProductLanes>;
using LaneSums = std::array<float, kFloatLanes>;

constexpr std::size_t Place(std::int32_t index) { return static_cast<std::size_t>(index); }

struct Pair {
  const PreparedTemplate& shorter;
  const PreparedTemplate& longer;

  [[nodiscard]] std::int32_t LowestShift() const {
    return shorter.Frames() - longer.Frames() - kLead;
  }
  [[nodiscard]] std::int32_t ShiftCount() const { return kLead - LowestShift() + 1; }
};

/// Sums of products of `count` values of `a` with those of `b`, with those of `b` from the next
/// frame on, and so on. Behind the `count` values at least one side has zeros.
VOXTREL_INLINE ProductSums GridProducts(const std::int16_t* a, const std::int16_t* b,
                                        std::int32_t count) {
  constexpr auto kBlock = static_cast<std::int32_t>(PreparedTemplate::kGridBlock);
  const std::int32_t whole = (count + kBlock - 1) / kBlock * kBlock;
  ProductSums sums{};
  VOXTREL_UNROLL
  for (std::int32_t i = 0; i < whole; ++i) {
    for (std::size_t lane = 0; lane < kProductLanes; ++lane) {
      sums[lane] +=
          std::int32_t{a[i]} * std::int32_t{b[static_cast<std::size_t>(i) + lane * kBandCount]};
    }
  }
  return sums;
}

/// Sum of products of one frame with all frames of `other` from `begin` to `end`.
VOXTREL_INLINE std::int64_t HeldProduct(const std::int16_t* frame, const PreparedTemplate& other,
                                        std::int32_t begin, std::int32_t end) {
  std::int64_t sum = 0;
  for (std::size_t band = 0; band < kBandCount && begin < end; ++band) {
    sum += std::int64_t{frame[band]} *
           (other.SumsBefore(end).bands[band] - other.SumsBefore(begin).bands[band]);
  }
  return sum;
}

/// Sum of the squares of the shorter grid as one shift holds it against the longer one.
VOXTREL_INLINE std::int64_t SlidSquares(const Pair& pair, std::int32_t shift) {
  const auto& [shorter, longer] = pair;
  const std::int32_t last = shorter.Frames() - 1;
  const std::int32_t before = std::clamp(-shift, 0, longer.Frames());
  const std::int32_t behind = std::clamp(longer.Frames() - 1 + shift - last, 0, longer.Frames());
  const std::int32_t from = std::clamp(shift, 0, last + 1);
  const std::int32_t to = from + longer.Frames() - before - behind;
  return std::int64_t{before} * shorter.Square(0) + std::int64_t{behind} * shorter.Square(last) +
         shorter.SumsBefore(to).squares - shorter.SumsBefore(from).squares;
}

/// Sums of the squared differences of the two grids at `shift` and the kProductLanes - 1 shifts
/// above it.
VOXTREL_INLINE std::array<std::int64_t, kProductLanes> GridDistances(const Pair& pair,
                                                                     std::int32_t shift) {
  constexpr std::int32_t kHeld = PreparedTemplate::kHeldFrames;
  const PreparedTemplate& shorter = pair.shorter;
  const PreparedTemplate& longer = pair.longer;
  const std::int32_t frames = longer.Frames();
  // Frames of the longer one before `begin`, whichever of the shifts it is, and from `end` on are
  // beyond what the held grid repeats of the shorter one's ends.
  const auto endAt = [&](std::int32_t at) {
    return std::clamp(shorter.Frames() - at + kHeld, 0, frames);
  };
  const std::int32_t begin = std::clamp(-shift - kHeld, 0, frames);
  const ProductSums products =
      GridProducts(longer.Grid(begin), shorter.HeldGrid(begin + shift),
                   (endAt(shift) - begin) * static_cast<std::int32_t>(kBandCount));
  const std::int64_t headProduct = HeldProduct(shorter.Grid(0), longer, 0, begin);
  std::array<std::int64_t, kProductLanes> distances;
  for (std::size_t lane = 0; lane < kProductLanes; ++lane) {
    const std::int32_t laneShift = shift + static_cast<std::int32_t>(lane);
    const std::int64_t tailProduct =
        HeldProduct(shorter.Grid(shorter.Frames() - 1), longer, endAt(laneShift), frames);
    distances[lane] = longer.SumsBefore(frames).squares + SlidSquares(pair, laneShift) -
                      2 * (headProduct + products[lane] + tailProduct);
  }
  return distances;
}

/// The float sums of `shift` and the kLanes - 1 shifts above it. Gives up, with some sums that are
/// not below `bound`, as soon as none is: they never fall, and one that is no number never wins.
VOXTREL_INLINE LaneSums ExactSums(const Pair& pair, std::int32_t shift, float bound) {
  const auto& [shorter, longer] = pair;
  Lanes sums{};
  LaneSums told{};
  const auto canWin = [bound](float sum) { return sum < bound; };
  for (std::int32_t frame = 0; frame < longer.Frames() && std::ranges::any_of(told, canWin);) {
    const std::int32_t look = std::min(frame + kFramesBetweenLooks, longer.Frames());
    for (; frame < look; ++frame) {
      const std::int32_t held = std::clamp(frame + shift, -kLanes, shorter.Frames());
      for (std::size_t band = 0; band < kBandCount; ++band) {
        const Lanes values = *reinterpret_cast<const LanesInArray*>(shorter.Shape(band, held));
        const Lanes differences = values - *longer.Shape(band, frame);
        const Lanes squares = differences * differences;
        sums += squares;
      }
    }
    std::memcpy(told.data(), &sums, sizeof sums);
  }
  return told;
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

  /// Does so for all of the `count` shifts from the `index`-th on that can win, the likeliest
  /// first: the lower the bound, the fewer are left.
  VOXTREL_INLINE void TryPromising(std::int32_t index, std::int32_t count) {
    std::array<std::int64_t, kShiftsAtOnce> grid;
    std::int32_t likeliest = 0;
    for (std::int32_t i = 0; i < count; i += kStep) {
      const auto distances = GridDistances(m_pair, m_pair.LowestShift() + index + i);
      for (std::int32_t at = i; at < std::min(i + kStep, count); ++at) {
        grid[Place(at)] = distances[Place(at - i)];
        likeliest = grid[Place(at)] < grid[Place(likeliest)] ? at : likeliest;
      }
    }
    if (grid[Place(likeliest)] >= GridLimit()) {
      return;
    }
    const std::int32_t first = likeliest / kLanes * kLanes;
    Try(index + first);
    for (std::int32_t i = 0; i < count; i += kLanes) {
      const auto lanes = grid.begin() + i;
      if (i != first &&
          *std::min_element(lanes, lanes + std::min(kLanes, count - i)) < GridLimit()) {
        Try(index + i);
      }
    }
  }

 private:
  /// An order in which what is no number comes last.
  static bool IsLower(float a, float b) { return a < b || (b != b && a == a); }

  /// The grid distance from which on no shift can win; derived above.
  [[nodiscard]] std::int64_t GridLimit() const {
    const std::int32_t values = m_pair.longer.Frames() * static_cast<std::int32_t>(kBandCount);
    const std::int64_t root = m_bound.GridRoot() + m_pair.longer.RootOfSize() + values / 512 + 1;
    return root * root;
  }

  const Pair& m_pair;
  DistanceBound m_bound;
};

}  // namespace

DistanceBound::DistanceBound(float distance)
    : m_distance(distance),
      // One for the fraction that is cut off, one for the rounding of the product and the root.
      m_gridRoot(static_cast<std::int32_t>(PreparedTemplate::kGridSteps *
                                           std::sqrt(static_cast<double>(distance) + 0x1p-100)) +
                 2) {}

VOXTREL_VECTOR_CLONES
float TemplateDistance(const PreparedTemplate& a, const PreparedTemplate& b,
                       const DistanceBound& bound) {
  const bool swapped = b.Frames() < a.Frames();
  const Pair pair{swapped ? b : a, swapped ? a : b};
  if (pair.shorter.Frames() == 0) {
    const float distance = pair.longer.Frames() == 0 ? 0.0F : kMaxDistance;
    return std::min(distance, bound.Distance());
  }
  // A single frame is held against all frames whatever the shift is.
  const std::int32_t shifts = pair.shorter.Frames() == 1 ? 1 : pair.ShiftCount();
  const bool screened = a.IsOnGrid() && b.IsOnGrid();
  Search search(pair, bound);
  for (std::int32_t index = 0; index < shifts && search.Best() > 0.0F; index += kShiftsAtOnce) {
    const std::int32_t count = std::min(kShiftsAtOnce, shifts - index);
    if (screened) {
      search.TryPromising(index, count);
    } else {
      for (std::int32_t i = 0; i < count; i += kLanes) {
        search.Try(index + i);
      }
    }
  }
  return search.Best();
}

float TemplateDistance(std::span<const float> a, std::span<const float> b) {
  PreparedTemplate first;
  PreparedTemplate second;
  return first.Prepare(a) && second.Prepare(b) ? TemplateDistance(first, second) : kMaxDistance;
}

}  // namespace voicemath
