// How a file is opened: by which name, with which rights and under which lock.
//
// The system has no share modes. A holder is known by an advisory lock (flock) on the open file,
// and that cannot be taken in the step that opens it. So each opening is an attempt in five steps:
// look at the name, open it, check that it is still what was seen, lock it, and check that the name
// still leads to the locked file. If another process swapped the file in between, the attempt is
// made again. Only then is a file emptied, or are its rights changed: nobody else is in the middle
// of it.

#include "backends/posix/posix_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <optional>

#include "backends/posix/host_paths.h"
#include "backends/posix/system_calls.h"

namespace posix {
namespace {

using platform::Failure;
using platform::FileAccess;
using platform::FileCreation;
using platform::FileError;
using platform::OpenMode;
using platform::Result;

/// Never waits for the other end of a pipe, takes no terminal, and is not inherited by programs.
constexpr int kOpenFlags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

bool Writes(const OpenMode& mode) {
  return mode.access == FileAccess::kWrite || mode.access == FileAccess::kReadWrite;
}

/// Whether a link at the end of the path is refused.
bool RefusesLinks(const OpenMode& mode) {
  return Writes(mode) || mode.creation != FileCreation::kOpenExisting;
}

/// Whether opening alone changes the file, or the holder may.
bool Changes(const OpenMode& mode) {
  return Writes(mode) || mode.creation == FileCreation::kCreateAlways;
}

Result<void, FileError> CheckStatus(const struct stat& status, const OpenMode& mode) {
  if (!S_ISREG(status.st_mode) || (Changes(mode) && IsProtected(status))) {
    return Failure(FileError::kAccessDenied);
  }
  return {};
}

/// What the system is asked for. What the holder may do is PosixFile's to check.
int AccessFlag(const OpenMode& mode) {
  // Emptying a file takes a descriptor that may write, even if the holder may not.
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

/// Returns false only if another holder is in the way.
bool Lock(int descriptor, const OpenMode& mode) {
  // A reader that shares is one of many. Everybody else wants to be alone with the file.
  const bool isShared = mode.share == platform::FileShare::kRead && !Changes(mode);
  const int operation = (isShared ? LOCK_SH : LOCK_EX) | LOCK_NB;
  return Retry([&] { return ::flock(descriptor, operation); }) == 0 || errno != EWOULDBLOCK;
}

/// Fails if there is no file that may be opened so: with kNotFound also if it is to be made.
Result<void, FileError> Look(const std::string& path, const OpenMode& mode, bool refusesLinks) {
  struct stat status {};
  if (::fstatat(AT_FDCWD, path.c_str(), &status, refusesLinks ? AT_SYMLINK_NOFOLLOW : 0) != 0) {
    return FailureFromErrno();
  }
  if (mode.creation == FileCreation::kCreateNew) {
    return Failure(FileError::kAlreadyExists);
  }
  if (S_ISLNK(status.st_mode)) {
    return Failure(FileError::kLink);
  }
  return CheckStatus(status, mode);
}

Descriptor OpenOrMake(const std::string& path, const OpenMode& mode, bool isThere) {
  const int flags = RefusesLinks(mode) ? kOpenFlags | O_NOFOLLOW : kOpenFlags;
  // A new file is made by O_EXCL, so that of two who make it at the same time only one succeeds.
  return isThere ? OpenExisting(path, mode, flags) : Descriptor(Retry([&] {
    return ::open(path.c_str(), AccessFlag(mode) | flags | O_CREAT | O_EXCL, kOwnerFile);
  }));
}

/// Sees to the rights of a file that was opened, and empties it if its mode says so.
Result<void, FileError> Prepare(int descriptor, const struct stat& status, const OpenMode& mode,
                                Others others, bool isThere) {
  const bool tightens = others == Others::kLoseRights && Changes(mode);
  if (!isThere || tightens) {
    const auto set = SetRights(descriptor, isThere ? status.st_mode & S_IRWXU : kOwnerFile);
    if (!set) {
      return set;
    }
  }
  const bool empties = mode.creation == FileCreation::kCreateAlways;
  if (empties && Retry([&] { return ::ftruncate(descriptor, 0); }) != 0) {
    return FailureFromErrno();
  }
  return {};
}

/// One attempt. Returns nothing if another process made or swapped the file at `path` meanwhile.
std::optional<Result<LockedFile, FileError>> TryOpenLocked(const std::string& path,
                                                           const OpenMode& mode, Others others) {
  const bool refusesLinks = RefusesLinks(mode);
  auto target = refusesLinks ? path : FollowLinks(path);
  if (!target) {
    return Failure(target.error());
  }
  // Looked at before it is opened, since opening a device can have effects of its own.
  const auto seen = Look(*target, mode, refusesLinks);
  const bool isThere = seen.has_value();
  const bool isToBeMade = !isThere && seen.error() == FileError::kNotFound && errno == ENOENT &&
                          mode.creation != FileCreation::kOpenExisting;
  if (!isThere && !isToBeMade) {
    return Failure(seen.error());
  }
  LockedFile file{OpenOrMake(*target, mode, isThere), std::move(*target)};
  if (!file.descriptor.IsOpen()) {
    // What was there is gone or became a link, or what was not there has come.
    const bool isSwapped =
        isThere ? errno == ENOENT || (refusesLinks && errno == ELOOP) : errno == EEXIST;
    if (isSwapped) {
      return std::nullopt;
    }
    return FailureFromErrno();
  }
  struct stat status {};
  if (::fstat(file.descriptor.Get(), &status) != 0) {
    return FailureFromErrno();
  }
  if (const auto checked = CheckStatus(status, mode); isThere && !checked) {
    return Failure(checked.error());
  }
  if (!Lock(file.descriptor.Get(), mode)) {
    return Failure(FileError::kSharingViolation);
  }
  struct stat current {};
  // The lock is on the file and not on its name. If the name leads elsewhere by now, the lock keeps
  // nobody away from what others would open.
  if (::stat(file.path.c_str(), &current) != 0 || !IsSameFile(status, current)) {
    return std::nullopt;
  }
  // Only now that no other holder can be in the middle of it.
  if (const auto prepared = Prepare(file.descriptor.Get(), status, mode, others, isThere);
      !prepared) {
    return Failure(prepared.error());
  }
  return file;
}

}  // namespace

Result<LockedFile, FileError> OpenLocked(const std::string& path, const OpenMode& mode,
                                         Others others) {
  constexpr int kMostAttempts = 100;
  for (int i = 0; i < kMostAttempts; ++i) {
    // An attempt fails so only if another process was quicker. Many in a row mean that others use
    // the file all the time.
    if (auto file = TryOpenLocked(path, mode, others)) {
      return std::move(*file);
    }
  }
  return Failure(FileError::kSharingViolation);
}

Result<LockedFile, FileError> OpenForRemoval(const std::string& path) {
  auto file = OpenLocked(
      path, {FileAccess::kNone, platform::FileShare::kNone, FileCreation::kOpenExisting});
  if (!file) {
    return file;
  }
  struct stat status {};
  if (::fstat(file->descriptor.Get(), &status) != 0) {
    return FailureFromErrno();
  }
  if (IsProtected(status)) {
    return Failure(FileError::kAccessDenied);
  }
  return file;
}

}  // namespace posix
