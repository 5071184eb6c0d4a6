#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <vector>

#include "platform/result.h"
#include "voicemath/voice_mathematics.h"

namespace maintenance {

/// What is found of the template that is most easily taken for another one.
struct Neighbour {
  /// No template was nearer than the start of the search.
  static constexpr std::int32_t kNone = -2;

  std::int32_t index = kNone;
  float distance = 100.0F;  ///< Where the search starts: beyond every distance there is.
};

using FoundNeighbours = platform::Result<std::vector<Neighbour>, voicemath::SearchStopped>;

/// Finds the nearest other one for each of the slots 0 to `count` - 1 of the mathematics. The slot
/// that is looked at comes first in the comparison. Of several at the same distance the one with
/// the lowest index counts. `watch` may stop the search.
[[nodiscard]] FoundNeighbours FindNearest(const voicemath::CVoiceMathematics& mathematics,
                                          std::int32_t count,
                                          const voicemath::SearchWatch& watch = {});

/// One row of the table that the Test dialog shows: two tags by their places in the tag table.
struct NeighbourRow {
  std::int32_t tag = 0;
  std::int32_t neighbour = Neighbour::kNone;
};

/// The rows by distance, the most confusable first; equal distances stay in the order of the tags.
using NeighbourTable = std::multimap<float, NeighbourRow>;

/// `tags` tells for each template which tag it belongs to.
[[nodiscard]] NeighbourTable ToTable(std::span<const Neighbour> nearest,
                                     std::span<const std::int32_t> tags);

/// For each of `count` tags how many have it as their nearest.
[[nodiscard]] std::vector<std::int32_t> CountConfusions(const NeighbourTable& table,
                                                        std::int32_t count);

/// Likeness in percent, truncated; 0 for a distance of 1 and above.
[[nodiscard]] std::int32_t ToScore(float distance);

}  // namespace maintenance
