#include "platform/posix/replace_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <span>

#include "platform/posix/errors.h"
#include "platform/posix/host_paths.h"
#include "platform/posix/open_file.h"
#include "platform/posix/posix_file.h"
#include "platform/posix/size_signal.h"

namespace posix {
namespace {

using platform::FileAccess;
using platform::FileCreation;
using platform::FileError;
using platform::FileShare;

constexpr mode_t kRights = S_IRWXU | S_IRWXG | S_IRWXO;

FileError ToResult(int returned) { return returned == 0 ? FileError::kNone : ToFileError(errno); }

/// Gives a file the permissions and, as far as the process may, the owner of another. What is the
/// same already is left alone, for not every file system can set it.
FileError TakeOver(int descriptor, const struct stat& other) {
  struct stat own {};
  if (::fstat(descriptor, &own) != 0) {
    return ToFileError(errno);
  }
  // Only an administrator may give a file away; anyone else owns both or leaves it.
  if ((own.st_uid != other.st_uid || own.st_gid != other.st_gid) &&
      ::fchown(descriptor, other.st_uid, other.st_gid) != 0) {
    static_cast<void>(::fchown(descriptor, static_cast<uid_t>(-1), other.st_gid) == 0);
  }
  const mode_t permissions = other.st_mode & kRights;
  return (own.st_mode & kRights) == permissions ? FileError::kNone
                                                : ToResult(::fchmod(descriptor, permissions));
}

FileError WriteAll(int descriptor, std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = Retry([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
    if (count < 0) {
      return ToFileError(errno);
    }
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return FileError::kNone;
}

FileError CopyBytes(int from, int to) {
  const SizeSignalHeld signalHeld;
  std::array<std::byte, 65536> buffer;
  for (off_t offset = 0;;) {
    const ssize_t count =
        Retry([&] { return ::pread(from, buffer.data(), buffer.size(), offset); });
    if (count <= 0) {
      return ToResult(static_cast<int>(count));
    }
    const auto length = static_cast<std::size_t>(count);
    if (const FileError error = WriteAll(to, std::span(buffer).first(length));
        error != FileError::kNone) {
      return error;
    }
    offset += count;
  }
}

/// Renaming does not reach another file system: there a copy beside `to` takes its place, and
/// `from` goes when that is on the medium.
FileError ReplaceByCopy(int source, const std::string& from, const std::string& to) {
  std::string copyPath = to + ".XXXXXX";
  const Descriptor copy(::mkostemp(copyPath.data(), O_CLOEXEC));
  if (!copy.IsOpen()) {
    return ToFileError(errno);
  }
  struct stat status {};
  FileError error = ToResult(::fstat(source, &status));
  if (error == FileError::kNone) {
    error = CopyBytes(source, copy.Get());
  }
  if (error == FileError::kNone) {
    error = TakeOver(copy.Get(), status);
  }
  if (error == FileError::kNone) {
    error = ToResult(Retry([&] { return ::fsync(copy.Get()); }));
  }
  if (error == FileError::kNone) {
    error = ToResult(::rename(copyPath.c_str(), to.c_str()));
  }
  if (error != FileError::kNone) {
    ::unlink(copyPath.c_str());
    return error;
  }
  error = SyncFolder(FolderOf(to));
  return error == FileError::kNone ? ToResult(::unlink(from.c_str())) : error;
}

/// Moves an opened and flushed `from` to `to`, with both on the medium at the end.
FileError Move(int source, const std::string& from, const std::string& to) {
  if (::rename(from.c_str(), to.c_str()) != 0) {
    return errno == EXDEV ? ReplaceByCopy(source, from, to) : ToFileError(errno);
  }
  const std::string folder = FolderOf(to);
  const std::string earlierFolder = FolderOf(from);
  if (const FileError error = SyncFolder(folder); error != FileError::kNone) {
    return error;
  }
  return folder == earlierFolder ? FileError::kNone : SyncFolder(earlierFolder);
}

bool AreSameFile(const std::string& a, const std::string& b) {
  struct stat statusA {};
  struct stat statusB {};
  return ::stat(a.c_str(), &statusA) == 0 && ::stat(b.c_str(), &statusB) == 0 &&
         IsSameFile(statusA, statusB);
}

}  // namespace

FileError ReplaceFile(const std::string& from, const std::string& to) {
  if (AreSameFile(from, to)) {
    return FileError::kNone;
  }
  const LockedFile source =
      OpenLocked(from, {FileAccess::kRead, FileShare::kNone, FileCreation::kOpenExisting});
  if (source.error != FileError::kNone) {
    return source.error;
  }
  // Held until the end, so that nobody opens the earlier file while it goes.
  const LockedFile earlier = OpenForRemoval(to);
  if (earlier.error != FileError::kNone && earlier.error != FileError::kNotFound) {
    return earlier.error;
  }
  std::string target = earlier.path;
  if (earlier.error == FileError::kNone) {
    struct stat status {};
    FileError error = ToResult(::fstat(earlier.descriptor.Get(), &status));
    if (error == FileError::kNone) {
      error = TakeOver(source.descriptor.Get(), status);
    }
    if (error != FileError::kNone) {
      return error;
    }
  } else {
    target = FollowLinks(to).value_or(to);
  }
  if (Retry([&] { return ::fsync(source.descriptor.Get()); }) != 0) {
    return ToFileError(errno);
  }
  return Move(source.descriptor.Get(), source.path, target);
}

}  // namespace posix
