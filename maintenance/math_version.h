#pragma once

#include <cstdint>

#include "platform/registry.h"

namespace maintenance {

/// Which speech mathematics computed the stored templates, as the registry tells.
enum class RecordedVersion : std::uint8_t {
  kUnknown,  ///< There is no key for it, or it cannot be asked: nothing must be concluded.
  kMissing,
  kOther,
  kCurrent,
};

[[nodiscard]] RecordedVersion ReadVersion(platform::Registry& registry);

/// Where the recorded version is missing or another one than this system's, records this system's
/// and returns true: every template is to be computed anew. So the version is recorded before the
/// work is done, and work that is interrupted is not done again.
[[nodiscard]] bool UpdateVersion(platform::Registry& registry);

}  // namespace maintenance
