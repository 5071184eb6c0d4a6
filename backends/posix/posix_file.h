#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "backends/posix/open_file.h"
#include "platform/file_system.h"

namespace posix {

/// An open file of a PosixFileSystem. Its descriptor carries the lock that other holders see.
class PosixFile final : public platform::File {
 public:
  PosixFile(LockedFile file, platform::FileAccess access);

  [[nodiscard]] platform::Result<std::uint64_t, platform::FileError> GetLength() override;
  [[nodiscard]] platform::Result<void, platform::FileError> Seek(std::uint64_t offset) override;
  [[nodiscard]] platform::Result<std::size_t, platform::FileError> Read(
      std::span<std::byte> into) override;
  [[nodiscard]] platform::Result<void, platform::FileError> Write(
      std::span<const std::byte> bytes) override;
  [[nodiscard]] platform::Result<void, platform::FileError> SetLength(
      std::uint64_t length) override;
  [[nodiscard]] platform::Result<void, platform::FileError> Flush() override;
  [[nodiscard]] platform::Result<void, platform::FileError> Close() override;

  /// Descriptor::kNone once it is closed.
  [[nodiscard]] int GetDescriptor() const { return m_descriptor.Get(); }

 private:
  [[nodiscard]] platform::Result<void, platform::FileError> CheckWritable() const;

  Descriptor m_descriptor;
  const platform::FileAccess m_access;
  std::uint64_t m_position = 0;
  /// The folder whose entry of this file may not be on the medium yet; "" if it is, and for a file
  /// without a name. Whoever writes a file need not be the one who made it.
  std::string m_unsyncedFolder;
};

/// Makes a folder of this user alone. Returns when its name is on the medium.
[[nodiscard]] platform::Result<void, platform::FileError> MakeFolder(const std::string& path);

/// Likewise with every missing folder on its way. One that is there is left as it is.
[[nodiscard]] platform::Result<void, platform::FileError> MakeFolders(const std::string& path);

/// Returns when the entries of `folder` are on the medium.
[[nodiscard]] platform::Result<void, platform::FileError> SyncFolder(const std::string& folder);

}  // namespace posix
