#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "platform/file_system.h"
#include "tests/machine/memory_disk.h"

namespace machine {

/// Whether opening so, or the holder of it, may change the file.
[[nodiscard]] bool MayChange(const platform::OpenMode& mode);

/// Whether a holder of such a mode goes together with others of its kind.
[[nodiscard]] bool GoesTogether(const platform::OpenMode& mode);

/// A file of a MemoryFileSystem, which it may outlive.
class MemoryFile final : public platform::File {
 public:
  /// Becomes a holder of `node`. Called with the mutex of `disk` held.
  MemoryFile(std::shared_ptr<MemoryDisk> disk, MemoryNode& node, const platform::OpenMode& mode);
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() override;

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

 private:
  [[nodiscard]] platform::Result<void, platform::FileError> CheckWritable() const;

  const std::shared_ptr<MemoryDisk> m_disk;
  MemoryNode* m_node;  ///< Null once the file is given up.
  const platform::OpenMode m_mode;
  std::uint64_t m_position = 0;
};

}  // namespace machine
