#include "tests/machine/memory_file.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace machine {

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
