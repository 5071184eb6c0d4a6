#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>

#include "backends/posix/descriptor.h"
#include "platform/file_system.h"

namespace posix {

/// A regular file, open and locked against other holders as its mode says.
struct LockedFile {
  Descriptor descriptor;
  std::string path;  ///< Where the file is, after every symbolic link was followed.
};

/// Rights of a new file, which belongs to its user alone.
inline constexpr mode_t kOwnerFile = S_IRUSR | S_IWUSR;

/// What becomes of the rights that other users have on an older file that is written or replaced.
enum class Others : std::uint8_t { kKeepRights, kLoseRights };

/// Opens the file at `path`. A link there is followed only to read. The lock is an advisory one of
/// the system and goes with the descriptor; on a file system without locks the file is open without
/// one. While it is held no other user of this function is a conflicting holder, and the file is
/// the one at `path`.
[[nodiscard]] platform::Result<LockedFile, platform::FileError> OpenLocked(
    const std::string& path, const platform::OpenMode& mode, Others others = Others::kKeepRights);

/// Opens the file at `path` for its holder to take it away: nobody else has it open, and its user
/// did not protect it.
[[nodiscard]] platform::Result<LockedFile, platform::FileError> OpenForRemoval(
    const std::string& path);

/// Whether its user took away every right to write. The rights of the process do not matter, for to
/// an administrator every file is writable.
[[nodiscard]] bool IsProtected(const struct stat& status);

/// Gives an open file these rights. Succeeds as well on a file system that keeps none, and for the
/// file of another user, who alone can change them.
[[nodiscard]] platform::Result<void, platform::FileError> SetRights(int descriptor, mode_t rights);

/// Whether both are the same file, under whatever names.
[[nodiscard]] bool IsSameFile(const struct stat& a, const struct stat& b);

}  // namespace posix
