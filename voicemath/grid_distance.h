#pragma once

// What proves that a shift cannot win, in whole numbers. Made of inline functions only, which
// are compiled with what uses them for each width of vectors.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "voicemath/constants.h"
#include "voicemath/prepared_template.h"
#include "voicemath/vector_clones.h"

namespace voicemath {

/// How far the shorter template may run out at either end of the longer one, in frames.
inline constexpr std::int32_t kLead = 2;

/// Shifts that are looked at together: those of two words of usual lengths.
inline constexpr std::int32_t kShiftsAtOnce = PreparedTemplate::kHeldFrames;

/// One float for each of kFloatLanes neighbouring shifts. Each is rounded as a float by itself is.
using ShiftLanes [[gnu::vector_size(sizeof(float) * kFloatLanes)]] = float;
/// The same if they lie in an array of floats.
using ShiftLanesInArray [[gnu::vector_size(sizeof(float) * kFloatLanes),
                          gnu::aligned(alignof(float)), gnu::may_alias]] = float;

/// Two templates with frames, and the shifts at which the shorter one is held against the other.
struct Pair {
  const PreparedTemplate& shorter;
  const PreparedTemplate& longer;

  Pair(const PreparedTemplate& a, const PreparedTemplate& b)
      : shorter(b.Frames() < a.Frames() ? b : a), longer(b.Frames() < a.Frames() ? a : b) {}

