#include "platform/posix/host_paths.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>

#include "platform/posix/errors.h"
#include "platform/text/device_path.h"
#include "platform/text/names.h"
#include "platform/text/utf.h"

namespace posix {
namespace {

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

bool Exists(const std::string& path) {
  struct stat status {};
  return ::fstatat(AT_FDCWD, path.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

/// The spelling of `name` that exists in `folder`, an exact one first; nothing where none does.
std::optional<std::string> FindSpelling(const std::string& folder, std::u16string_view name) {
  std::string exact = text::ToHostName(name);
  if (Exists(folder + exact)) {
    return exact;
  }
  for (std::string& candidate : ListFolder(folder).value_or(std::vector<std::string>())) {
    if (text::SameName(text::FromHostName(candidate), name)) {
      return std::move(candidate);
    }
  }
  return std::nullopt;
}

std::optional<HostPlace> FindDevicePlace(const std::string& root, std::u16string_view path) {
  const auto parts = text::SplitDevicePath(path);
  if (!parts) {
    return std::nullopt;
  }
  std::string folder = root + "/";
  for (std::size_t i = 0; i + 1 < parts->size(); ++i) {
    const std::optional<std::string> spelling = FindSpelling(folder, (*parts)[i]);
    if (!spelling) {
      return std::nullopt;
    }
    folder += *spelling + "/";
  }
  const std::u16string_view last = parts->back();
  return HostPlace{folder, FindSpelling(folder, last).value_or(text::ToHostName(last))};
}

}  // namespace

std::optional<std::vector<std::string>> ListFolder(const std::string& folder) {
  const std::unique_ptr<DIR, CloseFolder> stream(::opendir(folder.c_str()));
  if (!stream) {
    return std::nullopt;
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
    return std::nullopt;
  }
  return names;
}

std::optional<HostPlace> FindPlace(const std::string& root, std::u16string_view path) {
  if (text::IsDevicePath(path)) {
    return FindDevicePlace(root, path);
  }
  if (path.empty() || path.find(u'\0') != std::u16string_view::npos) {
    return std::nullopt;
  }
  std::string hostPath = text::ToHostName(path);
  while (hostPath.size() > 1 && hostPath.ends_with('/')) {
    hostPath.pop_back();
  }
  return HostPlace{FolderOf(hostPath), hostPath.substr(hostPath.rfind('/') + 1)};
}

std::optional<std::string> FollowLinks(std::string path) {
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
  errno = ELOOP;
  return std::nullopt;
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

}  // namespace posix
