#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "platform/file_system.h"
#include "platform/posix/open_file.h"

namespace posix {

/// An open file of a PosixFileSystem. Its descriptor carries the lock that other holders see.
class PosixFile final : public platform::File {
 public:
  PosixFile(LockedFile file, platform::FileAccess access);

  [[nodiscard]] std::optional<std::uint64_t> GetLength() override;
  [[nodiscard]] platform::FileError Seek(std::uint64_t offset) override;
  [[nodiscard]] std::optional<std::size_t> Read(std::span<std::byte> into) override;
  [[nodiscard]] platform::FileError Write(std::span<const std::byte> bytes) override;
  [[nodiscard]] platform::FileError SetLength(std::uint64_t length) override;
  [[nodiscard]] platform::FileError Flush() override;
  [[nodiscard]] platform::FileError Close() override;

 private:
  [[nodiscard]] platform::FileError CheckWritable() const;

  Descriptor m_descriptor;
  const platform::FileAccess m_access;
  std::uint64_t m_position = 0;
  std::string m_unsyncedFolder;  ///< Whose entry of this new file may not be on the medium yet.
};

/// Returns when the entries of `folder` are on the medium.
[[nodiscard]] platform::FileError SyncFolder(const std::string& folder);

}  // namespace posix
