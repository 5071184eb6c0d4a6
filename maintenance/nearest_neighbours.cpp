#include "maintenance/nearest_neighbours.h"

#include <algorithm>
#include <cstddef>

namespace maintenance {

FoundNeighbours FindNearest(const voicemath::CVoiceMathematics& mathematics, std::int32_t count,
                            const voicemath::SearchWatch& watch) {
  std::vector<voicemath::Neighbour> found(static_cast<std::size_t>(std::max(count, 0)));
  if (const auto searched = mathematics.FindNearest(found, watch); !searched) {
    return platform::Failure(searched.error());
  }
  std::vector<Neighbour> nearest;
  nearest.reserve(found.size());
  for (const voicemath::Neighbour& each : found) {
    nearest.push_back(each.index < 0 ? Neighbour() : Neighbour{each.index, each.distance});
  }
  return nearest;
}

NeighbourTable ToTable(std::span<const Neighbour> nearest, std::span<const std::int32_t> tags) {
  NeighbourTable table;
  for (std::size_t i = 0; i < nearest.size(); ++i) {
    const std::int32_t other = nearest[i].index;
    const std::int32_t neighbour = other < 0 ? other : tags[static_cast<std::size_t>(other)];
    // Goes behind the rows of the same distance that are there.
    table.emplace(nearest[i].distance, NeighbourRow{tags[i], neighbour});
  }
  return table;
}

std::vector<std::int32_t> CountConfusions(const NeighbourTable& table, std::int32_t count) {
  std::vector<std::int32_t> confusions(static_cast<std::size_t>(std::max(count, 0)));
  for (const auto& [distance, row] : table) {
    if (row.neighbour >= 0 && row.neighbour < count) {
      ++confusions[static_cast<std::size_t>(row.neighbour)];
    }
  }
  return confusions;
}

std::int32_t ToScore(float distance) {
  constexpr float kWhole = 100.0F;
  // Rounded to a float after the product and again after the difference.
  const float share = distance * kWhole;
  const float score = kWhole - share;
  return score > 0.0F ? static_cast<std::int32_t>(score) : 0;
}

}  // namespace maintenance
