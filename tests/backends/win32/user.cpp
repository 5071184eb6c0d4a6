#include "tests/backends/win32/user.h"

#include <utility>

namespace support {
namespace {

BOOL CALLBACK NoteShown(HWND window, LPARAM found) {
  if (IsWindowVisible(window) && IsWindowEnabled(window)) {
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
  }
  return TRUE;
}

struct Wanted {
  int id;
  HWND found;
};

BOOL CALLBACK NoteControl(HWND window, LPARAM wanted) {
  auto& control = *reinterpret_cast<Wanted*>(wanted);
  if (GetDlgCtrlID(window) == control.id && IsWindowVisible(window)) {
    control.found = window;
    return FALSE;
  }
  return TRUE;
}

void Report(HWND control, int event) {
  SendMessageW(GetParent(control), WM_COMMAND,
               static_cast<WPARAM>(MAKELONG(GetDlgCtrlID(control), event)),
               reinterpret_cast<LPARAM>(control));
}

}  // namespace

// A timer comes when there is nothing else to do. The system shows a dialog then, and not before.
void User::WhenShown(std::function<void(HWND window)> act) {
  s_acts.push_back(std::move(act));
  if (s_timer == 0) {
    s_timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, &OnTimer);
  }
}

void User::Leave() {
  s_acts.clear();
  KillTimer(nullptr, std::exchange(s_timer, 0));
}

void CALLBACK User::OnTimer(HWND /*window*/, UINT /*message*/, UINT_PTR /*timer*/, DWORD /*time*/) {
  const HWND shown = FindShown();
  if (shown != nullptr && !s_acts.empty()) {
    const auto act = std::move(s_acts.front());
    s_acts.pop_front();
    act(shown);
  }
}

std::deque<std::function<void(HWND window)>> User::s_acts;
UINT_PTR User::s_timer = 0;

HWND User::FindShown() {
  HWND found = nullptr;
  EnumThreadWindows(GetCurrentThreadId(), &NoteShown, reinterpret_cast<LPARAM>(&found));
  return found;
}

HWND User::FindControl(HWND window, int id) {
  Wanted wanted{id, nullptr};
  EnumChildWindows(window, &NoteControl, reinterpret_cast<LPARAM>(&wanted));
  return wanted.found;
}

// The system sends nothing of the mouse to a disabled window.
void User::Press(HWND control) {
  if (IsWindowEnabled(control)) {
    SendMessageW(control, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
    SendMessageW(control, WM_LBUTTONUP, 0, MAKELPARAM(3, 3));
  }
}

void User::PressKey(HWND control, WPARAM key) {
  SendMessageW(control, WM_KEYDOWN, key, 1);
  SendMessageW(control, WM_KEYUP, key, 1);
}

void User::Choose(HWND control, int index) {
  wchar_t name[16]{};
  GetClassNameW(control, name, 16);
  if (std::wstring(name) == L"ListBox") {
    SendMessageW(control, LB_SETCURSEL, static_cast<WPARAM>(index), 0);
    Report(control, LBN_SELCHANGE);
  } else {
    SendMessageW(control, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
    Report(control, CBN_SELCHANGE);
  }
}

void User::Type(HWND control, const std::wstring& text) {
  const HWND field = FindWindowExW(control, nullptr, L"Edit", nullptr);
  SendMessageW(field, EM_SETSEL, 0, -1);
  for (const wchar_t unit : text) {
    SendMessageW(field, WM_CHAR, unit, 1);
  }
}

std::wstring User::TextOf(HWND window) {
  std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(
      static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return text;
}

}  // namespace support
