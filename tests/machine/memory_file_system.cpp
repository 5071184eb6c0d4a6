#include "tests/machine/memory_file_system.h"

#include <mutex>
#include <utility>

#include "backends/text/names.h"
#include "tests/machine/memory_disk.h"

namespace machine {
namespace {

using platform::Failure;
using platform::FileCreation;
using platform::FileError;
using platform::FoundFile;
using platform::Result;
using Place = MemoryDisk::Place;

class MemorySearch final : public platform::FileSearch {
 public:
  /// Called with the mutex of `disk` held.
  MemorySearch(std::shared_ptr<MemoryDisk> disk, std::vector<FoundFile> found)
      : m_disk(std::move(disk)), m_found(std::move(found)) {
    ++m_disk->openHandles;
  }

  MemorySearch(const MemorySearch&) = delete;
  MemorySearch& operator=(const MemorySearch&) = delete;

  ~MemorySearch() override {
    const std::lock_guard lock(m_disk->mutex);
    --m_disk->openHandles;
  }

  [[nodiscard]] Result<std::optional<FoundFile>, FileError> Next() override {
    if (m_next == m_found.size()) {
      return std::nullopt;
    }
    return m_found[m_next++];
  }

 private:
  const std::shared_ptr<MemoryDisk> m_disk;
  const std::vector<FoundFile> m_found;
  std::size_t m_next = 0;
};

/// Whether a file that exists may be opened so.
Result<void, FileError> CheckOpen(const MemoryNode& node, const platform::OpenMode& mode) {
  if (node.isFolder || (MayChange(mode) && node.isReadOnly)) {
    return Failure(FileError::kAccessDenied);
  }
  if (node.isHeldAlone || (node.readers != 0 && !GoesTogether(mode))) {
    return Failure(FileError::kSharingViolation);
  }
  return {};
}

/// Whether the file at a place may be taken away.
Result<void, FileError> CheckRemove(const MemoryNode* node) {
  if (node == nullptr) {
    return Failure(FileError::kNotFound);
  }
  if (node->isFolder || node->isReadOnly) {
    return Failure(FileError::kAccessDenied);
  }
  if (node->IsHeld()) {
    return Failure(FileError::kSharingViolation);
  }
  return {};
}

/// Whether a replacement may take a place as it is now.
Result<void, FileError> CheckReplace(const std::optional<Place>& place) {
  if (!place) {
    return Failure(FileError::kNotFound);
  }
  const MemoryNode* const earlier = MemoryDisk::Find(*place);
  return earlier == nullptr ? Result<void, FileError>() : CheckRemove(earlier);
}

constexpr platform::OpenMode kReadWriteAlone{
    platform::FileAccess::kReadWrite, platform::FileShare::kNone, FileCreation::kOpenExisting};

class MemoryReplacement final : public platform::Replacement {
 public:
  /// Called with the mutex of `disk` held.
  MemoryReplacement(std::shared_ptr<MemoryDisk> disk, std::u16string_view path)
      : m_disk(std::move(disk)), m_path(path), m_file(m_disk, m_node, kReadWriteAlone) {}
  MemoryReplacement(const MemoryReplacement&) = delete;
  MemoryReplacement& operator=(const MemoryReplacement&) = delete;

  ~MemoryReplacement() override {
    const std::lock_guard lock(m_disk->mutex);
    static_cast<void>(m_disk->Resize(m_node, 0));  // The room that it took.
  }

  [[nodiscard]] platform::File& GetFile() override { return m_file; }

  [[nodiscard]] Result<void, FileError> Publish(platform::Durability) override {
    {
      const std::lock_guard lock(m_disk->mutex);
      if (!m_node.IsHeld()) {
        return Failure(FileError::kClosed);
      }
      const std::optional<Place> place = m_disk->FindPlace(m_path);
      if (const auto replaceable = CheckReplace(place); !replaceable) {
        return replaceable;
      }
      m_disk->Publish(m_node, *place);
    }
    return m_file.Close();
  }

