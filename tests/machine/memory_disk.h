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

  /// Nothing where a folder on the way is missing, or the path names nothing.
  [[nodiscard]] std::optional<Place> FindPlace(std::u16string_view path);
  /// Likewise, with every missing folder made.
  [[nodiscard]] std::optional<Place> MakePlace(std::u16string_view path);

  [[nodiscard]] static MemoryNode* Find(const Place& place);
  static MemoryNode& Add(const Place& place, bool isFolder);
  void Remove(const Place& place);

  /// The content of `file`, which is in no folder, becomes the file at `to`, which is made if it is
  /// missing.
  void Publish(MemoryNode& file, const Place& to);

  /// False where there is no room to grow; nothing is changed then.
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
};

}  // namespace machine
