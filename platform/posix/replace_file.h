#pragma once

#include <string>

#include "platform/file_system.h"

namespace posix {

/// platform::FileSystem::Replace over paths of the host. Where `to` is a symbolic link, the file
/// that it leads to is replaced, on another file system too.
[[nodiscard]] platform::FileError ReplaceFile(const std::string& from, const std::string& to);

}  // namespace posix
