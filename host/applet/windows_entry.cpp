// The door of the library on Windows: the one function that it exports.

#include <exception>
#include <memory>
#include <utility>

#include "applet/control_panel.h"
#include "backends/text/utf.h"
#include "host/applet/windows_desktop.h"
#include "resources/strings.h"

extern "C" LONG APIENTRY CPlApplet(HWND parentWindow, UINT message, LPARAM lParam1, LPARAM lParam2);

namespace {

/// The library, as the system has loaded it.
HINSTANCE FindOwnModule() {
  HMODULE own = nullptr;
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<const wchar_t*>(&FindOwnModule), &own);
  return own;
}

/// Counts the calls that are active: while the sheet is open, the panel goes on sending messages.
class ActiveCall {
 public:
  ActiveCall() { ++s_count; }
  ActiveCall(const ActiveCall&) = delete;
  ActiveCall& operator=(const ActiveCall&) = delete;
  ~ActiveCall() { --s_count; }

  [[nodiscard]] static bool IsOnly() { return s_count == 1; }

 private:
  static inline int s_count = 0;
};

LONG Answer(HWND parent, UINT message, LPARAM lParam1, LPARAM lParam2) {
  // A plain pointer, since nothing may be destroyed when the system frees the library: it then
  // holds the loader's lock, and a thread that is waited for needs that lock to end. So the applet
  // goes with the last message, or with the process.
  static applet::WindowsDesktop* desktop = nullptr;
  if (desktop == nullptr) {
    desktop = new applet::WindowsDesktop(FindOwnModule());
  }
  const LONG answer = desktop->Answer(parent, message, lParam1, lParam2);
  if (message == static_cast<UINT>(applet::CplMessage::kExit) && ActiveCall::IsOnly()) {
    const std::unique_ptr<applet::WindowsDesktop> gone(std::exchange(desktop, nullptr));
  }
  return answer;
}

}  // namespace

LONG APIENTRY CPlApplet(HWND parentWindow, UINT message, LPARAM lParam1, LPARAM lParam2) {
  // Nothing of the system throws, but a library that ran out of something does. A host knows
  // nothing of that.
  try {
    const ActiveCall call;
    return Answer(parentWindow, message, lParam1, lParam2);
  } catch (const std::exception& error) {
    const std::u16string text = text::FromUtf8(error.what());
    MessageBoxW(parentWindow, reinterpret_cast<const wchar_t*>(text.c_str()),
                reinterpret_cast<const wchar_t*>(resources::kAppletName.data()), MB_OK);
    return 0;
  }
}
