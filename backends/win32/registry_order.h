#pragma once

#include <string>
#include <vector>

#include "backends/win32/registry_calls.h"

namespace win32 {

/// Returns keys, which the system lists by their names, in the order in which they were made.
///
/// `noted` are the names of those whose order was kept. All others are another program's, and
/// follow: the one that was changed longest ago first. A file that is imported can make many keys
/// at one moment of the system's clock. Such keys are named by tick counts, signed or not, which
/// begin again with 0 after their greatest. So they are in the order of these numbers, and the
/// first one is that after the widest gap. A key whose name is no number of 32 bits follows them.
[[nodiscard]] std::vector<ListedKey> InOrderOfMaking(std::vector<ListedKey> listed,
                                                     const std::vector<std::u16string>& noted);

}  // namespace win32
