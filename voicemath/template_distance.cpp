#include "voicemath/template_distance.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace voicemath {
namespace {

/// How far the shorter template may run out at either end of the longer one, in frames.
constexpr std::int64_t kLead = 2;

/// Reciprocal of the Euclidean norm; 1 for a template that is all zeros or has no frames.
float ReciprocalNorm(std::span<const float> values) {
  float sum = 0.0F;
  for (const float value : values) {
    const float square = value * value;
    sum += square;
  }
  if (sum == 0.0F) {
    return 1.0F;
  }
  const auto norm = static_cast<float>(std::sqrt(static_cast<double>(sum)));
  return 1.0F / norm;
}

struct Scaled {
  std::span<const float> values;
  float scale;

  [[nodiscard]] std::int64_t Frames() const {
    return static_cast<std::int64_t>(values.size() / kBandCount);
  }
  [[nodiscard]] float At(std::int64_t frame, std::size_t band) const {
    return values[static_cast<std::size_t>(frame) * kBandCount + band] * scale;
  }
};

/// Squared distance at one shift. Gives up, with some value that is not below `bound`, as soon as
/// the sum has reached `bound`: it never falls, and a sum that is no number never wins.
float SquaredDistance(const Scaled& shorter, const Scaled& longer, std::int64_t shift,
                      float bound) {
  float sum = 0.0F;
  for (std::int64_t frame = 0; frame < longer.Frames() && sum < bound; ++frame) {
    const std::int64_t held = std::clamp<std::int64_t>(frame + shift, 0, shorter.Frames() - 1);
    for (std::size_t band = 0; band < kBandCount; ++band) {
      const float difference = shorter.At(held, band) - longer.At(frame, band);
      const float square = difference * difference;
      sum += square;
    }
  }
  return sum;
}

}  // namespace

float TemplateDistance(std::span<const float> a, std::span<const float> b) {
  const bool swapped = b.size() < a.size();
  const std::span<const float> s = swapped ? b : a;
  const std::span<const float> l = swapped ? a : b;
  if (s.empty()) {
    return l.empty() ? 0.0F : kMaxDistance;
  }
  const Scaled shorter{s, ReciprocalNorm(s)};
  const Scaled longer{l, ReciprocalNorm(l)};
  const std::int64_t lastShift = -(longer.Frames() - shorter.Frames() + kLead);

  float best = kMaxDistance;
  for (std::int64_t shift = kLead; shift >= lastShift; --shift) {
    const float sum = SquaredDistance(shorter, longer, shift, best);
    if (sum < best) {
      best = sum;
    }
  }
  return best;
}

}  // namespace voicemath
