#include "platform/posix/open_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <optional>

#include "platform/posix/errors.h"
#include "platform/posix/host_paths.h"

namespace posix {
namespace {

using platform::FileAccess;
using platform::FileCreation;
using platform::FileError;
using platform::OpenMode;

/// Never waits for the other end of a pipe, takes no terminal, and is not inherited by programs.
constexpr int kOpenFlags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

LockedFile Failure(FileError error) { return {Descriptor(), error, {}, false}; }
LockedFile FailureFromErrno() { return Failure(ToFileError(errno)); }

bool Writes(const OpenMode& mode) {
  return mode.access == FileAccess::kWrite || mode.access == FileAccess::kReadWrite;
}

bool Changes(const OpenMode& mode) {
  return Writes(mode) || mode.creation == FileCreation::kCreateAlways;
}

/// The mode bits and not the rights of the process, for to an administrator every file is writable.
bool IsProtected(const struct stat& status) {
  return (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

FileError CheckStatus(const struct stat& status, const OpenMode& mode) {
  return !S_ISREG(status.st_mode) || (Changes(mode) && IsProtected(status))
             ? FileError::kAccessDenied
             : FileError::kNone;
}

int AccessFlag(const OpenMode& mode) {
  // Emptying a file takes a descriptor that may write, also where the holder may not.
  const bool empties = mode.creation == FileCreation::kCreateAlways;
  switch (mode.access) {
    case FileAccess::kNone:
      return empties ? O_WRONLY : O_RDONLY;
    case FileAccess::kRead:
      return empties ? O_RDWR : O_RDONLY;
    case FileAccess::kWrite:
      return O_WRONLY;
    case FileAccess::kReadWrite:
      break;
  }
  return O_RDWR;
}

Descriptor OpenExisting(const std::string& path, const OpenMode& mode) {
  const auto open = [&](int access) {
    return Retry([&] { return ::open(path.c_str(), access | kOpenFlags); });
  };
  int descriptor = open(AccessFlag(mode));
  if (descriptor == -1 && errno == EACCES && mode.access == FileAccess::kNone) {
    descriptor = open(O_WRONLY);  // One that may be written but not read is there all the same.
  }
  return Descriptor(descriptor);
}

/// False only where another holder is in the way.
bool Lock(int descriptor, const OpenMode& mode) {
  const bool isShared = mode.share == platform::FileShare::kRead && !Changes(mode);
  const int operation = (isShared ? LOCK_SH : LOCK_EX) | LOCK_NB;
  return Retry([&] { return ::flock(descriptor, operation); }) == 0 || errno != EWOULDBLOCK;
}

/// One attempt; nothing where the file at `path` was made or swapped by another process meanwhile.
std::optional<LockedFile> TryOpenLocked(const std::string& path, const OpenMode& mode) {
  std::optional<std::string> target = FollowLinks(path);
  if (!target) {
    return FailureFromErrno();
  }
  // Looked at before it is opened, since opening a device can have effects of its own.
  struct stat status {};
  const bool isThere = ::stat(target->c_str(), &status) == 0;
  if (isThere) {
    if (const FileError error = CheckStatus(status, mode); error != FileError::kNone) {
      return Failure(error);
    }
  } else if (errno != ENOENT || mode.creation == FileCreation::kOpenExisting) {
    return FailureFromErrno();
  }
  LockedFile file{Descriptor(), FileError::kNone, std::move(*target), !isThere};
  if (isThere) {
    file.descriptor = OpenExisting(file.path, mode);
  } else {
    const int flags = AccessFlag(mode) | kOpenFlags | O_CREAT | O_EXCL;
    file.descriptor = Descriptor(Retry([&] { return ::open(file.path.c_str(), flags, 0666); }));
  }
  if (!file.descriptor.IsOpen()) {
    if (errno == (isThere ? ENOENT : EEXIST)) {
      return std::nullopt;
    }
    return FailureFromErrno();
  }
  if (::fstat(file.descriptor.Get(), &status) != 0) {
    return FailureFromErrno();
  }
  if (const FileError error = CheckStatus(status, mode); isThere && error != FileError::kNone) {
    return Failure(error);
  }
  if (!Lock(file.descriptor.Get(), mode)) {
    return Failure(FileError::kSharingViolation);
  }
  struct stat current {};
  if (::stat(file.path.c_str(), &current) != 0 || !IsSameFile(status, current)) {
    return std::nullopt;
  }
  // Emptied only now that no other holder can be in the middle of it.
  if (mode.creation == FileCreation::kCreateAlways && isThere &&
      Retry([&] { return ::ftruncate(file.descriptor.Get(), 0); }) != 0) {
    return FailureFromErrno();
  }
  return file;
}

}  // namespace

LockedFile OpenLocked(const std::string& path, const OpenMode& mode) {
  constexpr int kMostAttempts = 100;
  for (int i = 0; i < kMostAttempts; ++i) {
    if (std::optional<LockedFile> file = TryOpenLocked(path, mode)) {
      return std::move(*file);
    }
  }
  return Failure(FileError::kSharingViolation);
}

LockedFile OpenForRemoval(const std::string& path) {
  LockedFile file = OpenLocked(
      path, {FileAccess::kNone, platform::FileShare::kNone, FileCreation::kOpenExisting});
  if (file.error != FileError::kNone) {
    return file;
  }
  struct stat status {};
  if (::fstat(file.descriptor.Get(), &status) != 0) {
    return FailureFromErrno();
  }
  return IsProtected(status) ? Failure(FileError::kAccessDenied) : std::move(file);
}

bool IsSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

}  // namespace posix
