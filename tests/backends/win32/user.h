#pragma once

#include <deque>
#include <functional>
#include <string>

#include "backends/win32/windows.h"

namespace support {

/// A user before the windows of this process. Acts on the user-interface thread, by the messages
/// that the system sends for what a user does.
class User {
 public:
  /// Does `act` as soon as a window is shown and handles messages. Each act waits for the one
  /// before.
  static void WhenShown(std::function<void(HWND window)> act);

  /// Forgets the acts that are still to come.
  static void Leave();

  /// Returns the window in front that this thread shows. Returns null if there is none.
  [[nodiscard]] static HWND FindShown();
  /// Returns the control of a dialog or of the page that a sheet shows.
  [[nodiscard]] static HWND FindControl(HWND window, int id);

  static void Press(HWND control);
  /// Presses a key while `control` has the focus.
  static void PressKey(HWND control, WPARAM key);
  static void Choose(HWND control, int index);
  static void Type(HWND control, const std::wstring& text);
  [[nodiscard]] static std::wstring TextOf(HWND window);

 private:
  static void CALLBACK OnTimer(HWND window, UINT message, UINT_PTR timer, DWORD time);

  static std::deque<std::function<void(HWND window)>> s_acts;
  static UINT_PTR s_timer;
};

}  // namespace support
