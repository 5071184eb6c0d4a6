#include "voicemath/nearest_neighbours.h"

#include <algorithm>
#include <cstddef>

namespace voicemath {
namespace {

/// Takes in a candidate. The candidates of one template come in the order of their indices.
void Consider(Neighbour& nearest, std::size_t candidate, float distance) {
  if (nearest.index < 0) {
    nearest.index = static_cast<std::int32_t>(candidate);
  }
  if (distance < nearest.distance.Distance()) {
    nearest.index = static_cast<std::int32_t>(candidate);
    nearest.distance = DistanceBound(distance);
  }
}

const DistanceBound& Looser(const DistanceBound& a, const DistanceBound& b) {
  return a.Distance() < b.Distance() ? b : a;
}

}  // namespace

void FindNearest(std::span<const PreparedTemplate> templates, std::span<Neighbour> nearest) {
  std::ranges::fill(nearest, Neighbour{});
  for (std::size_t i = 0; i < templates.size(); ++i) {
    for (std::size_t j = i + 1; j < templates.size(); ++j) {
      const PreparedTemplate& a = templates[i];
      const PreparedTemplate& b = templates[j];
      if (a.Frames() != b.Frames()) {
        const float both = TemplateDistance(a, b, Looser(nearest[i].distance, nearest[j].distance));
        Consider(nearest[i], j, both);
        Consider(nearest[j], i, both);
      } else {
        // Which of the two slides makes a difference.
        Consider(nearest[i], j, TemplateDistance(a, b, nearest[i].distance));
        Consider(nearest[j], i, TemplateDistance(b, a, nearest[j].distance));
      }
    }
  }
}

}  // namespace voicemath
