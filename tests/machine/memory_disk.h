#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"

namespace machine {

/// One file or folder of a MemoryDisk.
struct MemoryNode {
  std::u16string name;
  bool isFolder = false;
  bool isReadOnly = false;
  std::vector<std::byte> bytes;
  std::int64_t changes = 0;   ///< Differs from that of every other state of any file.
  std::uint32_t readers = 0;  ///< Holders that go together with each other.
  bool isHeldAlone = false;   ///< By a holder that goes together with none.
  std::map<std::u16string, std::unique_ptr<MemoryNode>> children;  ///< By the name to compare.

  [[nodiscard]] bool IsHeld() const { return readers != 0 || isHeldAlone; }
};

/// What a MemoryFileSystem and the files opened on it share: the tree of the device paths, the tree
/// of the host's own paths, and the room that is left. Every use of it or of its nodes needs
/// `mutex`. A held node is never removed.
class MemoryDisk {
 public:
  /// Where a path ends: a folder that exists and a name in it that may not.
  struct Place {
    MemoryNode* folder = nullptr;
    std::u16string name;
    std::u16string key;  ///< Of `name` among the children of `folder`.
  };

  explicit MemoryDisk(std::uint64_t capacity) : m_capacity(capacity) {}

  std::mutex mutex;
  std::size_t openHandles = 0;

  void SetCapacity(std::uint64_t bytes) { m_capacity = bytes; }

  /// Returns nothing if a folder on the way is missing, or if the path names nothing.
  [[nodiscard]] std::optional<Place> FindPlace(std::u16string_view path);
  /// Does the same, and makes every missing folder.
  [[nodiscard]] std::optional<Place> MakePlace(std::u16string_view path);

  [[nodiscard]] static MemoryNode* Find(const Place& place);
  static MemoryNode& Add(const Place& place, bool isFolder);
  void Remove(const Place& place);

  /// The content of `file`, which is in no folder, becomes the file at `to`, which is made if it is
  /// missing.
  void Publish(MemoryNode& file, const Place& to);

  /// Returns false, and changes nothing, if there is no room to grow.
  [[nodiscard]] bool Resize(MemoryNode& file, std::uint64_t length);
  /// Writes as many of `bytes` as there is room for and returns their number.
  [[nodiscard]] std::size_t Write(MemoryNode& file, std::uint64_t offset,
                                  std::span<const std::byte> bytes);

  /// Gives a file this content, however little room there is.
  void Put(MemoryNode& file, std::span<const std::byte> bytes);

  /// Paths of all files: first the device's, then the host's, which begin with a "/".
  [[nodiscard]] std::vector<std::u16string> ListFiles() const;

 private:
  enum class MissingFolders : std::uint8_t { kFail, kMake };

  [[nodiscard]] std::optional<Place> Walk(std::u16string_view path, MissingFolders missing);
  [[nodiscard]] std::uint64_t Room() const;

  MemoryNode m_device;
  MemoryNode m_host;
  std::uint64_t m_capacity;
  std::uint64_t m_used = 0;
  std::int64_t m_changes = 0;
};

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

 private:
  [[nodiscard]] platform::Result<void, platform::FileError> CheckWritable() const;

  const std::shared_ptr<MemoryDisk> m_disk;
  MemoryNode* m_node;  ///< Null once the file is given up.
  const platform::OpenMode m_mode;
  std::uint64_t m_position = 0;
};

}  // namespace machine
