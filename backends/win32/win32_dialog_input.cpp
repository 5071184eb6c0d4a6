// What the user does in a dialog, by keyboard and mouse, and what the page hears of it.

#include "backends/win32/win32_dialog.h"

#include <commctrl.h>

#include <algorithm>

namespace win32 {

using platform::CommandEvent;
using resources::ControlKind;

namespace {

/// Of a key that is held down.
constexpr LPARAM kWasDown = LPARAM{1} << 30;

[[nodiscard]] std::optional<resources::Key> ToKey(WPARAM key) {
  switch (key) {
    case VK_DELETE:
      return resources::Key::kDelete;
    case VK_SPACE:
      return resources::Key::kSpace;
    default:
      return std::nullopt;
  }
}

[[nodiscard]] bool IsDown(int key) { return GetKeyState(key) < 0; }

}  // namespace

LRESULT CALLBACK Win32Dialog::WatchControl(HWND control, UINT message, WPARAM wParam, LPARAM lParam,
                                           UINT_PTR id, DWORD_PTR self) {
  auto& dialog = *reinterpret_cast<Win32Dialog*>(self);
  const bool isLink = dialog.m_links.contains(control);
  if (message == WM_NCDESTROY) {
    RemoveWindowSubclass(control, &WatchControl, id);
  } else if (isLink && (message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK)) {
    // A link answers when the button of the mouse goes down, as everything painted does.
    dialog.FollowLink(control);
    return 0;
  } else if (message == WM_KEYDOWN && dialog.PressKey(static_cast<int>(id), wParam, lParam)) {
    return 0;
  } else if (message == WM_CHAR && wParam == L' ' && !isLink) {
    return 0;  // The key was taken. A list would look for an item that begins with a blank.
  }
  return DefSubclassProc(control, message, wParam, lParam);
}

bool Win32Dialog::PressKey(int control, WPARAM key, LPARAM details) {
  const auto pressed = ToKey(key);
  if (!pressed || IsDown(VK_SHIFT) || IsDown(VK_CONTROL) || IsDown(VK_MENU)) {
    return false;
  }
  const auto found = std::ranges::find_if(m_template.keys, [&](const resources::KeyTemplate& each) {
    return each.control == control && each.key == *pressed;
  });
  if (found == m_template.keys.end()) {
    return false;
  }
  // A key that is held down is one press.
  if ((details & kWasDown) == 0 && IsEnabled(found->button)) {
    TellUsersCommand(found->button, CommandEvent::kClick);
  }
  return true;
}

void Win32Dialog::OnCommand(int id, int event, HWND control) {
  if (Control* const known = FindWindowed(control)) {
    OnControl(*known, event);
  } else if (m_links.contains(control)) {
    if (event == BN_CLICKED) {
      FollowLink(control);
    }
  } else if (id == IDOK && !IsBusy()) {
    TellOk();  // Enter, in a dialog without a default button.
  } else if (id == IDCANCEL && !IsBusy()) {
    m_calls.Make([this] { m_handler.OnCancel(); });
  }
}

void Win32Dialog::FollowLink(HWND link) {
  if (!IsBusy()) {
    const platform::Rect& area = m_links[link];
    m_calls.Make([&] {
      m_handler.OnLButtonDown({(area.left + area.right) / 2, (area.top + area.bottom) / 2});
    });
  }
}

// The items first: when the page hears of a choice, it finds it selected.
void Win32Dialog::OnControl(Control& control, int event) {
  const ControlKind kind = control.description.kind;
  const bool isList = kind == ControlKind::kListBox;
  if (m_isChanging) {
    return;
  }
  if (!control.items) {
    if (event == BN_CLICKED) {
      TellUsersCommand(control.description.id, CommandEvent::kClick);
    }
    return;
  }
  if (event == (isList ? LBN_SELCHANGE : CBN_SELCHANGE)) {
    const auto row = SendMessageW(control.window, isList ? LB_GETCURSEL : CB_GETCURSEL, 0, 0);
    control.items->Select(row < 0 ? std::nullopt : std::optional(static_cast<int>(row)));
    TellUsersCommand(control.description.id, CommandEvent::kSelectionChange);
  } else if (!isList && event == CBN_EDITCHANGE) {
    control.items->SetField(ReadWindowText(control.window));
  }
}

// A press on a disabled control comes here as well.
void Win32Dialog::OnButton(POINT point) {
  const HWND under = ChildWindowFromPointEx(m_window, point, CWP_SKIPINVISIBLE);
  const bool isPainted = under == m_window || m_links.contains(under);
  if (isPainted && !IsBusy()) {
    m_calls.Make([&] { m_handler.OnLButtonDown(m_scale.ToDevice(point)); });
  }
}

void Win32Dialog::TellOk() {
  m_calls.Make([this] { m_handler.OnOK(); });
}

bool Win32Dialog::AskForHelp() {
  bool hasHelp = false;
  if (!m_thread.IsWaiting()) {
    m_calls.Make([&] { hasHelp = m_handler.OnHelp(); });
  }
  return hasHelp;
}

void Win32Dialog::TellUsersCommand(int id, CommandEvent event) {
  if (!IsBusy()) {
    m_calls.Make([&] { m_handler.OnCommand(id, event); });
  }
}

}  // namespace win32
