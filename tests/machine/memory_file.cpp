#include "tests/machine/memory_file.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace machine {

using platform::FileAccess;
using platform::FileError;

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

std::optional<std::uint64_t> MemoryFile::GetLength() {
  const std::lock_guard lock(m_disk->mutex);
  if (m_node == nullptr) {
    return std::nullopt;
  }
  return m_node->bytes.size();
}

FileError MemoryFile::Seek(std::uint64_t offset) {
  if (m_node == nullptr) {
    return FileError::kClosed;
  }
  m_position = offset;
  return FileError::kNone;
}

std::optional<std::size_t> MemoryFile::Read(std::span<std::byte> into) {
  const std::lock_guard lock(m_disk->mutex);
  if (m_node == nullptr ||
      (m_mode.access != FileAccess::kRead && m_mode.access != FileAccess::kReadWrite)) {
    return std::nullopt;
  }
  const std::uint64_t length = m_node->bytes.size();
  const std::uint64_t start = std::min(m_position, length);
  const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(into.size(), length - start));
  std::copy_n(m_node->bytes.begin() + static_cast<std::ptrdiff_t>(start), count, into.begin());
  m_position += count;
  return count;
}

FileError MemoryFile::CheckWritable() const {
  if (m_node == nullptr) {
    return FileError::kClosed;
  }
  return m_mode.access == FileAccess::kWrite || m_mode.access == FileAccess::kReadWrite
             ? FileError::kNone
             : FileError::kAccessDenied;
}

FileError MemoryFile::Write(std::span<const std::byte> bytes) {
  const std::lock_guard lock(m_disk->mutex);
  if (const FileError error = CheckWritable(); error != FileError::kNone) {
    return error;
  }
  const std::size_t count = m_disk->Write(*m_node, m_position, bytes);
  m_position += count;
  return count == bytes.size() ? FileError::kNone : FileError::kDiskFull;
}

FileError MemoryFile::SetLength(std::uint64_t length) {
  const std::lock_guard lock(m_disk->mutex);
  if (const FileError error = CheckWritable(); error != FileError::kNone) {
    return error;
  }
  return m_disk->Resize(*m_node, length) ? FileError::kNone : FileError::kDiskFull;
}

FileError MemoryFile::Flush() { return m_node == nullptr ? FileError::kClosed : FileError::kNone; }

FileError MemoryFile::Close() {
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
  return FileError::kNone;
}

}  // namespace machine
