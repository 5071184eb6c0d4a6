#include "backends/posix/posix_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <limits>

#include "backends/posix/errors.h"
#include "backends/posix/host_paths.h"
#include "backends/posix/size_signal.h"

namespace posix {
namespace {

using platform::FileAccess;
using platform::FileError;

constexpr auto kMostBytes = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());

}  // namespace

FileError SyncFolder(const std::string& folder) {
  const Descriptor descriptor(
      Retry([&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
  if (!descriptor.IsOpen()) {
    return ToFileError(errno);
  }
  // Some file systems cannot do this for folders, and keep their entries in order by themselves.
  if (Retry([&] { return ::fsync(descriptor.Get()); }) == 0 || errno == EINVAL) {
    return FileError::kNone;
  }
  return ToFileError(errno);
}

FileError MakeFolder(const std::string& path) {
  if (::mkdir(path.c_str(), S_IRWXU) != 0) {
    return ToFileError(errno);
  }
  const Descriptor folder(
      Retry([&] { return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC); }));
  if (folder.IsOpen()) {
    // The umask may have left less to its owner.
    if (const FileError error = SetRights(folder.Get(), S_IRWXU); error != FileError::kNone) {
      return error;
    }
  }
  return SyncFolder(FolderOf(path));
}

FileError MakeFolders(const std::string& path) {
  for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
    const FileError error = MakeFolder(path.substr(0, end));
    if (end == std::string::npos) {
      return error == FileError::kAlreadyExists ? FileError::kNone : error;
    }
    // This process may pass a folder that it cannot write; then the next call reports it.
  }
}

PosixFile::PosixFile(LockedFile file, FileAccess access)
    : m_descriptor(std::move(file.descriptor)),
      m_access(access),
      m_unsyncedFolder(file.path.empty() ? std::string() : FolderOf(file.path)) {}

std::optional<std::uint64_t> PosixFile::GetLength() {
  struct stat status {};
  if (!m_descriptor.IsOpen() || ::fstat(m_descriptor.Get(), &status) != 0) {
    return std::nullopt;
  }
  return static_cast<std::uint64_t>(status.st_size);
}

FileError PosixFile::Seek(std::uint64_t offset) {
  if (!m_descriptor.IsOpen()) {
    return FileError::kClosed;
  }
  m_position = offset;
  return FileError::kNone;
}

std::optional<std::size_t> PosixFile::Read(std::span<std::byte> into) {
  if (!m_descriptor.IsOpen() ||
      (m_access != FileAccess::kRead && m_access != FileAccess::kReadWrite)) {
    return std::nullopt;
  }
  std::size_t total = 0;
  while (total < into.size() && m_position < kMostBytes) {
    const auto most = static_cast<std::size_t>(
        std::min<std::uint64_t>(into.size() - total, kMostBytes - m_position));
    const ssize_t count = Retry([&] {
      return ::pread(m_descriptor.Get(), into.data() + total, most, static_cast<off_t>(m_position));
    });
    if (count < 0) {
      return std::nullopt;
    }
    if (count == 0) {
      break;
    }
    total += static_cast<std::size_t>(count);
    m_position += static_cast<std::uint64_t>(count);
  }
  return total;
}

FileError PosixFile::CheckWritable() const {
  if (!m_descriptor.IsOpen()) {
    return FileError::kClosed;
  }
  return m_access == FileAccess::kWrite || m_access == FileAccess::kReadWrite
             ? FileError::kNone
             : FileError::kAccessDenied;
}

FileError PosixFile::Write(std::span<const std::byte> bytes) {
  if (const FileError error = CheckWritable(); error != FileError::kNone) {
    return error;
  }
  if (!bytes.empty() && (m_position > kMostBytes || bytes.size() > kMostBytes - m_position)) {
    return FileError::kDiskFull;
  }
  const SizeSignalHeld signalHeld;
  while (!bytes.empty()) {
    const ssize_t count = Retry([&] {
      return ::pwrite(m_descriptor.Get(), bytes.data(), bytes.size(),
                      static_cast<off_t>(m_position));
    });
    if (count < 0) {
      return ToFileError(errno);
    }
    if (count == 0) {
      return FileError::kDiskFull;
    }
    bytes = bytes.subspan(static_cast<std::size_t>(count));
    m_position += static_cast<std::uint64_t>(count);
  }
  return FileError::kNone;
}

FileError PosixFile::SetLength(std::uint64_t length) {
  if (const FileError error = CheckWritable(); error != FileError::kNone) {
    return error;
  }
  if (length > kMostBytes) {
    return FileError::kDiskFull;
  }
  const SizeSignalHeld signalHeld;
  return Retry([&] { return ::ftruncate(m_descriptor.Get(), static_cast<off_t>(length)); }) == 0
             ? FileError::kNone
             : ToFileError(errno);
}

FileError PosixFile::Flush() {
  if (!m_descriptor.IsOpen()) {
    return FileError::kClosed;
  }
  if (Retry([&] { return ::fsync(m_descriptor.Get()); }) != 0) {
    return ToFileError(errno);
  }
  if (!m_unsyncedFolder.empty()) {
    if (const FileError error = SyncFolder(m_unsyncedFolder); error != FileError::kNone) {
      return error;
    }
    m_unsyncedFolder.clear();
  }
  return FileError::kNone;
}

FileError PosixFile::Close() {
  if (!m_descriptor.IsOpen()) {
    return FileError::kNone;
  }
  // The descriptor is gone whatever the result, so the call is never repeated; interrupted is not
  // failed.
  if (::close(m_descriptor.Release()) != 0 && errno != EINTR) {
    return ToFileError(errno);
  }
  return FileError::kNone;
}

}  // namespace posix
