#pragma once

#include <sys/stat.h>

#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"

namespace posix {

/// Returns the names in `folder` in the order in which the system gives them, without "." and "..".
[[nodiscard]] platform::Result<std::vector<std::string>, platform::FileError> ListFolder(
    const std::string& folder);

/// The place on the host that a path of the system leads to.
struct HostPlace {
  std::string folder;  ///< Ends with a "/".
  std::string name;

  [[nodiscard]] std::string Path() const { return folder + name; }
};

/// Returns the host's place of a path; device paths lie below `root`. The last name is the one on
/// the disk if some spelling of it exists, else the one that was asked for. Fails with kNotFound if
/// a folder on the way is missing or the path names nothing; a folder that cannot be looked into is
/// another error.
[[nodiscard]] platform::Result<HostPlace, platform::FileError> FindPlace(const std::string& root,
                                                                         std::u16string_view path);

/// Follows every symbolic link at the end of `path`. Returns the path that they lead to, whether or
/// not anything is there. Fails if they lead in a circle.
[[nodiscard]] platform::Result<std::string, platform::FileError> FollowLinks(std::string path);

/// Returns the folder that holds the entry `path`, with the "/" at its end.
[[nodiscard]] std::string FolderOf(const std::string& path);

/// Rights of a new file, which belongs to its user alone.
inline constexpr mode_t kOwnerFile = S_IRUSR | S_IWUSR;

/// Returns whether its user took away every right to write. The rights of the process do not
/// matter, since an administrator may write to every file.
[[nodiscard]] bool IsProtected(const struct stat& status);

/// Gives an open file these rights. Succeeds as well on a file system that keeps none, and for the
/// file of another user, who alone can change them.
[[nodiscard]] platform::Result<void, platform::FileError> SetRights(int descriptor, mode_t rights);

/// Returns whether both are the same file, under whatever names.
[[nodiscard]] bool IsSameFile(const struct stat& a, const struct stat& b);

/// Makes a folder of this user alone. Returns when its name is on the medium.
[[nodiscard]] platform::Result<void, platform::FileError> MakeFolder(const std::string& path);

/// Makes a folder in the same way, with every missing folder on its way. One that is there is left
/// as it is.
[[nodiscard]] platform::Result<void, platform::FileError> MakeFolders(const std::string& path);

/// Returns when the entries of `folder` are on the medium.
[[nodiscard]] platform::Result<void, platform::FileError> SyncFolder(const std::string& folder);

}  // namespace posix
