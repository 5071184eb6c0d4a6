#include "tests/machine/memory_disk.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "backends/text/names.h"

namespace machine {
namespace {

/// The names along one of the host's own paths, whose current folder is the root.
std::vector<std::u16string_view> SplitHostPath(std::u16string_view path) {
  std::vector<std::u16string_view> parts;
  if (path.find(u'\0') != std::u16string_view::npos) {
    return parts;
  }
  for (std::size_t start = 0; start < path.size();) {
    const std::size_t end = std::min(path.find(u'/', start), path.size());
    const std::u16string_view part = path.substr(start, end - start);
    if (part == u"..") {
      if (!parts.empty()) {
        parts.pop_back();
      }
    } else if (!part.empty() && part != u".") {
      parts.push_back(part);
    }
    start = end + 1;
  }
  return parts;
}

void AddFilesBelow(const MemoryNode& folder, const std::u16string& path, char16_t separator,
                   std::vector<std::u16string>& files) {
  for (const auto& [key, node] : folder.children) {
    const std::u16string nodePath = path + separator + node->name;
    if (node->isFolder) {
      AddFilesBelow(*node, nodePath, separator, files);
    } else {
      files.push_back(nodePath);
    }
  }
}

}  // namespace

std::optional<MemoryDisk::Place> MemoryDisk::FindPlace(std::u16string_view path) {
  return Walk(path, MissingFolders::kFail);
}

std::optional<MemoryDisk::Place> MemoryDisk::MakePlace(std::u16string_view path) {
  return Walk(path, MissingFolders::kMake);
}

std::optional<MemoryDisk::Place> MemoryDisk::Walk(std::u16string_view path,
                                                  MissingFolders missing) {
  const bool isDevicePath = text::IsDevicePath(path);
  const std::vector<std::u16string_view> parts =
      isDevicePath ? text::SplitDevicePath(path).value_or(std::vector<std::u16string_view>())
                   : SplitHostPath(path);
  if (parts.empty()) {
    return std::nullopt;
  }
  Place place{isDevicePath ? &m_device : &m_host, {}, {}};
  for (std::size_t i = 0;; ++i) {
    place.name = parts[i];
    place.key = isDevicePath ? text::FoldName(parts[i]) : place.name;
    if (i + 1 == parts.size()) {
      return place;
    }
    MemoryNode* folder = Find(place);
    if (folder == nullptr && missing == MissingFolders::kMake) {
      folder = &Add(place, true);
    }
    if (folder == nullptr || !folder->isFolder) {
      return std::nullopt;
    }
    place.folder = folder;
  }
}

MemoryNode* MemoryDisk::Find(const Place& place) {
  const auto found = place.folder->children.find(place.key);
  return found == place.folder->children.end() ? nullptr : found->second.get();
}

MemoryNode& MemoryDisk::Add(const Place& place, bool isFolder) {
  auto node = std::make_unique<MemoryNode>();
  node->name = place.name;
  node->isFolder = isFolder;
  return *(place.folder->children[place.key] = std::move(node));
}

void MemoryDisk::Remove(const Place& place) {
  m_used -= Find(place)->bytes.size();
  place.folder->children.erase(place.key);
}

void MemoryDisk::Publish(MemoryNode& file, const Place& to) {
  MemoryNode* target = Find(to);
  if (target == nullptr) {
    target = &Add(to, false);
  }
  m_used -= target->bytes.size();
  target->bytes = std::exchange(file.bytes, {});
  target->changes = ++m_changes;
}

std::uint64_t MemoryDisk::Room() const { return m_capacity - std::min(m_used, m_capacity); }

bool MemoryDisk::Resize(MemoryNode& file, std::uint64_t length) {
  const std::uint64_t before = file.bytes.size();
  if (length > before && length - before > Room()) {
    return false;
  }
  file.bytes.resize(static_cast<std::size_t>(length));
  m_used = m_used - before + length;
  file.changes = ++m_changes;
  return true;
}

std::size_t MemoryDisk::Write(MemoryNode& file, std::uint64_t offset,
                              std::span<const std::byte> bytes) {
  const std::uint64_t longest = file.bytes.size() + Room();
  if (bytes.empty() || offset >= longest) {
    return 0;
  }
  const auto count =
      static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), longest - offset));
  const std::uint64_t end = offset + count;
  if (end > file.bytes.size() && !Resize(file, end)) {
    return 0;
  }
  std::copy_n(bytes.begin(), count, file.bytes.begin() + static_cast<std::ptrdiff_t>(offset));
  file.changes = ++m_changes;
  return count;
}

