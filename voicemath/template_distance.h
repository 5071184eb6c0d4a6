#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

#include "voicemath/constants.h"
#include "voicemath/prepared_template.h"

namespace voicemath {

/// Every comparison starts with this value, so no distance is larger.
inline constexpr float kMaxDistance = 2.0F;

/// Work that may take long asks this now and then whether to go on. Empty if nobody wants to stop
/// it.
using GoOn = std::function<bool()>;

/// The distance that a comparison has to stay below to be of interest. Given the best distance so
/// far, a comparison may be abandoned as soon as it cannot be below.
class DistanceBound {
 public:
  DistanceBound() : DistanceBound(kMaxDistance) {}
  explicit DistanceBound(float distance);

  [[nodiscard]] float Distance() const { return m_distance; }
  /// Returns the square root of the distance in steps of the grid of PreparedTemplate. It is never
  /// too small.
  [[nodiscard]] std::int32_t GridRoot() const { return m_gridRoot; }

 private:
  float m_distance;
  std::int32_t m_gridRoot;
};

/// Returns how unlike two templates are: 0 for the same shape, at most kMaxDistance.
///
/// Both are scaled to unit length, so loudness does not count. The one with fewer frames (`a` if
/// both have the same number) slides along the other one. At each shift the squares of all
/// differences are added up; beyond the ends of the shorter one, its first or last frame is held.
/// The smallest sum counts. Every product and sum is rounded to float, in the order frame by frame
/// and band by band. A division is a product with the float reciprocal.
///
/// Two templates without frames have distance 0. One without frames and one with frames have
/// kMaxDistance. Returns the distance of `bound` if no shift is below it. If `goOn` says stop, the
/// result means nothing.
[[nodiscard]] float TemplateDistance(const PreparedTemplate& a, const PreparedTemplate& b,
                                     const DistanceBound& bound = {}, const GoOn& goOn = {});

/// Compares two templates that are compared only once: frame by frame, kBandCount values each.
/// Needs memory to prepare both, and returns kMaxDistance if there is none.
[[nodiscard]] float TemplateDistance(std::span<const float> a, std::span<const float> b);

/// Returns the grid distance from which on a shift of two templates cannot be below `bound`.
[[nodiscard]] std::uint32_t GridLimit(const PreparedTemplate& longer, const DistanceBound& bound);

}  // namespace voicemath
