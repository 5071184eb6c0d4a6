#pragma once

#include <string>
#include <string_view>

#include "platform/registry.h"

namespace storage {

/// The path of the first key from `start` on that cannot be opened by its path, as another program
/// may make it in a store on disk: its name is empty, has a backslash or a control character or is
/// too long, or it lies too deep. Likewise the key and the name of a value that cannot be asked for
/// or is too long. Names are escaped, so that they stay on one line. Returns an empty text if there
/// is none, or if the registry cannot be read.
[[nodiscard]] std::string FindUnusableKey(platform::Registry& registry,
                                          std::u16string_view start = {});

}  // namespace storage
