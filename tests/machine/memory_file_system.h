#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "tests/machine/memory_disk.h"

namespace machine {

/// Files and folders in memory. The host's own paths have a tree of their own, with "/" between the
/// parts and letter case that counts; its current folder is its root.
class MemoryFileSystem final : public platform::FileSystem {
 public:
  /// Room on a disk that was given none of its own: bounded, so that a wild length fails as on a
  /// full disk and does not use up the memory of the machine.
  static constexpr std::uint64_t kDefaultCapacity = std::uint64_t{1} << 30;

  MemoryFileSystem();

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

  /// Bytes that all files together may hold. Files that hold more already keep what they have.
  void SetCapacity(std::uint64_t bytes);

  /// Protects a file against writing, or frees it; returns false if there is no such file.
  bool SetReadOnly(std::u16string_view path, bool isReadOnly);

  /// Makes a file with this content, or gives it to one that exists, and makes the folders on its
  /// way. Bounded by nothing but the memory. Returns false if the path names no file.
  bool PutFile(std::u16string_view path, std::span<const std::byte> bytes);

  /// Returns the whole content, or nothing if there is no such file.
  [[nodiscard]] std::optional<std::vector<std::byte>> GetFile(std::u16string_view path) const;

  /// Paths of all files: first the device's, then the host's, which begin with a "/".
  [[nodiscard]] std::vector<std::u16string> ListFiles() const;

  /// Files and searches that were opened and not given up.
  [[nodiscard]] std::size_t CountOpenHandles() const;

 private:
  const std::shared_ptr<MemoryDisk> m_disk;
};

}  // namespace machine
