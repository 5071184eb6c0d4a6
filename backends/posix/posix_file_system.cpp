#include "backends/posix/posix_file_system.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "backends/posix/errors.h"
#include "backends/posix/host_paths.h"
#include "backends/posix/open_file.h"
#include "backends/posix/posix_file.h"
#include "backends/posix/posix_replacement.h"
#include "backends/text/device_path.h"
#include "backends/text/names.h"
#include "backends/text/utf.h"

namespace posix {
namespace {

using platform::FileError;
using platform::FoundFile;

class PosixSearch final : public platform::FileSearch {
 public:
  explicit PosixSearch(std::vector<FoundFile> found) : m_found(std::move(found)) {}

  [[nodiscard]] FileError Next(FoundFile& found) override {
    if (m_next == m_found.size()) {
      return FileError::kNoMoreFiles;
    }
    found = std::move(m_found[m_next++]);
    return FileError::kNone;
  }

 private:
  std::vector<FoundFile> m_found;
  std::size_t m_next = 0;
};

/// What a search says of the entry. A symbolic link that leads nowhere is found as a file, since
/// its name is taken.
FileError Describe(const HostPlace& place, FoundFile& found) {
  struct stat status {};
  const std::string path = place.Path();
  if (::stat(path.c_str(), &status) != 0 && ::lstat(path.c_str(), &status) != 0) {
    return ToFileError(errno);
  }
  found = {text::FromHostName(place.name), S_ISDIR(status.st_mode)};
  return FileError::kNone;
}

bool IsLink(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

/// Everything in the folder of `pattern` that matches its name.
FileError FindMatches(const HostPlace& pattern, std::vector<FoundFile>& found) {
  const std::optional<std::vector<std::string>> names = ListFolder(pattern.folder);
  if (!names) {
    return ToFileError(errno);
  }
  const std::u16string wanted = text::FromHostName(pattern.name);
  for (const std::string& name : *names) {
    if (!text::MatchesPattern(text::FromHostName(name), wanted)) {
      continue;
    }
    FoundFile file;
    const FileError error = Describe({pattern.folder, name}, file);
    if (error == FileError::kNone) {
      found.push_back(std::move(file));
    } else if (error != FileError::kNotFound) {
      return error;  // kNotFound is a file that has just gone.
    }
  }
  return found.empty() ? FileError::kNotFound : FileError::kNone;
}

void TakeRightsOfOthers(const std::string& path, const struct stat& status) {
  const bool isOfAll = S_ISDIR(status.st_mode) && (status.st_mode & S_ISVTX) != 0;
  if (!isOfAll && (status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
    static_cast<void>(::chmod(path.c_str(), status.st_mode & S_IRWXU));
  }
}

Others OthersOf(std::u16string_view path) {
  return text::IsDevicePath(path) ? Others::kLoseRights : Others::kKeepRights;
}

}  // namespace

PosixFileSystem::PosixFileSystem(std::u16string_view root) : m_root(text::ToHostName(root)) {}

platform::OpenedFile PosixFileSystem::Open(std::u16string_view path,
                                           const platform::OpenMode& mode) {
  return WithMemory(platform::OpenedFile{}, [&]() -> platform::OpenedFile {
    const FoundPlace found = FindPlace(m_root, path);
    if (found.error != FileError::kNone) {
      return {nullptr, found.error};
    }
    LockedFile file = OpenLocked(found.place.Path(), mode, OthersOf(path));
    if (file.error != FileError::kNone) {
      return {nullptr, file.error};
    }
    return {std::make_unique<PosixFile>(std::move(file), mode.access), FileError::kNone};
  });
}

platform::OpenedReplacement PosixFileSystem::OpenReplacement(std::u16string_view path) {
  return WithMemory(platform::OpenedReplacement{}, [&]() -> platform::OpenedReplacement {
    FoundPlace found = FindPlace(m_root, path);
    if (found.error != FileError::kNone) {
      return {nullptr, found.error};
    }
    return PosixReplacement::Open(std::move(found.place), OthersOf(path));
  });
}

FileError PosixFileSystem::Delete(std::u16string_view path) {
  return WithMemory(FileError::kOther, [&]() -> FileError {
    const FoundPlace found = FindPlace(m_root, path);
    if (found.error != FileError::kNone) {
      return found.error;
    }
    const std::string hostPath = found.place.Path();
    const bool isLink = IsLink(hostPath);
    if (isLink && !text::IsDevicePath(path)) {
      return FileError::kLink;
    }
    // Locked until the entry is gone, so that nobody becomes a holder in between.
    const LockedFile file = OpenForRemoval(hostPath);
    const bool goes =
        file.error == FileError::kNone || (file.error == FileError::kNotFound && isLink);
    if (!goes) {
      return file.error;
    }
    return ::unlink(hostPath.c_str()) == 0 ? FileError::kNone : ToFileError(errno);
  });
}

FileError PosixFileSystem::CreateFolder(std::u16string_view path) {
  return WithMemory(FileError::kOther, [&] {
    const FoundPlace found = FindPlace(m_root, path);
    return found.error == FileError::kNone ? MakeFolder(found.place.Path()) : found.error;
  });
}

FileError PosixFileSystem::FlushFolder(std::u16string_view path) {
  return WithMemory(FileError::kOther, [&]() -> FileError {
    if (path == u"\\") {
      return SyncFolder(m_root);
    }
    const FoundPlace found = FindPlace(m_root, path);
    return found.error == FileError::kNone ? SyncFolder(found.place.Path()) : found.error;
  });
}

platform::StartedSearch PosixFileSystem::FindFirst(std::u16string_view pattern) {
  return WithMemory(platform::StartedSearch{}, [&]() -> platform::StartedSearch {
    const FoundPlace place = FindPlace(m_root, pattern);
    if (place.error != FileError::kNone) {
      return {nullptr, {}, place.error};
    }
    std::vector<FoundFile> found;
    FileError error = FileError::kNone;
    if (text::HasWildcards(text::FromHostName(place.place.name))) {
      error = FindMatches(place.place, found);
    } else {
      error = Describe(place.place, found.emplace_back());
    }
    if (error != FileError::kNone) {
      return {nullptr, {}, error};
    }
    platform::StartedSearch started{nullptr, found.front(), FileError::kNone};
    found.erase(found.begin());
    started.search = std::make_unique<PosixSearch>(std::move(found));
    return started;
  });
}

void PosixFileSystem::KeepFromOthers(std::u16string_view path) {
  WithMemory(0, [&] {
    std::string place = m_root;
    if (path != u"\\") {
      const FoundPlace found = FindPlace(m_root, path);
      if (found.error != FileError::kNone) {
        return 0;
      }
      place = found.place.Path();
    }
    struct stat status {};
    if (::stat(place.c_str(), &status) != 0 || (IsLink(place) && !S_ISDIR(status.st_mode))) {
      return 0;
    }
    TakeRightsOfOthers(place, status);
    if (path == u"\\" || !S_ISDIR(status.st_mode)) {
      return 0;
    }
    for (const std::string& name : ListFolder(place).value_or(std::vector<std::string>())) {
      const std::string file = place + "/" + name;
      if (::lstat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
        TakeRightsOfOthers(file, status);
      }
    }
    return 0;
  });
}

}  // namespace posix