void MemoryDisk::Put(MemoryNode& file, std::span<const std::byte> bytes) {
  m_used = m_used - file.bytes.size() + bytes.size();
  file.bytes.assign(bytes.begin(), bytes.end());
  file.changes = ++m_changes;
}

std::vector<std::u16string> MemoryDisk::ListFiles() const {
  std::vector<std::u16string> files;
  AddFilesBelow(m_device, {}, u'\\', files);
  AddFilesBelow(m_host, {}, u'/', files);
  return files;
}

using platform::Failure;
using platform::FileAccess;
using platform::FileError;
using platform::Result;

bool MayChange(const platform::OpenMode& mode) {
  return mode.access == FileAccess::kWrite || mode.access == FileAccess::kReadWrite ||
         mode.creation == platform::FileCreation::kCreateAlways;
}

bool GoesTogether(const platform::OpenMode& mode) {
  return mode.share == platform::FileShare::kRead && !MayChange(mode);
}

MemoryFile::MemoryFile(std::shared_ptr<MemoryDisk> disk, MemoryNode& node,
                       const platform::OpenMode& mode)
    : m_disk(std::move(disk)), m_node(&node), m_mode(mode) {
  ++m_disk->openHandles;
  if (GoesTogether(m_mode)) {
    ++m_node->readers;
  } else {
    m_node->isHeldAlone = true;
  }
}

MemoryFile::~MemoryFile() { static_cast<void>(MemoryFile::Close()); }

Result<std::uint64_t, FileError> MemoryFile::GetLength() {
  const std::lock_guard lock(m_disk->mutex);
  if (m_node == nullptr) {
    return Failure(FileError::kClosed);
  }
  return m_node->bytes.size();
}

std::optional<platform::FileVersion> MemoryFile::GetVersion() {
  const std::lock_guard lock(m_disk->mutex);
  if (m_node == nullptr) {
    return std::nullopt;
  }
  return platform::FileVersion{
      .length = m_node->bytes.size(), .changed = m_node->changes, .isSettled = true};
}

Result<void, FileError> MemoryFile::Seek(std::uint64_t offset) {
  if (m_node == nullptr) {
    return Failure(FileError::kClosed);
  }
  m_position = offset;
  return {};
}

Result<std::size_t, FileError> MemoryFile::Read(std::span<std::byte> into) {
  const std::lock_guard lock(m_disk->mutex);
  if (m_node == nullptr) {
    return Failure(FileError::kClosed);
  }
  if (m_mode.access != FileAccess::kRead && m_mode.access != FileAccess::kReadWrite) {
    return Failure(FileError::kAccessDenied);
  }
  const std::uint64_t length = m_node->bytes.size();
  const std::uint64_t start = std::min(m_position, length);
  const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(into.size(), length - start));
  std::copy_n(m_node->bytes.begin() + static_cast<std::ptrdiff_t>(start), count, into.begin());
  m_position += count;
  return count;
}

Result<void, FileError> MemoryFile::CheckWritable() const {
  if (m_node == nullptr) {
    return Failure(FileError::kClosed);
  }
  if (m_mode.access != FileAccess::kWrite && m_mode.access != FileAccess::kReadWrite) {
    return Failure(FileError::kAccessDenied);
  }
  return {};
}

Result<void, FileError> MemoryFile::Write(std::span<const std::byte> bytes) {
  const std::lock_guard lock(m_disk->mutex);
  if (const auto writable = CheckWritable(); !writable) {
    return writable;
  }
  const std::size_t count = m_disk->Write(*m_node, m_position, bytes);
  m_position += count;
  if (count < bytes.size()) {
    return Failure(FileError::kDiskFull);
  }
  return {};
}

Result<void, FileError> MemoryFile::SetLength(std::uint64_t length) {
  const std::lock_guard lock(m_disk->mutex);
  if (const auto writable = CheckWritable(); !writable) {
    return writable;
  }
  if (!m_disk->Resize(*m_node, length)) {
    return Failure(FileError::kDiskFull);
  }
  return {};
}

Result<void, FileError> MemoryFile::Flush() {
  if (m_node == nullptr) {
    return Failure(FileError::kClosed);
  }
  return {};
}

Result<void, FileError> MemoryFile::Close() {
  const std::lock_guard lock(m_disk->mutex);
  if (m_node != nullptr) {
    --m_disk->openHandles;
    if (GoesTogether(m_mode)) {
      --m_node->readers;
    } else {
      m_node->isHeldAlone = false;
    }
    m_node = nullptr;
  }
  return {};
}

}  // namespace machine
