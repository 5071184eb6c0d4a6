#include "backends/posix/host_paths.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>
#include <utility>

#include "backends/posix/system_calls.h"
#include "backends/text/names.h"
#include "backends/text/utf.h"

namespace posix {
namespace {

using platform::Failure;
using platform::FileError;
using platform::Result;

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

// The device knows no letter case in names, and the host does. So each part of a device path is
// looked up in its folder: first as it is spelled, which is one call of the system, and only then
// among all names of the folder. A part that does not exist keeps the spelling that was asked for,
// so that it can be made.

/// The spelling of `name` that exists in `folder`, an exact one first; kNotFound if none does.
Result<std::string, FileError> FindSpelling(const std::string& folder, std::u16string_view name) {
  std::string exact = text::ToHostName(name);
  struct stat status {};
  if (::lstat((folder + exact).c_str(), &status) == 0) {
    return exact;
  }
  if (errno != ENOENT) {
    return FailureFromErrno();
  }
  auto names = ListFolder(folder);
  if (!names) {
    return Failure(names.error());
  }
  for (std::string& candidate : *names) {
    if (text::SameName(text::FromHostName(candidate), name)) {
      return std::move(candidate);
    }
  }
  return Failure(FileError::kNotFound);
}

Result<HostPlace, FileError> FindDevicePlace(const std::string& root, std::u16string_view path) {
  const auto parts = text::SplitDevicePath(path);
  if (!parts) {
    return Failure(FileError::kNotFound);
  }
  std::string folder = root + "/";
  for (std::size_t i = 0; i + 1 < parts->size(); ++i) {
    const auto spelling = FindSpelling(folder, (*parts)[i]);
    if (!spelling) {
      return Failure(spelling.error());
    }
    folder += *spelling + "/";
  }
  auto last = FindSpelling(folder, parts->back());
  if (!last && last.error() == FileError::kNotFound) {
    last = text::ToHostName(parts->back());
  }
  if (!last) {
    return Failure(last.error());
  }
  return HostPlace{std::move(folder), std::move(*last)};
}

}  // namespace

Result<std::vector<std::string>, FileError> ListFolder(const std::string& folder) {
  const std::unique_ptr<DIR, CloseFolder> stream(::opendir(folder.c_str()));
  if (!stream) {
    return FailureFromErrno();
  }
  std::vector<std::string> names;
  errno = 0;
  // The call returns null at the end and after a failure. Only errno says which it was, and a
  // call that succeeds leaves errno as it was.
  while (const dirent* entry = ::readdir(stream.get())) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") {
      names.emplace_back(name);
    }
    errno = 0;
  }
  if (errno != 0) {
    return FailureFromErrno();
  }
  return names;
}

Result<HostPlace, FileError> FindPlace(const std::string& root, std::u16string_view path) {
  // A path of the device begins with a backslash and lies below the root. Any other is a path of
  // the host, which the user has typed, and is taken as it is.
  if (text::IsDevicePath(path)) {
    return FindDevicePlace(root, path);
  }
  if (path.empty() || path.find(u'\0') != std::u16string_view::npos) {
    return Failure(FileError::kNotFound);
  }
  std::string hostPath = text::ToHostName(path);
  while (hostPath.size() > 1 && hostPath.ends_with('/')) {
    hostPath.pop_back();
  }
  return HostPlace{FolderOf(hostPath), hostPath.substr(hostPath.rfind('/') + 1)};
}

Result<std::string, FileError> FollowLinks(std::string path) {
  // As many as the system itself follows, so a circle of links ends.
  constexpr int kMostLinks = 40;
  for (int i = 0; i < kMostLinks; ++i) {
    std::array<char, 4096> target{};
    const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
    if (length < 0) {
      return path;
    }
    const std::string_view link(target.data(), static_cast<std::size_t>(length));
    // A relative link counts from the folder in which it lies.
    path = link.starts_with('/') ? std::string(link) : FolderOf(path) + std::string(link);
  }
  return Failure(ToFileError(ELOOP));
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

bool IsProtected(const struct stat& status) {
  return (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

Result<void, FileError> SetRights(int descriptor, mode_t rights) {
  constexpr mode_t kAllRights = S_IRWXU | S_IRWXG | S_IRWXO;
  struct stat status {};
  if (::fstat(descriptor, &status) != 0) {
    return FailureFromErrno();
  }
  // Some file systems, such as those of memory cards, know no rights. There nothing can be taken
  // from others, and files must be written all the same.
  if ((status.st_mode & kAllRights) == rights || ::fchmod(descriptor, rights) == 0 ||
      errno == EPERM || errno == EOPNOTSUPP) {
    return {};
  }
  return FailureFromErrno();
}

bool IsSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

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
  // From the outermost folder inwards. A folder that is there already is no failure on the way.
  for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
    const auto made = MakeFolder(path.substr(0, end));
    if (end == std::string::npos) {
      const bool isThere = made || made.error() == FileError::kAlreadyExists;
      return isThere ? Result<void, FileError>() : made;
    }
    // This process may pass a folder that it cannot write; then the next call reports it.
  }
}

}  // namespace posix
