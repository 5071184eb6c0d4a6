#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"

namespace posix {

/// The names in `folder` in the order in which the system gives them, without "." and "..".
[[nodiscard]] platform::Result<std::vector<std::string>, platform::FileError> ListFolder(
    const std::string& folder);

/// Where a path of the system's callers leads on the host.
struct HostPlace {
  std::string folder;  ///< Ends with a "/".
  std::string name;

  [[nodiscard]] std::string Path() const { return folder + name; }
};

/// The host's place of a path, device paths below `root`. The last name is the one on the disk
/// if some spelling of it exists, else the one that was asked for. kNotFound if a folder on the
/// way is missing or the path names nothing; a folder that cannot be looked into is another error.
[[nodiscard]] platform::Result<HostPlace, platform::FileError> FindPlace(const std::string& root,
                                                                         std::u16string_view path);

/// Follows every symbolic link at the end of `path`. Returns the path that they lead to, whether or
/// not anything is there. Fails if they lead in a circle.
[[nodiscard]] platform::Result<std::string, platform::FileError> FollowLinks(std::string path);

/// The folder that holds the entry `path`, with the "/" at its end.
[[nodiscard]] std::string FolderOf(const std::string& path);

}  // namespace posix
