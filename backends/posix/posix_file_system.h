#pragma once

#include <string>
#include <string_view>

#include "platform/file_system.h"

namespace posix {

/// Files of a Linux system. Device paths lie below a root folder, which the host makes; the last
/// part of a name is found in any letter case, one that is spelled exactly so first. Links to
/// folders are followed, so a user may keep a folder of the device elsewhere.
class PosixFileSystem final : public platform::FileSystem {
 public:
  /// `root` is a path of the host.
  explicit PosixFileSystem(std::u16string_view root);

  [[nodiscard]] platform::Result<std::unique_ptr<platform::File>, platform::FileError> Open(
      std::u16string_view path, const platform::OpenMode& mode) override;
  [[nodiscard]] platform::Result<std::unique_ptr<platform::Replacement>, platform::FileError>
  OpenReplacement(std::u16string_view path) override;
  [[nodiscard]] platform::Result<void, platform::FileError> Delete(
      std::u16string_view path) override;
  [[nodiscard]] platform::Result<void, platform::FileError> CreateFolder(
      std::u16string_view path) override;
  [[nodiscard]] platform::Result<void, platform::FileError> FlushFolder(
      std::u16string_view path) override;
  [[nodiscard]] platform::Result<std::unique_ptr<platform::FileSearch>, platform::FileError> Find(
      std::u16string_view pattern) override;

  /// Takes from other users every right to `path`, and to the files that lie directly in it if it
  /// is a folder. A path that is not there is passed over, and so is what cannot be changed: a
  /// folder that belongs to all (with the sticky bit), or a file of somebody else. A link to a file
  /// is passed over too, since nothing is written through it.
  void KeepFromOthers(std::u16string_view path);

 private:
  const std::string m_root;
};

}  // namespace posix
