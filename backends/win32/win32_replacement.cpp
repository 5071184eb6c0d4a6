#include "backends/win32/win32_replacement.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <random>
#include <utility>
#include <vector>

#include "backends/text/names.h"
#include "backends/win32/host_paths.h"
#include "backends/win32/system_calls.h"

namespace win32 {
namespace {

using platform::Failure;
using platform::FileError;
using platform::Result;

std::u16string RandomName() {
  constexpr std::u16string_view kLetters = u"abcdefghijklmnopqrstuvwxyz234567";
  constexpr int kLength = 12;
  std::random_device random;
  std::u16string name(platform::kUnfinishedPrefix);
  for (int i = 0; i < kLength; ++i) {
    name += kLetters[random() % kLetters.size()];
  }
  return name;
}

/// Fails if something stands at the path that a file must not replace.
Result<void, FileError> CheckReplaceable(const Entry& there) {
  if (there.isLink) {
    return Failure(FileError::kLink);
  }
  if (there.isFolder || there.isProtected) {
    return Failure(FileError::kAccessDenied);
  }
  return {};
}

/// Fails while any holder has the file open.
Result<void, FileError> CheckNotHeld(const std::u16string& path) {
  const Handle file(::CreateFileW(ToWide(path), GENERIC_READ | DELETE, 0, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  if (!file.IsOpen()) {
    return FailureFromSystem();
  }
  return {};
}

/// Gives the new file the rights that its user gave the earlier one. If that fails, it keeps those
/// of its folder.
void CopyRights(const std::u16string& from, HANDLE to) {
  DWORD length = 0;
  ::GetFileSecurityW(ToWide(from), DACL_SECURITY_INFORMATION, nullptr, 0, &length);
  std::vector<std::byte> rights(length);
  if (length != 0 && ::GetFileSecurityW(ToWide(from), DACL_SECURITY_INFORMATION, rights.data(),
                                        length, &length) != FALSE) {
    ::SetKernelObjectSecurity(to, DACL_SECURITY_INFORMATION, rights.data());
  }
}

/// Renames an open file. A file of that name goes in the same step.
Result<void, FileError> Rename(HANDLE file, const std::u16string& path) {
  const std::size_t nameBytes = path.size() * sizeof(char16_t);
  // The structure has room for one unit of the name, which is the zero at its end.
  std::vector<std::byte> memory(sizeof(FILE_RENAME_INFO) + nameBytes);
  auto* const info = ::new (memory.data()) FILE_RENAME_INFO{};
  info->ReplaceIfExists = TRUE;
  info->FileNameLength = static_cast<DWORD>(nameBytes);
  std::memcpy(info->FileName, path.data(), nameBytes);
  if (::SetFileInformationByHandle(file, FileRenameInfo, info, static_cast<DWORD>(memory.size())) ==
      FALSE) {
    return FailureFromSystem();
  }
  return {};
}

}  // namespace

Result<std::unique_ptr<platform::Replacement>, FileError> Win32Replacement::Open(
    std::u16string path) {
  // No name holds one of these, and the system would say so only when the file is published.
  if (text::HasWildcards(std::u16string_view(path).substr(FolderOf(path).size()))) {
    return Failure(FileError::kNotFound);
  }
  const auto there = LookAt(path);
  if (there) {
    if (const auto replaceable = CheckReplaceable(*there); !replaceable) {
      return Failure(replaceable.error());
    }
  } else if (there.error() != FileError::kNotFound) {
    return Failure(there.error());
  }
  constexpr int kAttempts = 100;
  const std::u16string folder = FolderOf(path) + u'\\';
  for (int i = 0; i < kAttempts; ++i) {
    std::u16string temporary = folder + RandomName();
    Handle file(::CreateFileW(ToWide(temporary), GENERIC_READ | GENERIC_WRITE | DELETE | WRITE_DAC,
                              0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file.IsOpen()) {
      return std::make_unique<Win32Replacement>(std::move(path), std::move(temporary),
                                                std::move(file));
    }
    if (::GetLastError() != ERROR_FILE_EXISTS) {
      return FailureFromSystem();
    }
  }
  return Failure(FileError::kOther);
}

Win32Replacement::Win32Replacement(std::u16string path, std::u16string temporary, Handle file)
    : m_path(std::move(path)),
      m_temporary(std::move(temporary)),
      m_file(std::move(file), platform::FileAccess::kReadWrite) {}

Win32Replacement::~Win32Replacement() {
  if (!m_hasPlace) {
    Discard();
  }
}

// Through its handle if that works: what has the random name by now may be another file.
void Win32Replacement::Discard() {
  FILE_DISPOSITION_INFO going{TRUE};
  if (m_file.GetHandle() != nullptr &&
      ::SetFileInformationByHandle(m_file.GetHandle(), FileDispositionInfo, &going,
                                   sizeof(going)) != FALSE) {
    return;
  }
  // The file is open for nobody else, so it is closed before.
  static_cast<void>(m_file.Close());
  ::DeleteFileW(ToWide(m_temporary));
}

Result<void, FileError> Win32Replacement::Publish(platform::Durability durability) {
  return WithMemory([&]() -> Result<void, FileError> {
    if (m_file.GetHandle() == nullptr) {
      if (!m_hasPlace) {
        Discard();
      }
      return Failure(FileError::kClosed);
    }
    const bool isNow = durability == platform::Durability::kNow;
    if (isNow) {
      if (const auto flushed = m_file.Flush(); !flushed) {
        return flushed;
      }
    }
    if (!m_hasPlace) {
      if (const auto placed = TakePlace(); !placed) {
        return placed;
      }
      m_hasPlace = true;
    }
    if (isNow && !m_file.Flush()) {
      return Failure(FileError::kOther);  // It has its name, but perhaps not on the medium.
    }
    return m_file.Close();
  });
}

Result<void, FileError> Win32Replacement::TakePlace() {
  const auto there = LookAt(m_path);
  if (!there) {
    return there.error() == FileError::kNotFound ? Rename(m_file.GetHandle(), m_path)
                                                 : Failure(there.error());
  }
  if (const auto replaceable = CheckReplaceable(*there); !replaceable) {
    return replaceable;
  }
  if (const auto free = CheckNotHeld(m_path); !free) {
    return free;
  }
  CopyRights(m_path, m_file.GetHandle());
  // The name stays as it was spelled.
  const auto renamed = Rename(m_file.GetHandle(), FolderOf(m_path) + u'\\' + there->name);
  // Somebody has opened the file since. The system says that it refuses, and not why.
  return !renamed && renamed.error() == FileError::kAccessDenied
             ? Failure(FileError::kSharingViolation)
             : renamed;
}

}  // namespace win32
