#pragma once

#include <string>

#include "platform/registry.h"

namespace storage {

/// The path of the first key that cannot be opened by its path, as another program may make it in a
/// store on disk: its name has a backslash or a control character or is too long, or it lies too
/// deep. Its name is escaped, so that it stays on one line. Empty where there is none, or the
/// registry cannot be read.
[[nodiscard]] std::string FindUnusableKey(platform::Registry& registry);

}  // namespace storage
