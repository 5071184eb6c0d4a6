#include "platform/posix/posix_file_system.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "platform/posix/errors.h"
#include "platform/posix/host_paths.h"
#include "platform/posix/open_file.h"
#include "platform/posix/posix_file.h"
#include "platform/posix/replace_file.h"
#include "platform/text/names.h"
#include "platform/text/utf.h"

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
    found = m_found[m_next++];
    return FileError::kNone;
  }

 private:
  const std::vector<FoundFile> m_found;
  std::size_t m_next = 0;
};

/// What a search says of the entry; nothing, with errno set, where it is not there. A symbolic link
/// that leads nowhere is found as a file, since its name is taken.
std::optional<FoundFile> Describe(const HostPlace& place) {
  struct stat status {};
  const std::string path = place.Path();
  if (::stat(path.c_str(), &status) != 0 && ::lstat(path.c_str(), &status) != 0) {
    return std::nullopt;
  }
  return FoundFile{text::FromHostName(place.name), S_ISDIR(status.st_mode)};
}

bool IsLinkToNothing(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) != 0 && ::lstat(path.c_str(), &status) == 0;
}

/// Everything in the folder of `pattern` that matches its name; an error where that cannot be read.
FileError FindMatches(const HostPlace& pattern, std::vector<FoundFile>& found) {
  const std::optional<std::vector<std::string>> names = ListFolder(pattern.folder);
  if (!names) {
    return ToFileError(errno);
  }
  const std::u16string wanted = text::FromHostName(pattern.name);
  for (const std::string& name : *names) {
    if (text::MatchesPattern(text::FromHostName(name), wanted)) {
      if (std::optional<FoundFile> file = Describe({pattern.folder, name})) {
        found.push_back(std::move(*file));
      }
    }
  }
  return FileError::kNone;
}

}  // namespace

PosixFileSystem::PosixFileSystem(std::u16string_view root) : m_root(text::ToHostName(root)) {}

platform::OpenedFile PosixFileSystem::Open(std::u16string_view path,
                                           const platform::OpenMode& mode) {
  const std::optional<HostPlace> place = FindPlace(m_root, path);
  if (!place) {
    return {nullptr, FileError::kNotFound};
  }
  LockedFile file = OpenLocked(place->Path(), mode);
  if (file.error != FileError::kNone) {
    return {nullptr, file.error};
  }
  return {std::make_unique<PosixFile>(std::move(file), mode.access), FileError::kNone};
}

FileError PosixFileSystem::Delete(std::u16string_view path) {
  const std::optional<HostPlace> place = FindPlace(m_root, path);
  if (!place) {
    return FileError::kNotFound;
  }
  // Locked until the entry is gone, so that nobody becomes a holder in between.
  const LockedFile file = OpenForRemoval(place->Path());
  const bool goes = file.error == FileError::kNone ||
                    (file.error == FileError::kNotFound && IsLinkToNothing(place->Path()));
  if (!goes) {
    return file.error;
  }
  return ::unlink(place->Path().c_str()) == 0 ? FileError::kNone : ToFileError(errno);
}

FileError PosixFileSystem::Replace(std::u16string_view from, std::u16string_view to) {
  const std::optional<HostPlace> source = FindPlace(m_root, from);
  const std::optional<HostPlace> target = FindPlace(m_root, to);
  if (!source || !target) {
    return FileError::kNotFound;
  }
  return ReplaceFile(source->Path(), target->Path());
}

FileError PosixFileSystem::CreateFolder(std::u16string_view path) {
  const std::optional<HostPlace> place = FindPlace(m_root, path);
  if (!place) {
    return FileError::kNotFound;
  }
  return ::mkdir(place->Path().c_str(), 0777) == 0 ? FileError::kNone : ToFileError(errno);
}

platform::StartedSearch PosixFileSystem::FindFirst(std::u16string_view pattern) {
  const std::optional<HostPlace> place = FindPlace(m_root, pattern);
  if (!place) {
    return {nullptr, {}, FileError::kNotFound};
  }
  std::vector<FoundFile> found;
  FileError error = FileError::kNone;
  if (text::HasWildcards(text::FromHostName(place->name))) {
    error = FindMatches(*place, found);
  } else if (std::optional<FoundFile> file = Describe(*place)) {
    found.push_back(std::move(*file));
  } else {
    error = ToFileError(errno);
  }
  if (found.empty()) {
    return {nullptr, {}, error == FileError::kNone ? FileError::kNotFound : error};
  }
  platform::StartedSearch started{nullptr, found.front(), FileError::kNone};
  found.erase(found.begin());
  started.search = std::make_unique<PosixSearch>(std::move(found));
  return started;
}

}  // namespace posix
