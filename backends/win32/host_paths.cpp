#include "backends/win32/host_paths.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <utility>

#include "backends/text/names.h"
#include "backends/win32/system_calls.h"

namespace win32 {
namespace {

using platform::Failure;
using platform::FileError;
using platform::Result;

constexpr std::u16string_view kLong = u"\\\\?\\";
constexpr std::u16string_view kLongShare = u"\\\\?\\UNC\\";
/// No name holds one of these. A colon would name a second stream of a file.
constexpr std::u16string_view kNoNames = u"<>:\"|";

struct CloseSearch {
  using pointer = HANDLE;
  void operator()(HANDLE search) const { ::FindClose(search); }
};
using SearchHandle = std::unique_ptr<void, CloseSearch>;

Entry ToEntry(const WIN32_FIND_DATAW& found) {
  const DWORD attributes = found.dwFileAttributes;
  const bool isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  return {std::u16string(FromWide(found.cFileName)), isFolder,
          !isFolder && (attributes & FILE_ATTRIBUTE_READONLY) != 0,
          (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
              IsReparseTagNameSurrogate(found.dwReserved0)};
}

Result<std::u16string, FileError> MakeFull(std::u16string_view hostPath) {
  const std::u16string path(hostPath);
  std::u16string full;
  // The second call has the room for which the first one asks. The current folder may have changed
  // in between.
  for (DWORD needed = MAX_PATH; needed > full.size();) {
    full.resize(needed);
    needed = ::GetFullPathNameW(ToWide(path), static_cast<DWORD>(full.size()), ToWide(full.data()),
                                nullptr);
    if (needed == 0) {
      return FailureFromSystem();
    }
    if (needed < full.size()) {
      full.resize(needed);
      break;
    }
  }
  return full;
}

bool IsThere(const std::u16string& path) {
  return ::GetFileAttributesW(ToWide(std::u16string(kLong) + path)) != INVALID_FILE_ATTRIBUTES;
}

/// Returns what `full` was before the system took the dot off the end of a folder's name, if that
/// folder is there ("Zedra Tech."). Otherwise returns `full`.
std::u16string WithDots(std::u16string_view hostPath, const std::u16string& full) {
  const std::filesystem::path path(hostPath);
  if (!path.is_absolute() || full.starts_with(u"\\")) {
    return full;
  }
  const std::u16string exact = path.lexically_normal().make_preferred().u16string();
  if (exact == full || IsThere(exact)) {
    return exact;
  }
  const std::u16string folder = FolderOf(exact);
  return IsThere(folder) ? folder + full.substr(FolderOf(full).size()) : full;
}

}  // namespace

Result<std::u16string, FileError> ToLongPath(std::u16string_view hostPath) {
  if (hostPath.empty() || hostPath.find(u'\0') != std::u16string_view::npos) {
    return Failure(FileError::kNotFound);
  }
  std::u16string literal(hostPath);
  std::ranges::replace(literal, u'/', u'\\');
  if (literal.starts_with(kLong)) {
    return literal;
  }
  auto full = MakeFull(hostPath);
  if (!full) {
    return full;
  }
  constexpr std::size_t kDrive = 3;
  while (full->size() > kDrive && full->ends_with(u'\\')) {
    full->pop_back();
  }
  if (full->starts_with(u"\\\\.\\")) {
    return full;
  }
  full = WithDots(literal, *full);
  return full->starts_with(u"\\\\") ? std::u16string(kLongShare) + full->substr(2)
                                    : std::u16string(kLong) + *full;
}

Result<std::u16string, FileError> FindPlace(const std::u16string& root, std::u16string_view path) {
  if (!text::IsDevicePath(path)) {
    return ToLongPath(path);
  }
  if (!text::SplitDevicePath(path) || path.find_first_of(kNoNames) != std::u16string_view::npos) {
    return Failure(FileError::kNotFound);
  }
  return root + std::u16string(path);
}

std::u16string FolderOf(const std::u16string& path) { return path.substr(0, path.rfind(u'\\')); }

Result<Entry, FileError> LookAt(const std::u16string& path) {
  // A question mark or a star would start a search for other names.
  if (text::HasWildcards(std::u16string_view(path).substr(kLong.size()))) {
    return Failure(FileError::kNotFound);
  }
  WIN32_FIND_DATAW found{};
  const HANDLE search =
      ::FindFirstFileExW(ToWide(path), FindExInfoBasic, &found, FindExSearchNameMatch, nullptr, 0);
  if (search != INVALID_HANDLE_VALUE) {
    ::FindClose(search);
    return ToEntry(found);
  }
  const DWORD error = ::GetLastError();
  // The root of a drive is no entry of any folder. A file is one, so it was not looked at.
  const DWORD attributes = ::GetFileAttributesW(ToWide(path));
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
    return Failure(ToFileError(error));
  }
  return Entry{{}, true, false, false};
}

Result<std::vector<Entry>, FileError> ListFolder(const std::u16string& folder) {
  WIN32_FIND_DATAW found{};
  const HANDLE opened =
      ::FindFirstFileExW(ToWide(folder + u"\\*"), FindExInfoBasic, &found, FindExSearchNameMatch,
                         nullptr, FIND_FIRST_EX_LARGE_FETCH);
  std::vector<Entry> entries;
  if (opened == INVALID_HANDLE_VALUE) {
    // The root of a drive may be empty; every other folder holds at least "." and "..".
    if (::GetLastError() == ERROR_FILE_NOT_FOUND) {
      return entries;
    }
    return FailureFromSystem();
  }
  const SearchHandle search(opened);
  do {
    Entry entry = ToEntry(found);
    if (entry.name != u"." && entry.name != u"..") {
      entries.push_back(std::move(entry));
    }
  } while (::FindNextFileW(opened, &found) != FALSE);
  if (::GetLastError() != ERROR_NO_MORE_FILES) {
    return FailureFromSystem();
  }
  return entries;
}

Result<void, FileError> MakeFolders(const std::u16string& path) {
  if (::CreateDirectoryW(ToWide(path), nullptr) != FALSE) {
    return {};
  }
  const DWORD error = ::GetLastError();
  if (error == ERROR_ALREADY_EXISTS) {
    return {};
  }
  const std::u16string folder = FolderOf(path);
  if (error != ERROR_PATH_NOT_FOUND || folder.size() <= kLong.size()) {
    return Failure(ToFileError(error));
  }
  if (const auto made = MakeFolders(folder); !made) {
    return made;
  }
  return ::CreateDirectoryW(ToWide(path), nullptr) != FALSE ||
                 ::GetLastError() == ERROR_ALREADY_EXISTS
             ? Result<void, FileError>()
             : FailureFromSystem();
}

// NTFS writes the names of a folder in a log of its own, in their order. Some file systems take no
// flush of a folder, and a user may lack the right to it. Neither is a failure of what was asked.
Result<void, FileError> FlushFolder(const std::u16string& path) {
  const auto entry = LookAt(path);
  if (!entry) {
    return Failure(entry.error());
  }
  if (!entry->isFolder) {
    return Failure(FileError::kNotFound);
  }
  const Handle folder(::CreateFileW(ToWide(path), GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (folder.IsOpen()) {
    ::FlushFileBuffers(folder.Get());
  }
  return {};
}

}  // namespace win32
