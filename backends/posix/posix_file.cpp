#include "backends/posix/posix_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <ctime>
#include <limits>

#include "backends/posix/host_paths.h"
#include "backends/posix/system_calls.h"

namespace posix {
namespace {

using platform::Failure;
using platform::FileAccess;
using platform::FileError;
using platform::Result;

constexpr auto kMostBytes = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());

bool IsPending(int signal) {
  sigset_t pending{};
  return ::sigpending(&pending) == 0 && ::sigismember(&pending, signal) == 1;
}

/// Holds back SIGXFSZ on this thread. The signal would end the process if a file outgrows the limit
/// of the user; now the call that wrote reports the error instead. The rest of the process keeps
/// its own way with the signal.
class SizeSignalHeld {
 public:
  SizeSignalHeld() {
    ::sigemptyset(&m_signal);
    ::sigaddset(&m_signal, SIGXFSZ);
    ::pthread_sigmask(SIG_BLOCK, &m_signal, &m_before);
    m_wasPending = IsPending(SIGXFSZ);
  }
  SizeSignalHeld(const SizeSignalHeld&) = delete;
  SizeSignalHeld& operator=(const SizeSignalHeld&) = delete;
  ~SizeSignalHeld() {
    const int savedErrno = errno;
    // A signal that came before belongs to somebody else. One that came since is taken away.
    if (!m_wasPending && IsPending(SIGXFSZ)) {
      const timespec noWait{};
      while (::sigtimedwait(&m_signal, nullptr, &noWait) == -1 && errno == EINTR) {
      }
    }
    ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    errno = savedErrno;
  }

 private:
  sigset_t m_signal{};
  sigset_t m_before{};
  bool m_wasPending = false;
};

std::int64_t ToNanoseconds(const timespec& time) {
  constexpr std::int64_t kNanosecondsOfSecond = 1'000'000'000;
  return std::int64_t{time.tv_sec} * kNanosecondsOfSecond + time.tv_nsec;
}

/// Returns whether a change from now on will have another time than `changed`. The system takes the
/// time of files from its coarse clock, which goes in steps of some milliseconds. A time of whole
/// seconds may be of a file system that keeps nothing finer, and no coarser one than two seconds is
/// in use.
bool IsSettledTime(const timespec& changed) {
  constexpr std::int64_t kCoarsestStep = 2'000'000'000;
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME_COARSE, &now);
  const std::int64_t step = changed.tv_nsec == 0 ? kCoarsestStep : 0;
  return ToNanoseconds(now) > ToNanoseconds(changed) + step;
}

}  // namespace

// The position is kept here and not by the system: pread and pwrite leave the descriptor's own
// offset alone. So a gap after the end, or a position after the end of a cut file, needs no care.

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

std::optional<platform::FileVersion> PosixFile::GetVersion() {
  struct stat status {};
  if (!m_descriptor.IsOpen() || ::fstat(m_descriptor.Get(), &status) != 0) {
    return std::nullopt;
  }
  return platform::FileVersion{.medium = status.st_dev,
                               .file = status.st_ino,
                               .length = static_cast<std::uint64_t>(status.st_size),
                               .written = ToNanoseconds(status.st_mtim),
                               .changed = ToNanoseconds(status.st_ctim),
                               .isSettled = IsSettledTime(status.st_ctim)};
}

Result<void, FileError> PosixFile::Seek(std::uint64_t offset) {
  if (!m_descriptor.IsOpen()) {
    return Failure(FileError::kClosed);
  }
  // A place after the end is allowed, as on the device: a write there fills the gap with zeros.
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
  // The name of a new file is an entry of its folder, and is on the medium only when the folder is.
  // Once is enough, since the name does not change.
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
