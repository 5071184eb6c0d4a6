#include "tests/machine/memory_file_system.h"

#include <mutex>
#include <utility>

#include "backends/text/names.h"
#include "tests/machine/memory_file.h"

namespace machine {
namespace {

using platform::FileCreation;
using platform::FileError;
using platform::FoundFile;
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

  [[nodiscard]] FileError Next(FoundFile& found) override {
    if (m_next == m_found.size()) {
      return FileError::kNoMoreFiles;
    }
    found = m_found[m_next++];
    return FileError::kNone;
  }

 private:
  const std::shared_ptr<MemoryDisk> m_disk;
  const std::vector<FoundFile> m_found;
  std::size_t m_next = 0;
};

/// Whether a file that exists may be opened so.
FileError CheckOpen(const MemoryNode& node, const platform::OpenMode& mode) {
  if (node.isFolder || (MayChange(mode) && node.isReadOnly)) {
    return FileError::kAccessDenied;
  }
  const bool conflicts = node.isHeldAlone || (node.readers != 0 && !GoesTogether(mode));
  return conflicts ? FileError::kSharingViolation : FileError::kNone;
}

/// Whether the file at a place may be taken away.
FileError CheckRemove(const MemoryNode* node) {
  if (node == nullptr) {
    return FileError::kNotFound;
  }
  if (node->isFolder || node->isReadOnly) {
    return FileError::kAccessDenied;
  }
  return node->IsHeld() ? FileError::kSharingViolation : FileError::kNone;
}

/// Whether a replacement may take a place as it is now.
FileError CheckReplace(const std::optional<Place>& place) {
  if (!place) {
    return FileError::kNotFound;
  }
  const FileError error = CheckRemove(MemoryDisk::Find(*place));
  return error == FileError::kNotFound ? FileError::kNone : error;
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

  [[nodiscard]] FileError Publish(platform::Durability) override {
    {
      const std::lock_guard lock(m_disk->mutex);
      if (!m_node.IsHeld()) {
        return FileError::kClosed;
      }
      const std::optional<Place> place = m_disk->FindPlace(m_path);
      if (const FileError error = CheckReplace(place); error != FileError::kNone) {
        return error;
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

platform::OpenedFile MemoryFileSystem::Open(std::u16string_view path,
                                            const platform::OpenMode& mode) {
  const std::lock_guard lock(m_disk->mutex);
  const std::optional<Place> place = m_disk->FindPlace(path);
  if (!place) {
    return {nullptr, FileError::kNotFound};
  }
  MemoryNode* node = MemoryDisk::Find(*place);
  if (node == nullptr) {
    if (mode.creation == FileCreation::kOpenExisting) {
      return {nullptr, FileError::kNotFound};
    }
    node = &MemoryDisk::Add(*place, false);
  } else if (mode.creation == FileCreation::kCreateNew) {
    return {nullptr, FileError::kAlreadyExists};
  } else if (const FileError error = CheckOpen(*node, mode); error != FileError::kNone) {
    return {nullptr, error};
  }
  if (mode.creation == FileCreation::kCreateAlways) {
    static_cast<void>(m_disk->Resize(*node, 0));
  }
  return {std::make_unique<MemoryFile>(m_disk, *node, mode), FileError::kNone};
}

platform::OpenedReplacement MemoryFileSystem::OpenReplacement(std::u16string_view path) {
  const std::lock_guard lock(m_disk->mutex);
  const FileError error = CheckReplace(m_disk->FindPlace(path));
  if (error != FileError::kNone && error != FileError::kSharingViolation) {
    return {nullptr, error};
  }
  return {std::make_unique<MemoryReplacement>(m_disk, path), FileError::kNone};
}

FileError MemoryFileSystem::Delete(std::u16string_view path) {
  const std::lock_guard lock(m_disk->mutex);
  const std::optional<Place> place = m_disk->FindPlace(path);
  const FileError error = CheckRemove(place ? MemoryDisk::Find(*place) : nullptr);
  if (error == FileError::kNone) {
    m_disk->Remove(*place);
  }
  return error;
}

FileError MemoryFileSystem::CreateFolder(std::u16string_view path) {
  const std::lock_guard lock(m_disk->mutex);
  const std::optional<Place> place = m_disk->FindPlace(path);
  if (!place) {
    return FileError::kNotFound;
  }
  if (MemoryDisk::Find(*place) != nullptr) {
    return FileError::kAlreadyExists;
  }
  MemoryDisk::Add(*place, true);
  return FileError::kNone;
}

FileError MemoryFileSystem::FlushFolder(std::u16string_view path) {
  const std::lock_guard lock(m_disk->mutex);
  const std::optional<Place> place = m_disk->FindPlace(path);
  const MemoryNode* node = place ? MemoryDisk::Find(*place) : nullptr;
  const bool isFolder = path == u"\\" || (node != nullptr && node->isFolder);
  return isFolder ? FileError::kNone : FileError::kNotFound;
}

platform::StartedSearch MemoryFileSystem::FindFirst(std::u16string_view pattern) {
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
    return {nullptr, {}, FileError::kNotFound};
  }
  platform::StartedSearch started{nullptr, found.front(), FileError::kNone};
  found.erase(found.begin());
  started.search = std::make_unique<MemorySearch>(m_disk, std::move(found));
  return started;
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
