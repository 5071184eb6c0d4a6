#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"

namespace posix {

/// The names in `folder` in the order in which the system gives them, without "." and "..".
/// Nothing, with errno set, where it cannot be read.
[[nodiscard]] std::optional<std::vector<std::string>> ListFolder(const std::string& folder);

/// Where a path of the system's callers leads on the host.
struct HostPlace {
  std::string folder;  ///< Ends with a "/".
  std::string name;

  [[nodiscard]] std::string Path() const { return folder + name; }
};

struct FoundPlace {
  HostPlace place;  ///< Empty unless `error` is kNone.
  platform::FileError error = platform::FileError::kOther;
};

/// The host's place of a path, device paths below `root`. The last name is the one on the disk
/// if some spelling of it exists, else the one that was asked for. kNotFound if a folder on the
/// way is missing or the path names nothing; a folder that cannot be looked into is another error.
[[nodiscard]] FoundPlace FindPlace(const std::string& root, std::u16string_view path);

/// The path behind every symbolic link at the end of `path`, whether or not anything is there.
/// Nothing, with errno set, where the links lead in a circle.
[[nodiscard]] std::optional<std::string> FollowLinks(std::string path);

/// The folder that holds the entry `path`, with the "/" at its end.
[[nodiscard]] std::string FolderOf(const std::string& path);

}  // namespace posix
