#include <algorithm>
#include <limits>
#include <vector>

#include "dialer/speech_features.h"

// The way through all pairs of times is found row by row, so two rows are all the memory that it
// needs. Each row is made in two passes. The first takes the steps that come from the row before
// and is free of dependencies, so the compiler makes vectors of it. The second adds the steps
// within the row.
namespace dialer {
namespace {

/// What one time of `a` and all times of `b` cost. The inner loop goes over neighbouring times,
/// which the compiler takes as vectors.
void CostRow(const SpeechFeatures& a, std::size_t frame, const SpeechFeatures& b,
             std::vector<float>& costs) {
  std::ranges::fill(costs, 0.0F);
  for (std::size_t feature = 0; feature < SpeechFeatures::kCount; ++feature) {
    const float value = a.Get(feature)[frame];
    const float* const others = b.Get(feature).data();
    for (std::size_t i = 0; i < costs.size(); ++i) {
      const float difference = value - others[i];
      costs[i] += difference * difference;
    }
  }
}

}  // namespace

float WarpingDistance(const SpeechFeatures& a, const SpeechFeatures& b) {
  constexpr float kFar = std::numeric_limits<float>::max() / 4;
  const std::size_t length = b.Frames();
  std::vector<float> costs(length);
  // The cheapest way to each pair of times; a step in both counts twice. The place before the first
  // one is beyond the edge, and the way begins there.
  std::vector<float> row(length + 1, kFar);
  std::vector<float> before(length + 1, kFar);
  before[0] = 0;
  for (std::size_t frame = 0; frame < a.Frames(); ++frame) {
    CostRow(a, frame, b, costs);
    for (std::size_t i = 0; i < length; ++i) {
      row[i + 1] = std::min(before[i + 1] + costs[i], before[i] + 2 * costs[i]);
    }
    row[0] = kFar;
    for (std::size_t i = 0; i < length; ++i) {
      row[i + 1] = std::min(row[i + 1], row[i] + costs[i]);
    }
    row.swap(before);
  }
  constexpr auto kFeatures = static_cast<float>(SpeechFeatures::kCount);
  return before[length] / static_cast<float>(a.Frames() + length) / kFeatures;
}

}  // namespace dialer
