#include "backends/posix/host_paths.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>
#include <utility>

#include "backends/posix/errors.h"
#include "backends/text/device_path.h"
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
  constexpr int kMostLinks = 40;
  for (int i = 0; i < kMostLinks; ++i) {
    std::array<char, 4096> target{};
    const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
    if (length < 0) {
      return path;
    }
    const std::string_view link(target.data(), static_cast<std::size_t>(length));
    path = link.starts_with('/') ? std::string(link) : FolderOf(path) + std::string(link);
  }
  return Failure(ToFileError(ELOOP));
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

}  // namespace posix
