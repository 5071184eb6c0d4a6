#include "backends/posix/posix_replacement.h"

#include <fcntl.h>
#include <sys/random.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "backends/posix/system_calls.h"
#include "backends/text/utf.h"

namespace posix {
namespace {

using platform::Durability;
using platform::Failure;
using platform::FileAccess;
using platform::FileError;
using platform::Result;

// How a file takes the place of another one. The new file has no name while it is written, so a
// process that is killed leaves nothing. To replace an earlier file it gets a random name first,
// and then that of the earlier file by rename, since no call of the system gives a file without a
// name the place of another one.

constexpr mode_t kPermissionBits = S_IRWXU | S_IRWXG | S_IRWXO;
constexpr int kMostAttempts = 100;

/// Returns the path by which the system shows an open descriptor as a file, which can be given a
/// name.
std::string PathOf(int descriptor) { return "/proc/self/fd/" + std::to_string(descriptor); }

std::string RandomPath(const std::string& folder) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::uint64_t random = 0;
  static_cast<void>(::getrandom(&random, sizeof random, 0));  // A name that is taken is refused.
  std::string path = folder + text::ToHostName(platform::kUnfinishedPrefix);
  for (int i = 0; i < 16; ++i, random /= kDigits.size()) {
    path += kDigits[random % kDigits.size()];
  }
  return path;
}

Descriptor OpenWithoutName(const std::string& folder) {
  Descriptor file(
      Retry([&] { return ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, kOwnerFile); }));
  struct stat status {};
  if (file.IsOpen() && ::stat(PathOf(file.Get()).c_str(), &status) != 0) {
    file.Reset();  // Without /proc it could never be given a name.
  }
  return file;
}

Descriptor OpenWithRandomName(const std::string& folder, std::string& path) {
  for (int i = 0; i < kMostAttempts; ++i) {
    path = RandomPath(folder);
    constexpr int kFlags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    Descriptor file(Retry([&] { return ::open(path.c_str(), kFlags, kOwnerFile); }));
    if (file.IsOpen() || errno != EEXIST) {
      return file;
    }
  }
  return Descriptor();
}

int GiveName(int descriptor, const std::string& path) {
  return ::linkat(AT_FDCWD, PathOf(descriptor).c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW);
}

/// Gives a file the permissions and, as far as the process may, the owner of another.
Result<void, FileError> TakeOver(int from, int descriptor, Others others) {
  struct stat other {};
  struct stat own {};
  if (::fstat(from, &other) != 0 || ::fstat(descriptor, &own) != 0) {
    return FailureFromErrno();
  }
  // Only an administrator may give a file away; anyone else owns both or leaves it.
  if ((own.st_uid != other.st_uid || own.st_gid != other.st_gid) &&
      ::fchown(descriptor, other.st_uid, other.st_gid) != 0) {
    static_cast<void>(::fchown(descriptor, static_cast<uid_t>(-1), other.st_gid) == 0);
  }
  const mode_t kept = others == Others::kKeepRights ? kPermissionBits : mode_t{S_IRWXU};
  return SetRights(descriptor, other.st_mode & kept);
}

/// Returns whether the file at `path`, if there is one, may be replaced as far as one sees from
/// outside.
Result<void, FileError> CheckTarget(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) {
    if (errno == ENOENT) {
      return {};
    }
    return FailureFromErrno();
  }
  if (S_ISLNK(status.st_mode)) {
    return Failure(FileError::kLink);
  }
  if (!S_ISREG(status.st_mode) || IsProtected(status)) {
    return Failure(FileError::kAccessDenied);
  }
  return {};
}

}  // namespace

