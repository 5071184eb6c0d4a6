#pragma once

#include <cstdint>

#include "platform/registry.h"

namespace maintenance {

/// Which speech mathematics computed the stored templates, as far as the registry says.
enum class RecordedVersion : std::uint8_t {
  kUnknown,  ///< There is no key for it, or it cannot be read. Nothing must be concluded.
  kMissing,
  kOther,
  kCurrent,
};

[[nodiscard]] RecordedVersion ReadVersion(platform::Registry& registry);

/// Returns whether every template has to be computed again: if the recorded version is missing or
/// is not this system's. Then records this system's version. So the version is recorded before the
/// work is done, deliberately, and work that is interrupted is not begun again.
[[nodiscard]] bool UpdateVersion(platform::Registry& registry);

}  // namespace maintenance
