#include "backends/posix/open_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <optional>

#include "backends/posix/errors.h"
#include "backends/posix/host_paths.h"

namespace posix {
namespace {

using platform::FileAccess;
using platform::FileCreation;
using platform::FileError;
using platform::OpenMode;

/// Never waits for the other end of a pipe, takes no terminal, and is not inherited by programs.
constexpr int kOpenFlags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

LockedFile Failure(FileError error) { return {Descriptor(), error, {}}; }
LockedFile FailureFromErrno() { return Failure(ToFileError(errno)); }

bool Writes(const OpenMode& mode) {
  return mode.access == FileAccess::kWrite || mode.access == FileAccess::kReadWrite;
}

/// Whether a link at the end of the path is refused.
bool RefusesLinks(const OpenMode& mode) {
  return Writes(mode) || mode.creation != FileCreation::kOpenExisting;
}

bool Changes(const OpenMode& mode) {
  return Writes(mode) || mode.creation == FileCreation::kCreateAlways;
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

Descriptor OpenExisting(const std::string& path, const OpenMode& mode, int flags) {
  const auto open = [&](int access) {
    return Retry([&] { return ::open(path.c_str(), access | flags); });
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

/// Whether there is a file that may be opened so; kNotFound also if it is to be made.
FileError Look(const std::string& path, const OpenMode& mode, bool refusesLinks,
               struct stat& status) {
  if (::fstatat(AT_FDCWD, path.c_str(), &status, refusesLinks ? AT_SYMLINK_NOFOLLOW : 0) != 0) {
    return ToFileError(errno);
  }
  if (mode.creation == FileCreation::kCreateNew) {
    return FileError::kAlreadyExists;
  }
  return S_ISLNK(status.st_mode) ? FileError::kLink : CheckStatus(status, mode);
}

Descriptor OpenOrMake(const std::string& path, const OpenMode& mode, bool isThere) {
  const int flags = RefusesLinks(mode) ? kOpenFlags | O_NOFOLLOW : kOpenFlags;
  return isThere ? OpenExisting(path, mode, flags) : Descriptor(Retry([&] {
    return ::open(path.c_str(), AccessFlag(mode) | flags | O_CREAT | O_EXCL, kOwnerFile);
  }));
}

/// Sees to the rights of a file that was opened, and empties it if its mode says so.
FileError Prepare(int descriptor, const struct stat& status, const OpenMode& mode, Others others,
                  bool isThere) {
  const bool tightens = others == Others::kLoseRights && Changes(mode);
  if (!isThere || tightens) {
    const FileError error = SetRights(descriptor, isThere ? status.st_mode & S_IRWXU : kOwnerFile);
    if (error != FileError::kNone) {
      return error;
    }
  }
  const bool empties = mode.creation == FileCreation::kCreateAlways;
  return empties && Retry([&] { return ::ftruncate(descriptor, 0); }) != 0 ? ToFileError(errno)
                                                                           : FileError::kNone;
}

/// One attempt; nothing where the file at `path` was made or swapped by another process meanwhile.
std::optional<LockedFile> TryOpenLocked(const std::string& path, const OpenMode& mode,
                                        Others others) {
  const bool refusesLinks = RefusesLinks(mode);
  std::optional<std::string> target = refusesLinks ? path : FollowLinks(path);
  if (!target) {
    return FailureFromErrno();
  }
  // Looked at before it is opened, since opening a device can have effects of its own.
  struct stat status {};
  const FileError seen = Look(*target, mode, refusesLinks, status);
  const bool isThere = seen == FileError::kNone;
  const bool isToBeMade = seen == FileError::kNotFound && errno == ENOENT &&
                          mode.creation != FileCreation::kOpenExisting;
  if (!isThere && !isToBeMade) {
    return Failure(seen);
  }
  LockedFile file{OpenOrMake(*target, mode, isThere), FileError::kNone, std::move(*target)};
  if (!file.descriptor.IsOpen()) {
    const bool isSwapped =
        isThere ? errno == ENOENT || (refusesLinks && errno == ELOOP) : errno == EEXIST;
    return isSwapped ? std::nullopt : std::optional(FailureFromErrno());
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
  // Only now that no other holder can be in the middle of it.
  const FileError error = Prepare(file.descriptor.Get(), status, mode, others, isThere);
  return error == FileError::kNone ? std::move(file) : Failure(error);
}

}  // namespace

LockedFile OpenLocked(const std::string& path, const OpenMode& mode, Others others) {
  constexpr int kMostAttempts = 100;
  for (int i = 0; i < kMostAttempts; ++i) {
    if (std::optional<LockedFile> file = TryOpenLocked(path, mode, others)) {
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

bool IsProtected(const struct stat& status) {
  return (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

FileError SetRights(int descriptor, mode_t rights) {
  constexpr mode_t kAllRights = S_IRWXU | S_IRWXG | S_IRWXO;
  struct stat status {};
  if (::fstat(descriptor, &status) != 0) {
    return ToFileError(errno);
  }
  if ((status.st_mode & kAllRights) == rights || ::fchmod(descriptor, rights) == 0 ||
      errno == EPERM || errno == EOPNOTSUPP) {
    return FileError::kNone;
  }
  return ToFileError(errno);
}

bool IsSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

}  // namespace posix
