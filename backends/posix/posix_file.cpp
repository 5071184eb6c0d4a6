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

using platform::Failure;
using platform::FileAccess;
using platform::FileError;
using platform::Result;

constexpr auto kMostBytes = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());

}  // namespace

Result<void, FileError> SyncFolder(const std::string& folder) {
  const Descriptor descriptor(
      Retry([&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
  if (!descriptor.IsOpen()) {
    return FailureFromErrno();
  }
  // Some file systems cannot do this for folders, and keep their entries in order by themselves.
  if (Retry([&] { return ::fsync(descriptor.Get()); }) == 0 || errno == EINVAL) {
    return {};
  }
  return FailureFromErrno();
}

Result<void, FileError> MakeFolder(const std::string& path) {
  if (::mkdir(path.c_str(), S_IRWXU) != 0) {
    return FailureFromErrno();
  }
  const Descriptor folder(
      Retry([&] { return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC); }));
  if (folder.IsOpen()) {
    // The umask may have left less to its owner.
    if (const auto set = SetRights(folder.Get(), S_IRWXU); !set) {
      return set;
    }
  }
  return SyncFolder(FolderOf(path));
}

Result<void, FileError> MakeFolders(const std::string& path) {
  for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
    const auto made = MakeFolder(path.substr(0, end));
    if (end == std::string::npos) {
      const bool isThere = made || made.error() == FileError::kAlreadyExists;
      return isThere ? Result<void, FileError>() : made;
    }
    // This process may pass a folder that it cannot write; then the next call reports it.
  }
}

PosixFile::PosixFile(LockedFile file, FileAccess access)
    : m_descriptor(std::move(file.descriptor)),
      m_access(access),
      m_unsyncedFolder(file.path.empty() ? std::string() : FolderOf(file.path)) {}

Result<std::uint64_t, FileError> PosixFile::GetLength() {
  if (!m_descriptor.IsOpen()) {
    return Failure(FileError::kClosed);
  }
  struct stat status {};
  if (::fstat(m_descriptor.Get(), &status) != 0) {
    return FailureFromErrno();
  }
  return static_cast<std::uint64_t>(status.st_size);
}

Result<void, FileError> PosixFile::Seek(std::uint64_t offset) {
  if (!m_descriptor.IsOpen()) {
    return Failure(FileError::kClosed);
  }
  m_position = offset;
  return {};
}

Result<std::size_t, FileError> PosixFile::Read(std::span<std::byte> into) {
  if (!m_descriptor.IsOpen()) {
    return Failure(FileError::kClosed);
  }
  if (m_access != FileAccess::kRead && m_access != FileAccess::kReadWrite) {
    return Failure(FileError::kAccessDenied);
  }
  std::size_t total = 0;
  while (total < into.size() && m_position < kMostBytes) {
    const auto most = static_cast<std::size_t>(
        std::min<std::uint64_t>(into.size() - total, kMostBytes - m_position));
    const ssize_t count = Retry([&] {
      return ::pread(m_descriptor.Get(), into.data() + total, most, static_cast<off_t>(m_position));
    });
    if (count < 0) {
      return FailureFromErrno();
    }
    if (count == 0) {
      break;
    }
    total += static_cast<std::size_t>(count);
    m_position += static_cast<std::uint64_t>(count);
  }
  return total;
}

Result<void, FileError> PosixFile::CheckWritable() const {
  if (!m_descriptor.IsOpen()) {
    return Failure(FileError::kClosed);
  }
  if (m_access != FileAccess::kWrite && m_access != FileAccess::kReadWrite) {
    return Failure(FileError::kAccessDenied);
  }
  return {};
}

Result<void, FileError> PosixFile::Write(std::span<const std::byte> bytes) {
  if (const auto writable = CheckWritable(); !writable) {
    return writable;
  }
  if (!bytes.empty() && (m_position > kMostBytes || bytes.size() > kMostBytes - m_position)) {
    return Failure(FileError::kDiskFull);
  }
  const SizeSignalHeld signalHeld;
  while (!bytes.empty()) {
    const ssize_t count = Retry([&] {
      return ::pwrite(m_descriptor.Get(), bytes.data(), bytes.size(),
                      static_cast<off_t>(m_position));
    });
    if (count < 0) {
      return FailureFromErrno();
    }
    if (count == 0) {
      return Failure(FileError::kDiskFull);
    }
    bytes = bytes.subspan(static_cast<std::size_t>(count));
    m_position += static_cast<std::uint64_t>(count);
  }
  return {};
}

Result<void, FileError> PosixFile::SetLength(std::uint64_t length) {
  if (const auto writable = CheckWritable(); !writable) {
    return writable;
  }
  if (length > kMostBytes) {
    return Failure(FileError::kDiskFull);
  }
  const SizeSignalHeld signalHeld;
  if (Retry([&] { return ::ftruncate(m_descriptor.Get(), static_cast<off_t>(length)); }) != 0) {
    return FailureFromErrno();
  }
  return {};
}

Result<void, FileError> PosixFile::Flush() {
  if (!m_descriptor.IsOpen()) {
    return Failure(FileError::kClosed);
  }
  if (Retry([&] { return ::fsync(m_descriptor.Get()); }) != 0) {
    return FailureFromErrno();
  }
  if (!m_unsyncedFolder.empty()) {
    if (const auto synced = SyncFolder(m_unsyncedFolder); !synced) {
      return synced;
    }
    m_unsyncedFolder.clear();
  }
  return {};
}

Result<void, FileError> PosixFile::Close() {
  if (!m_descriptor.IsOpen()) {
    return {};
  }
  // The descriptor is gone whatever the result, so the call is never repeated; interrupted is not
  // failed.
  if (::close(m_descriptor.Release()) != 0 && errno != EINTR) {
    return FailureFromErrno();
  }
  return {};
}

}  // namespace posix
