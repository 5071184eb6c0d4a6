#include "backends/win32/win32_file_system.h"

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "backends/text/names.h"
#include "backends/win32/host_paths.h"
#include "backends/win32/system_calls.h"
#include "backends/win32/win32_file.h"
#include "backends/win32/win32_replacement.h"

namespace win32 {
namespace {

using platform::Failure;
using platform::FileAccess;
using platform::FileCreation;
using platform::FileError;
using platform::FoundFile;
using platform::OpenMode;
using platform::Result;

class Win32Search final : public platform::FileSearch {
 public:
  explicit Win32Search(std::vector<FoundFile> found) : m_found(std::move(found)) {}

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

bool MayWrite(const OpenMode& mode) {
  return mode.access == FileAccess::kWrite || mode.access == FileAccess::kReadWrite;
}

/// A file that is opened for nothing is opened for reading all the same: the system would not count
/// it among the holders.
DWORD AccessOf(const OpenMode& mode) {
  switch (mode.access) {
    case FileAccess::kWrite:
      return GENERIC_WRITE;
    case FileAccess::kReadWrite:
      return GENERIC_READ | GENERIC_WRITE;
    default:
      return GENERIC_READ;
  }
}

/// A file is emptied only after it is known to be no link.
DWORD CreationOf(const OpenMode& mode) {
  switch (mode.creation) {
    case FileCreation::kOpenExisting:
      return OPEN_EXISTING;
    case FileCreation::kCreateNew:
      return CREATE_NEW;
    default:
      return OPEN_ALWAYS;
  }
}

bool IsLink(HANDLE file) {
  FILE_ATTRIBUTE_TAG_INFO about{};
  return ::GetFileInformationByHandleEx(file, FileAttributeTagInfo, &about, sizeof(about)) !=
             FALSE &&
         (about.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
         IsReparseTagNameSurrogate(about.ReparseTag);
}

Result<std::unique_ptr<platform::File>, FileError> OpenAt(const std::u16string& path,
                                                          const OpenMode& mode) {
  const bool empties = mode.creation == FileCreation::kCreateAlways;
  const bool followsLinks = !MayWrite(mode) && mode.creation == FileCreation::kOpenExisting;
  const auto there = LookAt(path);
  if (there && there->isLink && !followsLinks && mode.creation != FileCreation::kCreateNew) {
    return Failure(FileError::kLink);
  }
  if (there && there->isProtected && (empties || MayWrite(mode))) {
    return Failure(FileError::kAccessDenied);
  }
  const DWORD access = AccessOf(mode) | (empties ? GENERIC_WRITE : 0U);
  // The look above was for the sake of an error that says what is there. This one counts: the file
  // itself is opened, whatever has come to stand at its name.
  Handle file(::CreateFileW(
      ToWide(path), access, mode.share == platform::FileShare::kRead ? FILE_SHARE_READ : 0U,
      nullptr, CreationOf(mode),
      FILE_ATTRIBUTE_NORMAL | (followsLinks ? 0U : DWORD{FILE_FLAG_OPEN_REPARSE_POINT}), nullptr));
  if (!file.IsOpen()) {
    return FailureFromSystem();
  }
  if (!followsLinks && IsLink(file.Get())) {
    return Failure(FileError::kLink);
  }
  if (::GetFileType(file.Get()) != FILE_TYPE_DISK) {
    return Failure(FileError::kAccessDenied);
  }
  if (empties && ::SetEndOfFile(file.Get()) == FALSE) {
    return FailureFromSystem();
  }
  return std::make_unique<Win32File>(std::move(file), mode.access);
}

Result<void, FileError> DeleteAt(const std::u16string& path, bool mayBeLink) {
  const auto there = LookAt(path);
  if (!there) {
    return Failure(there.error());
  }
  if (there->isLink && !mayBeLink) {
    return Failure(FileError::kLink);
  }
  if (there->isFolder || there->isProtected) {
    return Failure(FileError::kAccessDenied);
  }
  const Handle file(::CreateFileW(ToWide(path), GENERIC_READ | DELETE, 0, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  FILE_DISPOSITION_INFO going{TRUE};
  if (!file.IsOpen() || ::SetFileInformationByHandle(file.Get(), FileDispositionInfo, &going,
                                                     sizeof(going)) == FALSE) {
    return FailureFromSystem();
  }
  return {};
}

/// Everything in the folder of `pattern` that matches its name. The system's own search would also
/// match short names, which nobody gave.
Result<std::vector<FoundFile>, FileError> FindMatches(const std::u16string& pattern) {
  const std::u16string folder = FolderOf(pattern);
  const auto entries = ListFolder(folder);
  if (!entries) {
    return Failure(entries.error());
  }
  std::vector<FoundFile> found;
  const std::u16string_view wanted = std::u16string_view(pattern).substr(folder.size() + 1);
  for (const Entry& entry : *entries) {
    if (text::MatchesPattern(entry.name, wanted)) {
      found.push_back({entry.name, entry.isFolder});
    }
  }
  if (found.empty()) {
    return Failure(FileError::kNotFound);
  }
  return found;
}

bool HasPatternAtEnd(const std::u16string& path) {
  return text::HasWildcards(std::u16string_view(path).substr(FolderOf(path).size()));
}

}  // namespace

Win32FileSystem::Win32FileSystem(std::u16string_view root)
    : m_root(ToLongPath(root).value_or(std::u16string(root))) {}

Result<std::unique_ptr<platform::File>, FileError> Win32FileSystem::Open(std::u16string_view path,
                                                                         const OpenMode& mode) {
  return WithMemory([&]() -> Result<std::unique_ptr<platform::File>, FileError> {
    const auto place = FindPlace(m_root, path);
    return place ? OpenAt(*place, mode) : Failure(place.error());
  });
}

Result<std::unique_ptr<platform::Replacement>, FileError> Win32FileSystem::OpenReplacement(
    std::u16string_view path) {
  return WithMemory([&]() -> Result<std::unique_ptr<platform::Replacement>, FileError> {
    auto place = FindPlace(m_root, path);
    return place ? Win32Replacement::Open(std::move(*place)) : Failure(place.error());
  });
}

Result<void, FileError> Win32FileSystem::Delete(std::u16string_view path) {
  return WithMemory([&]() -> Result<void, FileError> {
    const auto place = FindPlace(m_root, path);
    return place ? DeleteAt(*place, text::IsDevicePath(path)) : Failure(place.error());
  });
}

Result<void, FileError> Win32FileSystem::CreateFolder(std::u16string_view path) {
  return WithMemory([&]() -> Result<void, FileError> {
    const auto place = FindPlace(m_root, path);
    if (!place) {
      return Failure(place.error());
    }
    if (::CreateDirectoryW(ToWide(*place), nullptr) == FALSE) {
      return FailureFromSystem();
    }
    return win32::FlushFolder(FolderOf(*place));
  });
}

Result<void, FileError> Win32FileSystem::FlushFolder(std::u16string_view path) {
  return WithMemory([&]() -> Result<void, FileError> {
    const auto place =
        path == u"\\" ? Result<std::u16string, FileError>(m_root) : FindPlace(m_root, path);
    return place ? win32::FlushFolder(*place) : Failure(place.error());
  });
}

Result<std::unique_ptr<platform::FileSearch>, FileError> Win32FileSystem::Find(
    std::u16string_view pattern) {
  return WithMemory([&]() -> Result<std::unique_ptr<platform::FileSearch>, FileError> {
    const auto place = FindPlace(m_root, pattern);
    if (!place) {
      return Failure(place.error());
    }
    auto found =
        HasPatternAtEnd(*place) ? FindMatches(*place) : LookAt(*place).map([](Entry&& one) {
          return std::vector<FoundFile>{{std::move(one.name), one.isFolder}};
        });
    if (!found) {
      return Failure(found.error());
    }
    return std::make_unique<Win32Search>(std::move(*found));
  });
}

}  // namespace win32
