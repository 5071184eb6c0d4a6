#pragma once

#include <cstddef>
#include <span>

#include "voicemath/constants.h"

namespace voicemath {

/// Start value, and so the upper bound, of every distance.
inline constexpr float kMaxDistance = 2.0F;

/// Dissimilarity of two templates (frame-major, kBandCount values a frame): 0 for the same shape,
/// at most kMaxDistance. Both are scaled to unit length; the one with fewer frames (`a` where both
/// have the same number) slides along the other, its ends held; the best shift counts. Every
/// product and sum is rounded to float, in the order of the loops; a division is a product with
/// the float reciprocal. Two templates without frames have distance 0; one without frames against
/// one with frames has kMaxDistance.
[[nodiscard]] float TemplateDistance(std::span<const float> a, std::span<const float> b);

}  // namespace voicemath