 private:
  const std::shared_ptr<MemoryDisk> m_disk;
  const std::u16string m_path;
  MemoryNode m_node;  ///< In no folder.
  MemoryFile m_file;
};

}  // namespace

MemoryFileSystem::MemoryFileSystem() : m_disk(std::make_shared<MemoryDisk>(kDefaultCapacity)) {}

Result<std::unique_ptr<platform::File>, FileError> MemoryFileSystem::Open(
    std::u16string_view path, const platform::OpenMode& mode) {
  const std::lock_guard lock(m_disk->mutex);
  const std::optional<Place> place = m_disk->FindPlace(path);
  if (!place) {
    return Failure(FileError::kNotFound);
  }
  MemoryNode* node = MemoryDisk::Find(*place);
  if (node == nullptr) {
    if (mode.creation == FileCreation::kOpenExisting) {
      return Failure(FileError::kNotFound);
    }
    node = &MemoryDisk::Add(*place, false);
  } else if (mode.creation == FileCreation::kCreateNew) {
    return Failure(FileError::kAlreadyExists);
  } else if (const auto openable = CheckOpen(*node, mode); !openable) {
    return Failure(openable.error());
  }
  if (mode.creation == FileCreation::kCreateAlways) {
    static_cast<void>(m_disk->Resize(*node, 0));
  }
  return std::make_unique<MemoryFile>(m_disk, *node, mode);
}

Result<std::unique_ptr<platform::Replacement>, FileError> MemoryFileSystem::OpenReplacement(
    std::u16string_view path) {
  const std::lock_guard lock(m_disk->mutex);
  const auto replaceable = CheckReplace(m_disk->FindPlace(path));
  if (!replaceable && replaceable.error() != FileError::kSharingViolation) {
    return Failure(replaceable.error());
  }
  return std::make_unique<MemoryReplacement>(m_disk, path);
}

Result<void, FileError> MemoryFileSystem::Delete(std::u16string_view path) {
  const std::lock_guard lock(m_disk->mutex);
  const std::optional<Place> place = m_disk->FindPlace(path);
  const auto removable = CheckRemove(place ? MemoryDisk::Find(*place) : nullptr);
  if (removable) {
    m_disk->Remove(*place);
  }
  return removable;
}

Result<void, FileError> MemoryFileSystem::CreateFolder(std::u16string_view path) {
  const std::lock_guard lock(m_disk->mutex);
  const std::optional<Place> place = m_disk->FindPlace(path);
  if (!place) {
    return Failure(FileError::kNotFound);
  }
  if (MemoryDisk::Find(*place) != nullptr) {
    return Failure(FileError::kAlreadyExists);
  }
  MemoryDisk::Add(*place, true);
  return {};
}

Result<void, FileError> MemoryFileSystem::FlushFolder(std::u16string_view path) {
  const std::lock_guard lock(m_disk->mutex);
  const std::optional<Place> place = m_disk->FindPlace(path);
  const MemoryNode* node = place ? MemoryDisk::Find(*place) : nullptr;
  const bool isFolder = path == u"\\" || (node != nullptr && node->isFolder);
  if (!isFolder) {
    return Failure(FileError::kNotFound);
  }
  return {};
}

Result<std::unique_ptr<platform::FileSearch>, FileError> MemoryFileSystem::Find(
    std::u16string_view pattern) {
  const std::lock_guard lock(m_disk->mutex);
  std::vector<FoundFile> found;
  if (const std::optional<Place> place = m_disk->FindPlace(pattern)) {
    if (!text::HasWildcards(place->name)) {
      if (const MemoryNode* node = MemoryDisk::Find(*place)) {
        found.push_back({node->name, node->isFolder});
      }
    } else {
      for (const auto& [key, node] : place->folder->children) {
        if (text::MatchesPattern(node->name, place->name)) {
          found.push_back({node->name, node->isFolder});
        }
      }
    }
  }
  if (found.empty()) {
    return Failure(FileError::kNotFound);
  }
  return std::make_unique<MemorySearch>(m_disk, std::move(found));
}

void MemoryFileSystem::SetCapacity(std::uint64_t bytes) {
  const std::lock_guard lock(m_disk->mutex);
  m_disk->SetCapacity(bytes);
}

bool MemoryFileSystem::SetReadOnly(std::u16string_view path, bool isReadOnly) {
  const std::lock_guard lock(m_disk->mutex);
  const std::optional<Place> place = m_disk->FindPlace(path);
  MemoryNode* node = place ? MemoryDisk::Find(*place) : nullptr;
  if (node == nullptr || node->isFolder) {
    return false;
  }
  node->isReadOnly = isReadOnly;
  return true;
}

bool MemoryFileSystem::PutFile(std::u16string_view path, std::span<const std::byte> bytes) {
  const std::lock_guard lock(m_disk->mutex);
  const std::optional<Place> place = m_disk->MakePlace(path);
  if (!place) {
    return false;
  }
  MemoryNode* node = MemoryDisk::Find(*place);
  if (node == nullptr) {
    node = &MemoryDisk::Add(*place, false);
  } else if (node->isFolder) {
    return false;
  }
  m_disk->Put(*node, bytes);
  return true;
}

std::optional<std::vector<std::byte>> MemoryFileSystem::GetFile(std::u16string_view path) const {
  const std::lock_guard lock(m_disk->mutex);
  const std::optional<Place> place = m_disk->FindPlace(path);
  const MemoryNode* node = place ? MemoryDisk::Find(*place) : nullptr;
  if (node == nullptr || node->isFolder) {
    return std::nullopt;
  }
  return node->bytes;
}

std::vector<std::u16string> MemoryFileSystem::ListFiles() const {
  const std::lock_guard lock(m_disk->mutex);
  return m_disk->ListFiles();
}

std::size_t MemoryFileSystem::CountOpenHandles() const {
  const std::lock_guard lock(m_disk->mutex);
  return m_disk->openHandles;
}

}  // namespace machine
