// What tests that act as a user of Wine need from inside:
//
//   windows_probe           prints what stands on the screen: one JSON object for each window that
//   a
//                           program shows, with its controls and, of a list, its items
//   windows_probe KEY       prints the values of a key of the registry
//   windows_probe --hold    holds the voice tags, as a command does, until it is ended

#include <cstdio>
#include <string>

#include "backends/win32/win32_threads.h"
#include "backends/win32/windows.h"
#include "host/machine/system.h"

// After the headers above, without which it does not compile.
#include <commctrl.h>

namespace {

std::string Quoted(const std::wstring& text) {
  std::string quoted = "\"";
  for (const wchar_t unit : text) {
    char escaped[8];
    std::snprintf(escaped, sizeof(escaped), "\\u%04x", static_cast<unsigned>(unit));
    quoted += escaped;
  }
  return quoted + "\"";
}

// The text of another program's control comes by this message, and not by GetWindowText.
std::wstring TextOf(HWND window) {
  const auto length = static_cast<std::size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0));
  std::wstring text(length + 1, L'\0');
  const LRESULT copied =
      SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
  text.resize(static_cast<std::size_t>(copied));
  return text;
}

std::string ItemsOf(HWND window, UINT count, UINT length, UINT get) {
  std::string items;
  const LRESULT number = SendMessageW(window, count, 0, 0);
  for (LRESULT i = 0; i < number; ++i) {
    const auto units = SendMessageW(window, length, static_cast<WPARAM>(i), 0);
    std::wstring text(static_cast<std::size_t>(units) + 1, L'\0');
    SendMessageW(window, get, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<std::size_t>(units));
    items += (i == 0 ? "" : ",") + Quoted(text);
  }
  return "[" + items + "]";
}

/// The items of a list of icons. Their texts are copied by way of the memory of the other program.
std::string IconsOf(HWND window) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  const HANDLE other = OpenProcess(PROCESS_ALL_ACCESS, FALSE, process);
  struct Shared {
    LVITEMW item;
    RECT place;
    wchar_t text[100];
  };
  auto* const there = static_cast<Shared*>(
      VirtualAllocEx(other, nullptr, sizeof(Shared), MEM_COMMIT, PAGE_READWRITE));
  std::string items;
  const LRESULT number = SendMessageW(window, LVM_GETITEMCOUNT, 0, 0);
  for (LRESULT i = 0; i < number; ++i) {
    Shared shared{};
    shared.item.pszText = there->text;
    shared.item.cchTextMax = 100;
    shared.place.left = LVIR_ICON;
    WriteProcessMemory(other, there, &shared, sizeof(shared), nullptr);
    SendMessageW(window, LVM_GETITEMTEXTW, static_cast<WPARAM>(i),
                 reinterpret_cast<LPARAM>(&there->item));
    SendMessageW(window, LVM_GETITEMRECT, static_cast<WPARAM>(i),
                 reinterpret_cast<LPARAM>(&there->place));
    ReadProcessMemory(other, there, &shared, sizeof(shared), nullptr);
    RECT place = shared.place;
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&place), 2);
    items += (i == 0 ? "" : ",") + ("{\"text\":" + Quoted(shared.text)) + ",\"place\":[" +
             std::to_string(place.left) + "," + std::to_string(place.top) + "," +
             std::to_string(place.right) + "," + std::to_string(place.bottom) + "]}";
  }
  VirtualFreeEx(other, there, 0, MEM_RELEASE);
  CloseHandle(other);
  return "[" + items + "]";
}

std::string Describe(HWND window) {
  wchar_t name[64]{};
  GetClassNameW(window, name, 64);
  RECT place{};
  GetWindowRect(window, &place);
  std::string described =
      "\"class\":" + Quoted(name) + ",\"id\":" + std::to_string(GetDlgCtrlID(window)) +
      ",\"text\":" + Quoted(TextOf(window)) +
      ",\"enabled\":" + (IsWindowEnabled(window) ? "true" : "false") + ",\"place\":[" +
      std::to_string(place.left) + "," + std::to_string(place.top) + "," +
      std::to_string(place.right) + "," + std::to_string(place.bottom) + "]";
  const std::wstring kind = name;
  if (kind == L"ListBox") {
    described += ",\"items\":" + ItemsOf(window, LB_GETCOUNT, LB_GETTEXTLEN, LB_GETTEXT);
  } else if (kind == L"ComboBox") {
    described += ",\"items\":" + ItemsOf(window, CB_GETCOUNT, CB_GETLBTEXTLEN, CB_GETLBTEXT);
  } else if (kind == L"SysListView32") {
    described += ",\"icons\":" + IconsOf(window);
  }
  return described;
}

BOOL CALLBACK AddControl(HWND window, LPARAM list) {
  if (IsWindowVisible(window)) {
    auto& controls = *reinterpret_cast<std::string*>(list);
    controls += (controls.empty() ? "{" : ",{") + Describe(window) + "}";
  }
  return TRUE;
}

BOOL CALLBACK PrintWindow(HWND window, LPARAM /*unused*/) {
  if (IsWindowVisible(window)) {
    std::string controls;
    EnumChildWindows(window, &AddControl, reinterpret_cast<LPARAM>(&controls));
    std::printf("{%s,\"controls\":[%s]}\n", Describe(window).c_str(), controls.c_str());
  }
  return TRUE;
}

void PrintValues(const wchar_t* name) {
  HKEY key = nullptr;
  RegOpenKeyExW(HKEY_LOCAL_MACHINE, name, 0, KEY_READ, &key);
  wchar_t value[100]{};
  DWORD length = 100;
  BYTE bytes[1000]{};
  DWORD size = sizeof(bytes);
  DWORD type = 0;
  for (DWORD i = 0;
       RegEnumValueW(key, i, value, &length, nullptr, &type, bytes, &size) == ERROR_SUCCESS; ++i) {
    std::printf("%ls=%lu:", value, type);
    for (DWORD at = 0; at < size; ++at) {
      std::printf("%02x", bytes[at]);
    }
    std::printf("\n");
    length = 100;
    size = sizeof(bytes);
  }
  RegCloseKey(key);
}

int HoldTags() {
  const auto root = machine::FindDefaultRoot();
  if (!root) {
    return 1;
  }
  win32::Win32Threads threads(machine::ToName(root->lexically_normal()));
  const auto held = threads.CreateNamedMutex(u"ZedraD");
  std::printf("%s\n", held ? "held" : "failed");
  std::fflush(stdout);
  Sleep(INFINITE);
  return 0;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  if (count > 1 && std::wstring(arguments[1]) == L"--hold") {
    return HoldTags();
  }
  if (count > 1) {
    PrintValues(arguments[1]);
  } else {
    EnumWindows(&PrintWindow, 0);
  }
  return 0;
}
