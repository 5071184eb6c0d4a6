#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/session/session.h"
#include "maintenance/store_check.h"
#include "maintenance/tag_quality.h"
#include "tags/tag_reader.h"

namespace session {

struct CheckedFinding {
  maintenance::StoreFinding finding;
  std::string description;
  std::string listText;  ///< Of the tag; empty if it is not known.
  bool isRepaired = false;
  std::string reason;  ///< Why it could not be repaired; empty if nothing was tried.
};

/// What could be better about the recording of a tag. Nothing is wrong with the store then.
struct TagAdvice {
  std::size_t tag = 0;  ///< Of CheckedStore::tags.
  maintenance::TagQuality quality;
  std::vector<std::string> sentences;
};

struct CheckedStore {
  std::uint32_t tagCount = 0;
  std::vector<CheckedFinding> findings;
  std::vector<tags::ListedTag> tags;  ///< Empty if they cannot be read.
  std::vector<TagAdvice> advice;
};

enum class Repairing : std::uint8_t { kNo, kYes };

/// Is called before each finding is dealt with: how many were, of how many.
using RepairProgress = std::function<void(std::size_t done, std::size_t all)>;

/// Checks the whole store, and puts right what can be put right. A check changes nothing and waits
/// for nobody. A repair holds the tags. Returns nothing if that is not possible, which is reported.
[[nodiscard]] std::optional<CheckedStore> CheckStore(Session& session, Repairing repairing,
                                                     const RepairProgress& progress = {});

}  // namespace session
