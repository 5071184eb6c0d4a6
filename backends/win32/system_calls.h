#pragma once

#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "backends/win32/windows.h"
#include "platform/file_system.h"

// What every call of the system needs: an owner of its handle, texts in its own type, and the
// meaning of its error.

namespace win32 {

static_assert(sizeof(wchar_t) == sizeof(char16_t), "a text of the system is one of ours");

/// Returns the text as the system takes it, with a zero at its end. It lives as long as `text`.
[[nodiscard]] inline const wchar_t* ToWide(const std::u16string& text) {
  return reinterpret_cast<const wchar_t*>(text.c_str());
}
[[nodiscard]] inline wchar_t* ToWide(char16_t* text) { return reinterpret_cast<wchar_t*>(text); }
[[nodiscard]] inline std::u16string_view FromWide(std::wstring_view text) {
  return {reinterpret_cast<const char16_t*>(text.data()), text.size()};
}

/// An open handle of the kernel. The destructor closes it.
class Handle {
 public:
  explicit Handle(HANDLE value = nullptr)
      : m_value(value == INVALID_HANDLE_VALUE ? nullptr : value) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  Handle(Handle&& other) noexcept : m_value(other.Release()) {}
  Handle& operator=(Handle&& other) noexcept {
    Reset(other.Release());
    return *this;
  }
  ~Handle() { Reset(); }

  [[nodiscard]] HANDLE Get() const { return m_value; }
  [[nodiscard]] bool IsOpen() const { return m_value != nullptr; }
  [[nodiscard]] HANDLE Release() { return std::exchange(m_value, nullptr); }

  void Reset(HANDLE value = nullptr) {
    const HANDLE old = std::exchange(m_value, value);
    if (old != nullptr) {
      ::CloseHandle(old);
    }
  }

 private:
  HANDLE m_value;
};

/// Returns what an error of the system means.
[[nodiscard]] constexpr platform::FileError ToFileError(DWORD error) {
  using platform::FileError;
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_BAD_NETPATH:
    case ERROR_INVALID_DRIVE:
    case ERROR_DIRECTORY:
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_NO_MORE_FILES:
      return FileError::kNotFound;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return FileError::kAlreadyExists;
    case ERROR_ACCESS_DENIED:
      return FileError::kAccessDenied;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      return FileError::kSharingViolation;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case ERROR_FILE_TOO_LARGE:
      return FileError::kDiskFull;
    case ERROR_WRITE_PROTECT:
      return FileError::kReadOnly;
    default:
      return FileError::kOther;
  }
}

/// Returns the failure of a call that has just failed.
[[nodiscard]] inline tl::unexpected<platform::FileError> FailureFromSystem() {
  return platform::Failure(ToFileError(::GetLastError()));
}

/// Returns the result of the call. Fails with kOther if there is no memory for it.
template <typename Call>
[[nodiscard]] auto WithMemory(const Call& call) -> decltype(call()) {
  try {
    return call();
  } catch (const std::bad_alloc&) {
    return platform::Failure(platform::FileError::kOther);
  }
}

}  // namespace win32
