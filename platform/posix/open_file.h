#pragma once

#include <sys/stat.h>

#include <string>

#include "platform/file_system.h"
#include "platform/posix/descriptor.h"

namespace posix {

/// A regular file, open and locked against other holders as its mode says.
struct LockedFile {
  Descriptor descriptor;  ///< Open exactly where `error` is kNone.
  platform::FileError error = platform::FileError::kOther;
  std::string path;    ///< Where the file is, behind every symbolic link.
  bool isNew = false;  ///< Made by this call.
};

/// Opens the file at `path`. The lock is an advisory one of the system and goes with the
/// descriptor; on a file system without locks the file is open without one. While it is held no
/// other user of this function is a conflicting holder, and the file is the one at `path`.
[[nodiscard]] LockedFile OpenLocked(const std::string& path, const platform::OpenMode& mode);

/// Opens the file at `path` for its holder to take it away: nobody else has it open, and its user
/// did not protect it.
[[nodiscard]] LockedFile OpenForRemoval(const std::string& path);

/// Whether both are the same file, under whatever names.
[[nodiscard]] bool IsSameFile(const struct stat& a, const struct stat& b);

}  // namespace posix
