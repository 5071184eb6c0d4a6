#pragma once

// Two templates that are held against each other, and what can be said of their shifts without an
// exact sum: the distances of their grids, in whole numbers.
//
// A sum of squared differences is the squares of one side, plus the squares of the other, minus
// twice the products. The squares come from running sums. So only the products are formed for each
// shift, and no difference is.
//
// All of it is inline, and so compiled for each width of vectors with what uses it.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "voicemath/constants.h"
#include "voicemath/prepared_template.h"
#include "voicemath/template_distance.h"
#include "voicemath/vector_clones.h"

namespace voicemath {

/// How far the shorter template may run out at either end of the longer one, in frames.
inline constexpr std::int32_t kLead = 2;

/// Shifts that are looked at together: those of two words of usual lengths.
inline constexpr std::int32_t kShiftsAtOnce = PreparedTemplate::kHeldFrames;

/// One float for each of kFloatLanes neighbouring shifts, each rounded by itself.
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
  /// Returns at least 5 if the frames differ, since the longer one is not the shorter one. If all
  /// frames of the shorter one are alike, every shift gives the same sum, and one is enough.
  [[nodiscard]] std::int32_t ShiftCount() const {
    return shorter.IsSteady() ? 1 : kLead - LowestShift() + 1;
  }
  [[nodiscard]] bool IsOnGrid() const { return shorter.IsOnGrid() && longer.IsOnGrid(); }
  /// Returns whether the held grid repeats the ends often enough for every shift.
  [[nodiscard]] bool IsNear() const { return IsOnGrid() && kLead - LowestShift() < kShiftsAtOnce; }
};

/// Returns the sums of the products of `count` values of `a` with those of each `b`, for kFrames
/// beginnings of each `b` that are a frame apart. After the `count` values at least one side has
/// zeros.
///
/// No value is negative, so a sum that leaves 32 bits comes out too low, and the distance that it
/// is taken from too high. For a pair that is not near this happens only if the held ends of the
/// shorter template are more than three times as long as the longer one. Such a shift cannot win.
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

/// Returns the sum of the products of one frame with all frames of `other` from `begin` to `end`.
VOXTREL_INLINE std::int64_t HeldProduct(const std::int16_t* frame, const PreparedTemplate& other,
                                        std::int32_t begin, std::int32_t end) {
  std::int64_t sum = 0;
  for (std::size_t band = 0; band < kBandCount && begin < end; ++band) {
    sum += std::int64_t{frame[band]} *
           (other.SumsBefore(end).bands[band] - other.SumsBefore(begin).bands[band]);
  }
  return sum;
}

/// Returns the sum of the squares of the shorter grid as one shift holds it against the longer one.
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

/// Returns the sums of the squared differences of the two grids at `shift` and the kProductLanes -
/// 1 shifts above it, of a pair that is near. A sum that leaves 32 bits comes out too low. Such a
/// shift is only looked at more closely than it deserves.
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

/// Returns the same for any pair, and takes longer.
VOXTREL_INLINE std::array<std::int64_t, kProductLanes> FarGridDistances(const Pair& pair,
                                                                        std::int32_t shift) {
  // The ends are the same frame over and over, so their products can be looked up instead.
  constexpr std::int32_t kHeld = kMultipliesFast ? PreparedTemplate::kHeldFrames : 1;
  const PreparedTemplate& shorter = pair.shorter;
  const PreparedTemplate& longer = pair.longer;
  const std::int32_t frames = longer.Frames();
  // The held grid repeats the ends of the shorter one often enough for the frames of the longer one
  // from `begin` to `endAt`. `begin` is the same for all shifts.
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

/// Returns whether FarDistance can compare the pair, and is worth the memory that it takes.
[[nodiscard]] bool IsFar(const Pair& pair);

/// Returns how many floats FarDistance needs for its work.
[[nodiscard]] std::size_t FarScratchSize(const Pair& pair);

/// Returns the distance of TemplateDistance for a pair that is far. A shift costs as much as the
/// shorter template is long, however long the other one is. `scratch` holds FarScratchSize floats.
[[nodiscard]] float FarDistance(const Pair& pair, float bound, std::span<float> scratch,
                                const GoOn& goOn);

}  // namespace voicemath
