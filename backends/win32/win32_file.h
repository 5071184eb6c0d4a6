#pragma once

#include <cstdint>
#include <utility>

#include "backends/win32/system_calls.h"
#include "platform/file_system.h"

namespace win32 {

/// An open file of a Win32FileSystem.
class Win32File final : public platform::File {
 public:
  Win32File(Handle file, platform::FileAccess access) : m_file(std::move(file)), m_access(access) {}

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

  /// Returns null after the file was given up.
  [[nodiscard]] HANDLE GetHandle() const { return m_file.Get(); }

 private:
  [[nodiscard]] platform::Result<void, platform::FileError> CheckWritable() const;

  Handle m_file;
  const platform::FileAccess m_access;
  std::uint64_t m_position = 0;
};

}  // namespace win32