Result<std::unique_ptr<platform::Replacement>, FileError> PosixReplacement::Open(HostPlace place,
                                                                                 Others others,
                                                                                 Making making) {
  if (const auto target = CheckTarget(place.Path()); !target) {
    return Failure(target.error());
  }
  // Not every file system has files without a name. There the new file has a random name from the
  // beginning, and the check of the store reports one that was left.
  Descriptor file = making == Making::kWithoutName ? OpenWithoutName(place.folder) : Descriptor();
  std::string temporary;
  if (!file.IsOpen()) {
    file = OpenWithRandomName(place.folder, temporary);
  }
  if (!file.IsOpen()) {
    return FailureFromErrno();
  }
  auto replacement = std::make_unique<PosixReplacement>(std::move(place), others, std::move(file),
                                                        std::move(temporary));
  if (const auto set = SetRights(replacement->m_file.GetDescriptor(), kOwnerFile); !set) {
    return Failure(set.error());
  }
  return replacement;
}

PosixReplacement::PosixReplacement(HostPlace place, Others others, Descriptor file,
                                   std::string temporary)
    : m_place(std::move(place)),
      m_others(others),
      m_file({std::move(file), {}}, FileAccess::kReadWrite),
      m_temporary(std::move(temporary)) {}

PosixReplacement::~PosixReplacement() {
  if (!m_temporary.empty()) {
    ::unlink(m_temporary.c_str());
  }
}

Result<void, FileError> PosixReplacement::Publish(Durability durability) {
  // A second call after a failure goes on where the first one stopped.
  if (!m_hasPlace) {
    if (durability == Durability::kNow) {
      if (const auto flushed = m_file.Flush(); !flushed) {
        // The system reports a loss once. A second attempt would find nothing wrong.
        static_cast<void>(m_file.Close());
        return flushed;
      }
    }
    if (const auto taken = WithMemory([&] { return TakePlace(); }); !taken) {
      return taken;
    }
    m_hasPlace = true;
  }
  const auto closed = m_file.Close();
  const auto kept =
      durability == Durability::kNow ? SyncFolder(m_place.folder) : Result<void, FileError>();
  return closed ? kept : closed;
}

Result<void, FileError> PosixReplacement::TakePlace() {
  if (m_file.GetDescriptor() == Descriptor::kNone) {
    return Failure(FileError::kClosed);
  }
  for (int i = 0; i < kMostAttempts; ++i) {
    if (const auto taken = TryTakePlace()) {
      return *taken;
    }
  }
  return Failure(FileError::kSharingViolation);
}

std::optional<Result<void, FileError>> PosixReplacement::TryTakePlace() {
  const std::string path = m_place.Path();
  if (const auto target = CheckTarget(path); !target) {
    return target;
  }
  // Held until the end, so that nobody opens the earlier file while it goes.
  const auto earlier = OpenForRemoval(path);
  const bool isNew = !earlier && earlier.error() == FileError::kNotFound;
  // Nothing is to be replaced, so the file without a name gets its own at once.
  if (isNew && m_temporary.empty()) {
    if (GiveName(m_file.GetDescriptor(), path) == 0) {
      return Result<void, FileError>();
    }
    if (errno == EEXIST) {
      return std::nullopt;
    }
    return FailureFromErrno();
  }
  if (!earlier && !isNew) {
    return Failure(earlier.error());
  }
  if (earlier) {
    const auto taken = TakeOver(earlier->descriptor.Get(), m_file.GetDescriptor(), m_others);
    if (!taken) {
      return taken;
    }
  }
  if (const auto named = NameTemporarily(); !named) {
    return named;
  }
  if (::rename(m_temporary.c_str(), path.c_str()) != 0) {
    return FailureFromErrno();
  }
  // The name is gone with the rename, so the destructor must not remove what has it next.
  m_temporary.clear();
  return Result<void, FileError>();
}

Result<void, FileError> PosixReplacement::NameTemporarily() {
  for (int i = 0; i < kMostAttempts && m_temporary.empty(); ++i) {
    std::string path = RandomPath(m_place.folder);
    if (GiveName(m_file.GetDescriptor(), path) == 0) {
      m_temporary = std::move(path);
    } else if (errno != EEXIST) {
      return FailureFromErrno();
    }
  }
  if (m_temporary.empty()) {
    return Failure(FileError::kAlreadyExists);
  }
  return {};
}

}  // namespace posix
