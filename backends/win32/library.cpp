#include "backends/win32/library.h"

#include <shlobj.h>

#include <memory>

#include "backends/win32/system_calls.h"

namespace win32 {
namespace {

struct FreeByTask {
  void operator()(wchar_t* text) const { ::CoTaskMemFree(text); }
};

/// Returns the name of a number in the tables of a library.
const wchar_t* NameOf(int id) { return MAKEINTRESOURCEW(id); }

HICON ToIcon(platform::IconHandle icon) {
  return reinterpret_cast<HICON>(icon);  // NOLINT(performance-no-int-to-ptr)
}

}  // namespace

std::filesystem::path FindOwnFile() {
  HMODULE own = nullptr;
  if (::GetModuleHandleExW(
          GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
          reinterpret_cast<const wchar_t*>(&FindOwnFile), &own) == FALSE) {
    return {};
  }
  constexpr std::size_t kLongest = 32768;  // Units of a path, with its zero.
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = ::GetModuleFileNameW(own, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0) {
      return {};
    }
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    if (path.size() >= kLongest) {
      return {};
    }
    path.resize(kLongest);
  }
}

std::optional<std::filesystem::path> FindUserFolder(UserFolder folder) {
  wchar_t* found = nullptr;
  const KNOWNFOLDERID& id =
      folder == UserFolder::kLocalData ? FOLDERID_LocalAppData : FOLDERID_Contacts;
  const HRESULT result = ::SHGetKnownFolderPath(id, KF_FLAG_DONT_VERIFY, nullptr, &found);
  const std::unique_ptr<wchar_t, FreeByTask> owned(found);
  return SUCCEEDED(result) ? std::optional<std::filesystem::path>(found) : std::nullopt;
}

// The system keeps one icon for each number, gives it at each call, and destroys it with the
// library.
platform::IconHandle Win32Module::LoadIcon(int id) {
  return reinterpret_cast<platform::IconHandle>(::LoadIconW(m_instance, NameOf(id)));
}

void Win32Module::DestroyIcon(platform::IconHandle icon) {
  if (icon != platform::kNoIcon) {
    ::DestroyIcon(ToIcon(icon));
  }
}

int Win32Module::LoadString(int id, std::span<char16_t> buffer) {
  if (buffer.empty()) {
    return 0;  // The system would take no room for a question about the text's address.
  }
  return ::LoadStringW(m_instance, static_cast<UINT>(id), ToWide(buffer.data()),
                       static_cast<int>(buffer.size()));
}

}  // namespace win32
