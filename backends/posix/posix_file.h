#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "backends/posix/system_calls.h"
#include "platform/file_system.h"

namespace posix {

/// A regular file, open and locked against other holders as its mode says.
struct LockedFile {
  Descriptor descriptor;
  std::string path;  ///< Of the file itself, after every symbolic link was followed.
};

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

/// An open file of a PosixFileSystem. Its descriptor carries the lock that other holders see.
class PosixFile final : public platform::File {
 public:
  PosixFile(LockedFile file, platform::FileAccess access);

  [[nodiscard]] platform::Result<std::uint64_t, platform::FileError> GetLength() override;
  [[nodiscard]] std::optional<platform::FileVersion> GetVersion() override;
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
  /// without a name. The writer of a file need not be its maker.
  std::string m_unsyncedFolder;
};

}  // namespace posix
