#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "maintenance/template_loading.h"
#include "platform/result.h"
#include "storage/tag_record.h"
#include "voicemath/voice_mathematics.h"

namespace maintenance {

/// The template that another one is most easily taken for, as the Test dialog counts it.
struct Neighbour {
  /// No template was nearer than the start of the search.
  static constexpr std::int32_t kNone = -2;

  std::int32_t index = kNone;
  float distance = 100.0F;  ///< The search starts with it. Every real distance is smaller.
};

using FoundNeighbours = platform::Result<std::vector<Neighbour>, voicemath::SearchStopped>;

/// Finds the nearest other one for each of the slots 0 to `count` - 1 of the mathematics. The slot
/// that is looked at comes first in the comparison. Of several at the same distance the one with
/// the lowest index counts. `watch` may stop the search.
[[nodiscard]] FoundNeighbours FindNearest(const voicemath::CVoiceMathematics& mathematics,
                                          std::int32_t count,
                                          const voicemath::SearchWatch& watch = {});

/// One row of the Test dialog: two tags by their places in the tag table.
struct NeighbourRow {
  std::int32_t tag = 0;
  std::int32_t neighbour = Neighbour::kNone;
};

/// The rows by distance, so the tags that are confused most easily come first. Rows of equal
/// distance stay in the order of the tags.
using NeighbourTable = std::multimap<float, NeighbourRow>;

/// Returns the rows of all templates. `tags` has for each template the place of its tag.
[[nodiscard]] NeighbourTable ToTable(std::span<const Neighbour> nearest,
                                     std::span<const std::int32_t> tags);

/// Returns for each of `count` tags how many others have it as their nearest.
[[nodiscard]] std::vector<std::int32_t> CountConfusions(const NeighbourTable& table,
                                                        std::int32_t count);

/// Returns the likeness in percent, truncated. Returns 0 for a distance of 1 and above.
[[nodiscard]] std::int32_t ToScore(float distance);

/// One line of the Test dialog, and what it was made from.
struct TestLine {
  std::u16string text;
  std::u16string tagName;
  std::u16string neighbourName;  ///< Empty if the tag has no neighbour.
  std::int32_t score = 0;        ///< Percent.
  float distance = 0.0F;
  std::int32_t confusions = 0;  ///< Tags whose nearest is this one.
};

/// Returns the lines in the order in which they are shown.
[[nodiscard]] std::vector<TestLine> ToTestLines(const storage::TagTable& tags,
                                                const LoadedTemplates& loaded,
                                                const std::vector<Neighbour>& nearest);

/// Returns what to say to the user about the tags that could not be compared. Returns an empty text
/// if there are none.
[[nodiscard]] std::u16string UnreadTagsMessage(const storage::TagTable& tags,
                                               const LoadedTemplates& loaded);

}  // namespace maintenance
