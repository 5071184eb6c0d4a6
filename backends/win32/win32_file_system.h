#pragma once

#include <string>
#include <string_view>

#include "platform/file_system.h"

namespace win32 {

/// Files of a Windows system. Device paths lie below a root folder, which the host makes. Rights
/// are those that the folder above gives: below the user's own folder nobody else has any. Links
/// are symbolic links and junctions; a placeholder of a file that is kept elsewhere is none.
class Win32FileSystem final : public platform::FileSystem {
 public:
  /// `root` is a path of the host.
  explicit Win32FileSystem(std::u16string_view root);

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

 private:
  const std::u16string m_root;  ///< In its long form.
};

}  // namespace win32