  [[nodiscard]] std::int32_t LowestShift() const {
    return shorter.Frames() - longer.Frames() - kLead;
  }
  /// At least five, as the longer one is not the shorter one: no pair is left without a shift.
  /// Frames that are all alike are held against the others in the same way whatever the shift is.
  [[nodiscard]] std::int32_t ShiftCount() const {
    return shorter.IsSteady() ? 1 : kLead - LowestShift() + 1;
  }
  [[nodiscard]] bool IsOnGrid() const { return shorter.IsOnGrid() && longer.IsOnGrid(); }
  /// Whether no shift holds the ends for longer than the held grid and the outlines do.
  [[nodiscard]] bool IsNear() const { return IsOnGrid() && kLead - LowestShift() < kShiftsAtOnce; }
};

/// Sums of products of `count` values of `a` with those of each `b`, and with those of each `b`
/// that follow in the next frames, kFrames for each. Behind the `count` values at least one side
/// has zeros. No value is negative, so a sum that leaves 32 bits comes out too low, and what it is
/// taken from too high. For a pair that is not near that happens only if the ends of the shorter
/// template, held, are more than three times as long as the longer one, and so the shift cannot
/// win.
template <std::size_t kFrames, std::size_t kOthers>
VOXTREL_INLINE std::array<std::uint32_t, kFrames * kOthers> GridProducts(
    const std::int16_t* a, const std::array<const std::int16_t*, kOthers>& b, std::int32_t count) {
  constexpr std::int32_t kBlock = PreparedTemplate::kGridBlock;
  const std::int32_t whole = (count + kBlock - 1) / kBlock * kBlock;
  std::array<std::uint32_t, kFrames * kOthers> sums{};
  VOXTREL_UNROLL
  for (std::int32_t i = 0; i < whole; ++i) {
    for (std::size_t at = 0; at < sums.size(); ++at) {
      const std::int16_t* other = b[at % kOthers] + at / kOthers * kBandCount;
      sums[at] += static_cast<std::uint32_t>(std::int32_t{a[i]} * std::int32_t{other[i]});
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
/// above it, if Pair::IsNear. What leaves 32 bits comes out too low: such a shift is looked at
/// more closely than it deserves.
VOXTREL_INLINE std::array<std::uint32_t, kProductLanes> GridDistances(const Pair& pair,
                                                                      std::int32_t shift) {
  const auto& [shorter, longer] = pair;
  const std::int32_t frames = longer.Frames();
  const std::array slid{shorter.HeldGrid(shift)};
  const auto products = GridProducts<kProductLanes>(longer.Grid(0), slid,
                                                    frames * static_cast<std::int32_t>(kBandCount));
  const auto squares = static_cast<std::uint32_t>(longer.SumsBefore(frames).squares);
  const std::uint32_t* begin = shorter.HeldSquares(shift);
  const std::uint32_t* end = shorter.HeldSquares(shift + frames);
  std::array<std::uint32_t, kProductLanes> distances;
  for (std::size_t lane = 0; lane < kProductLanes; ++lane) {
    distances[lane] = squares + end[lane] - begin[lane] - 2 * products[lane];
  }
  return distances;
}

/// The same of any pair, which takes longer.
VOXTREL_INLINE std::array<std::int64_t, kProductLanes> FarGridDistances(const Pair& pair,
                                                                        std::int32_t shift) {
  // Products of the ends, which are the same frame over and over, can be looked up instead.
  constexpr std::int32_t kHeld = kMultipliesFast ? PreparedTemplate::kHeldFrames : 1;
  const PreparedTemplate& shorter = pair.shorter;
  const PreparedTemplate& longer = pair.longer;
  const std::int32_t frames = longer.Frames();
  // Frames of the longer one before `begin`, whichever of the shifts it is, and from `end` on are
  // beyond what the held grid repeats of the shorter one's ends.
  const auto endAt = [&](std::int32_t at) {
    return std::clamp(shorter.Frames() - at + kHeld, 0, frames);
  };
  const std::int32_t begin = std::clamp(-shift - kHeld, 0, frames);
  const std::array slid{shorter.HeldGrid(begin + shift)};
  const auto products = GridProducts<kProductLanes>(
      longer.Grid(begin), slid, (endAt(shift) - begin) * static_cast<std::int32_t>(kBandCount));
  const std::int64_t headProduct = HeldProduct(shorter.Grid(0), longer, 0, begin);
  std::array<std::int64_t, kProductLanes> distances;
  for (std::size_t lane = 0; lane < kProductLanes; ++lane) {
    const std::int32_t laneShift = shift + static_cast<std::int32_t>(lane);
    const std::int64_t tailProduct =
        HeldProduct(shorter.Grid(shorter.Frames() - 1), longer, endAt(laneShift), frames);
    distances[lane] = longer.SumsBefore(frames).squares + SlidSquares(pair, laneShift) -
                      2 * (headProduct + std::int64_t{products[lane]} + tailProduct);
  }
  return distances;
}

/// The distances of the outlines at all shifts: sums of the squared differences. What leaves 32
/// bits comes out too low: such a shift is looked at more closely than it deserves. They are all 0
/// if the pair is not near.
class OutlineDistances {
 public:
  VOXTREL_INLINE explicit OutlineDistances(const Pair& pair)
      : m_count(std::min(pair.ShiftCount(), kShiftsAtOnce)) {
    if (!pair.IsNear()) {
      m_distances.fill(0);
      return;
    }
    m_before = pair.LowestShift() - Aligned(pair.LowestShift());
    for (std::int32_t i = 0; i < m_before + m_count; i += kLanes) {
      Fill(pair, Aligned(pair.LowestShift()) + i, &m_distances[static_cast<std::size_t>(i)]);
    }
  }

  /// The `index`-th shift's.
  [[nodiscard]] const std::uint32_t* At(std::int32_t index) const {
    const std::int32_t place = m_before + index;
    return &m_distances[static_cast<std::size_t>(place)];
  }
  [[nodiscard]] VOXTREL_INLINE std::uint32_t Least() const {
    return *std::min_element(At(0), At(m_count));
  }

 private:
  /// Ways to begin that are looked at together, and in each of them beginnings a group apart.
  static constexpr std::size_t kWays = kProductLanes;
  static constexpr std::size_t kRows = kProductLanes == 1 ? 1 : 2;
  static constexpr std::int32_t kLanes = kWays * kRows;

  /// The last shift up to `shift` with which looking at several may begin.
  static std::int32_t Aligned(std::int32_t shift) {
    static_assert(kWays == 1 || kWays == PreparedTemplate::kGroupFrames);
    return shift - (shift + PreparedTemplate::kHeldFrames) % static_cast<std::int32_t>(kWays);
  }

  VOXTREL_INLINE static void Fill(const Pair& pair, std::int32_t shift, std::uint32_t* distances) {
    const auto& [shorter, longer] = pair;
    const std::int32_t groups = longer.Groups();
    std::array<const std::int16_t*, kWays> slid;
    for (std::size_t way = 0; way < kWays; ++way) {
      slid[way] = shorter.SlidOutline(shift) + way * shorter.SlidRow() * kBandCount;
    }
    const auto products =
        GridProducts<kRows>(longer.Outline(), slid, groups * static_cast<std::int32_t>(kBandCount));
    const std::uint32_t* begin = shorter.SlidOutlineSquares(shift);
    const std::uint32_t* end =
        shorter.SlidOutlineSquares(shift + groups * PreparedTemplate::kGroupFrames);
    for (std::size_t lane = 0; lane < products.size(); ++lane) {
      distances[lane] = longer.OutlineSquares() + end[lane] - begin[lane] - 2 * products[lane];
    }
  }

  std::int32_t m_before = 0;  ///< Distances in front of the lowest shift's, of none.
  std::int32_t m_count;
  std::array<std::uint32_t, kShiftsAtOnce + 2 * kLanes> m_distances;
};

}  // namespace voicemath
