#include "tests/voicemath/twins/matching.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace twins {
namespace {

static_assert(FLT_EVAL_METHOD == 0);

constexpr float kMost = 2.0F;

float Norm(const Template& of) {
  float sum = 0.0F;
  for (std::size_t i = 0; i < std::size_t{of.frameCount} * 5; ++i) {
    const float square = of.values[i] * of.values[i];
    sum = sum + square;
  }
  if (sum == 0.0F) {
    return 1.0F;
  }
  return static_cast<float>(std::sqrt(static_cast<double>(sum)));
}

float SumAtShift(const Template& shorter, float shorterFactor, const Template& longer,
                 float longerFactor, std::int32_t shift) {
  float sum = 0.0F;
  for (std::int32_t j = 0; j < longer.frameCount; ++j) {
    std::int32_t s = j + shift;
    if (s < 0) {
      s = 0;
    }
    if (s > shorter.frameCount - 1) {
      s = shorter.frameCount - 1;
    }
    for (std::int32_t k = 0; k < 5; ++k) {
      const float x = shorter.values[static_cast<std::size_t>(s * 5 + k)] * shorterFactor;
      const float y = longer.values[static_cast<std::size_t>(j * 5 + k)] * longerFactor;
      const float difference = x - y;
      const float square = difference * difference;
      sum = sum + square;
    }
  }
  return sum;
}

}  // namespace

float CompareTemplates(const Template& a, const Template& b) {
  const bool swapped = b.frameCount < a.frameCount;
  const Template& shorter = swapped ? b : a;
  const Template& longer = swapped ? a : b;
  const std::int32_t surplus = longer.frameCount - shorter.frameCount;
  if (surplus + 2 < -2) {
    return kMost;  // Never: the longer one is not the shorter one.
  }
  if (shorter.frameCount == 0 && longer.frameCount > 0) {
    return kMost;  // There is no frame to hold against the longer one.
  }
  const float shorterFactor = 1.0F / Norm(shorter);
  const float longerFactor = 1.0F / Norm(longer);
  float best = kMost;
  for (std::int32_t shift = 2; shift >= -(surplus + 2); --shift) {
    const float sum = SumAtShift(shorter, shorterFactor, longer, longerFactor, shift);
    if (sum < best) {
      best = sum;
    }
  }
  return best;
}

std::array<float, 100> AcceptanceDistances(const std::vector<Template>& stored,
                                           std::int32_t count) {
  std::array<float, 100> thresholds{};
  thresholds.fill(kMost);
  if (count < 1) {
    return thresholds;
  }
  const std::size_t slots = std::min<std::size_t>(static_cast<std::size_t>(count), 100);
  for (std::size_t i = 0; i < slots; ++i) {
    float nearest = kMost;
    for (std::size_t j = 0; j < slots; ++j) {
      if (j == i) {
        continue;
      }
      const float distance = CompareTemplates(stored[i], stored[j]);
      if (distance < nearest) {
        nearest = distance;
      }
    }
    if (count > 1) {
      const float share = nearest / static_cast<float>(count);
      thresholds[i] = nearest - share;
    }
  }
  return thresholds;
}

}  // namespace twins
