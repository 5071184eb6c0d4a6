#pragma once

#include <memory>
#include <string>

#include "backends/win32/win32_file.h"
#include "platform/file_system.h"

namespace win32 {

/// A new file of a Win32FileSystem on its way to its name. Until it is published it has a random
/// name next to it, and nobody else can open it.
class Win32Replacement final : public platform::Replacement {
 public:
  /// `path` is one for the system.
  [[nodiscard]] static platform::Result<std::unique_ptr<platform::Replacement>, platform::FileError>
  Open(std::u16string path);

  Win32Replacement(std::u16string path, std::u16string temporary, Handle file);
  Win32Replacement(const Win32Replacement&) = delete;
  Win32Replacement& operator=(const Win32Replacement&) = delete;
  ~Win32Replacement() override;

  [[nodiscard]] platform::File& GetFile() override { return m_file; }
  [[nodiscard]] platform::Result<void, platform::FileError> Publish(
      platform::Durability durability) override;

 private:
  [[nodiscard]] platform::Result<void, platform::FileError> TakePlace();
  void Discard();

  const std::u16string m_path;
  const std::u16string m_temporary;  ///< Path of the random name.
  Win32File m_file;
  bool m_hasPlace = false;
};

}  // namespace win32
