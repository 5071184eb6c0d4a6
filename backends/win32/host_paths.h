#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"

namespace win32 {

// A path of the host has "/" between its parts ("C:/Users/Ann"), since one that begins with a
// backslash is a path of the device. The system gets each path in its long form ("\\?\C:\..."),
// which has no limit of 260 units and gives no name a meaning of its own.

/// Returns the path for the system to which a path leads; device paths lie below `root`. Fails with
/// kNotFound if the path names nothing.
[[nodiscard]] platform::Result<std::u16string, platform::FileError> FindPlace(
    const std::u16string& root, std::u16string_view path);

/// Returns a path of the host in its long form. A folder whose name ends with a dot ("Zedra Tech.")
/// is found with its dot, which the system takes off other paths.
[[nodiscard]] platform::Result<std::u16string, platform::FileError> ToLongPath(
    std::u16string_view hostPath);

/// Returns the folder that holds the entry `path`, without a backslash at its end.
[[nodiscard]] std::u16string FolderOf(const std::u16string& path);

/// What stands at a path.
struct Entry {
  std::u16string name;  ///< As it is spelled on the disk.
  bool isFolder = false;
  bool isProtected = false;  ///< Its user protected it against writing.
  bool isLink = false;       ///< It stands for another entry: a symbolic link or a junction.
};

/// Returns what stands at `path`. Fails with kNotFound if nothing does.
[[nodiscard]] platform::Result<Entry, platform::FileError> LookAt(const std::u16string& path);

/// Returns the entries of `folder` in the order in which the system gives them, without "." and
/// "..".
[[nodiscard]] platform::Result<std::vector<Entry>, platform::FileError> ListFolder(
    const std::u16string& folder);

/// Makes a folder with every missing folder on its way. One that is there is left as it is.
[[nodiscard]] platform::Result<void, platform::FileError> MakeFolders(const std::u16string& path);

/// Returns when the entries of the folder are on the medium, as far as the file system lets a
/// program wait for that.
[[nodiscard]] platform::Result<void, platform::FileError> FlushFolder(const std::u16string& path);

}  // namespace win32
