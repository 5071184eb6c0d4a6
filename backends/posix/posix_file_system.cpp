#include "backends/posix/posix_file_system.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "backends/posix/host_paths.h"
#include "backends/posix/posix_file.h"
#include "backends/posix/posix_replacement.h"
#include "backends/posix/system_calls.h"
#include "backends/text/names.h"
#include "backends/text/utf.h"

// The device's file system on a host: names without letter case, one holder who may forbid others,
// and folders below a root. Each call looks its names up again, since another process may have
// changed them.
namespace posix {
namespace {

using platform::Failure;
using platform::FileError;
using platform::FoundFile;
using platform::Result;

/// A search that is done when it begins: what changes in the folder later is not seen. So a caller
/// may delete what it finds while it goes on.
class PosixSearch final : public platform::FileSearch {
 public:
  explicit PosixSearch(std::vector<FoundFile> found) : m_found(std::move(found)) {}

  [[nodiscard]] Result<std::optional<FoundFile>, FileError> Next() override {
    if (m_next == m_found.size()) {
      return std::nullopt;
    }
    return std::move(m_found[m_next++]);
  }

 private:
  std::vector<FoundFile> m_found;
  std::size_t m_next = 0;
};

/// Returns what a search says of the entry. A symbolic link that leads nowhere is found as a file,
/// since its name is taken.
Result<FoundFile, FileError> Describe(const HostPlace& place) {
  struct stat status {};
  const std::string path = place.Path();
  if (::stat(path.c_str(), &status) != 0 && ::lstat(path.c_str(), &status) != 0) {
    return FailureFromErrno();
  }
  return FoundFile{text::FromHostName(place.name), S_ISDIR(status.st_mode)};
}

bool IsLink(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

/// Everything in the folder of `pattern` that matches its name.
Result<std::vector<FoundFile>, FileError> FindMatches(const HostPlace& pattern) {
  const auto names = ListFolder(pattern.folder);
  if (!names) {
    return Failure(names.error());
  }
  std::vector<FoundFile> found;
  const std::u16string wanted = text::FromHostName(pattern.name);
  for (const std::string& name : *names) {
    if (!text::MatchesPattern(text::FromHostName(name), wanted)) {
      continue;
    }
    auto file = Describe({pattern.folder, name});
    if (file) {
      found.push_back(std::move(*file));
    } else if (file.error() != FileError::kNotFound) {
      return Failure(file.error());  // kNotFound is a file that has just gone.
    }
  }
  if (found.empty()) {
    return Failure(FileError::kNotFound);
  }
  return found;
}

void TakeRightsOfOthers(const std::string& path, const struct stat& status) {
  // A folder such as /tmp is everybody's on purpose.
  const bool isOfAll = S_ISDIR(status.st_mode) && (status.st_mode & S_ISVTX) != 0;
  if (!isOfAll && (status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
    static_cast<void>(::chmod(path.c_str(), status.st_mode & S_IRWXU));
  }
}

Others OthersOf(std::u16string_view path) {
  // What lies below the root is this program's own, and private: names and voices. A file elsewhere
  // is the user's, who has chosen its rights.
  return text::IsDevicePath(path) ? Others::kLoseRights : Others::kKeepRights;
}

}  // namespace

PosixFileSystem::PosixFileSystem(std::u16string_view root) : m_root(text::ToHostName(root)) {}

Result<std::unique_ptr<platform::File>, FileError> PosixFileSystem::Open(
    std::u16string_view path, const platform::OpenMode& mode) {
  return WithMemory([&]() -> Result<std::unique_ptr<platform::File>, FileError> {
    const auto place = FindPlace(m_root, path);
    if (!place) {
      return Failure(place.error());
    }
    auto file = OpenLocked(place->Path(), mode, OthersOf(path));
    if (!file) {
      return Failure(file.error());
    }
    return std::make_unique<PosixFile>(std::move(*file), mode.access);
  });
}

Result<std::unique_ptr<platform::Replacement>, FileError> PosixFileSystem::OpenReplacement(
    std::u16string_view path) {
  return WithMemory([&]() -> Result<std::unique_ptr<platform::Replacement>, FileError> {
    auto place = FindPlace(m_root, path);
    if (!place) {
      return Failure(place.error());
    }
    return PosixReplacement::Open(std::move(*place), OthersOf(path));
  });
}

Result<void, FileError> PosixFileSystem::Delete(std::u16string_view path) {
  return WithMemory([&]() -> Result<void, FileError> {
    const auto place = FindPlace(m_root, path);
    if (!place) {
      return Failure(place.error());
    }
    const std::string hostPath = place->Path();
    const bool isLink = IsLink(hostPath);
    // Below the root a link is removed as a file. Elsewhere the user has made it, and keeps it.
    if (isLink && !text::IsDevicePath(path)) {
      return Failure(FileError::kLink);
    }
    // Locked until the entry is gone, so that nobody becomes a holder in between.
    const auto file = OpenForRemoval(hostPath);
    // A link that leads nowhere has no file to lock.
    const bool goes = file || (isLink && file.error() == FileError::kNotFound);
    if (!goes) {
      return Failure(file.error());
    }
    if (::unlink(hostPath.c_str()) != 0) {
      return FailureFromErrno();
    }
    return {};
  });
}

Result<void, FileError> PosixFileSystem::CreateFolder(std::u16string_view path) {
  return WithMemory([&] {
    return FindPlace(m_root, path).and_then([](const HostPlace& place) {
      return MakeFolder(place.Path());
    });
  });
}

Result<void, FileError> PosixFileSystem::FlushFolder(std::u16string_view path) {
  return WithMemory([&] {
    return path == u"\\" ? SyncFolder(m_root)
                         : FindPlace(m_root, path).and_then([](const HostPlace& place) {
                             return SyncFolder(place.Path());
                           });
  });
}

Result<std::unique_ptr<platform::FileSearch>, FileError> PosixFileSystem::Find(
    std::u16string_view pattern) {
  return WithMemory([&]() -> Result<std::unique_ptr<platform::FileSearch>, FileError> {
    const auto place = FindPlace(m_root, pattern);
    if (!place) {
      return Failure(place.error());
    }
    // A name without wildcards is looked up and not searched for, which does not read the folder.
    auto found = text::HasWildcards(text::FromHostName(place->name))
                     ? FindMatches(*place)
                     : Describe(*place).map(
                           [](FoundFile&& one) { return std::vector<FoundFile>{std::move(one)}; });
    if (!found) {
      return Failure(found.error());
    }
    return std::make_unique<PosixSearch>(std::move(*found));
  });
}

void PosixFileSystem::KeepFromOthers(std::u16string_view path) {
  // Best effort: what cannot be changed stays as it is.
  static_cast<void>(WithMemory([&]() -> Result<void, FileError> {
    std::string place = m_root;
    if (path != u"\\") {
      const auto found = FindPlace(m_root, path);
      if (!found) {
        return Failure(found.error());
      }
      place = found->Path();
    }
    struct stat status {};
    if (::stat(place.c_str(), &status) != 0 || (IsLink(place) && !S_ISDIR(status.st_mode))) {
      return {};
    }
    TakeRightsOfOthers(place, status);
    if (path == u"\\" || !S_ISDIR(status.st_mode)) {
      return {};
    }
    for (const std::string& name : ListFolder(place).value_or(std::vector<std::string>())) {
      const std::string file = place + "/" + name;
      if (::lstat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
        TakeRightsOfOthers(file, status);
      }
    }
    return {};
  }));
}

}  // namespace posix
