#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "maintenance/nearest_neighbours.h"
#include "maintenance/template_loading.h"
#include "storage/tag_record.h"

namespace maintenance {

/// One line of the Test dialog, and what it was made from.
struct TestLine {
  std::u16string text;
  std::u16string tagName;
  std::u16string neighbourName;  ///< Empty where the tag has no neighbour.
  std::int32_t score = 0;        ///< Percent.
  float distance = 0.0F;
  std::int32_t confusions = 0;  ///< Tags whose nearest is this one.
};

/// The lines in the order in which they are shown: the most confusable tags first.
[[nodiscard]] std::vector<TestLine> ToTestLines(const storage::TagTable& tags,
                                                const LoadedTemplates& loaded,
                                                const std::vector<Neighbour>& nearest);

/// What the user is told of the tags that could not be compared; empty where there are none.
[[nodiscard]] std::u16string UnreadTagsMessage(const storage::TagTable& tags,
                                               const LoadedTemplates& loaded);

}  // namespace maintenance
