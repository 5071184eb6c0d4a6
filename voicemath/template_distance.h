#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

#include "voicemath/constants.h"
#include "voicemath/prepared_template.h"

namespace voicemath {

/// Start value, and so the upper bound, of every distance.
inline constexpr float kMaxDistance = 2.0F;

/// Asked now and then by work that may take long: whether to go on. Empty if nobody wants to know.
using GoOn = std::function<bool()>;

/// The distance that a comparison has to stay below to be of interest.
class DistanceBound {
 public:
  DistanceBound() : DistanceBound(kMaxDistance) {}
  explicit DistanceBound(float distance);

  [[nodiscard]] float Distance() const { return m_distance; }
  /// The square root of the distance in steps of the grid of PreparedTemplate, not rounded down.
  [[nodiscard]] std::int32_t GridRoot() const { return m_gridRoot; }

 private:
  float m_distance;
  std::int32_t m_gridRoot;
};

/// Dissimilarity of two templates (frame-major, kBandCount values a frame): 0 for the same shape,
/// at most kMaxDistance. Both are scaled to unit length; the one with fewer frames (`a` where both
/// have the same number) slides along the other, its ends held; the best shift counts. Every
/// product and sum is rounded to float, in the order of the loops; a division is a product with
/// the float reciprocal. Two templates without frames have distance 0; one without frames against
/// one with frames has kMaxDistance.
///
/// If a distance is not below `bound`, the bound's distance is returned. If `goOn` says stop, the
/// result means nothing.
[[nodiscard]] float TemplateDistance(const PreparedTemplate& a, const PreparedTemplate& b,
                                     const DistanceBound& bound = {}, const GoOn& goOn = {});

/// The same of templates that are compared only once. Needs memory for both prepared, and says
/// kMaxDistance if there is none.
[[nodiscard]] float TemplateDistance(std::span<const float> a, std::span<const float> b);

/// A number that rises with the distance, roughly, and costs a fraction of it. 0 where it says
/// nothing.
[[nodiscard]] std::uint32_t LeastOutlineDistance(const PreparedTemplate& a,
                                                 const PreparedTemplate& b);

/// Whether the distance of two templates with this LeastOutlineDistance may be below `bound`.
[[nodiscard]] bool CanBeBelow(const DistanceBound& bound, const PreparedTemplate& a,
                              const PreparedTemplate& b, std::uint32_t leastOutlineDistance);

}  // namespace voicemath
