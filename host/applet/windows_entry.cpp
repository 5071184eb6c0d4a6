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

/// The library, as the system has loaded it. Stays loaded as long as this lives.
class OwnModule {
 public:
  OwnModule() {
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const wchar_t*>(&CPlApplet), &m_module);
  }
  OwnModule(const OwnModule&) = delete;
  OwnModule& operator=(const OwnModule&) = delete;
  ~OwnModule() { FreeLibrary(m_module); }

  [[nodiscard]] HINSTANCE Get() const { return m_module; }

 private:
  HMODULE m_module = nullptr;
};

/// The applet, from the first message to the last one. A panel may free the library before: while
/// the sheet is open and workers run, or without a last message. So it stays loaded for as long as
/// the applet lives. If it did not, the applet would have to be destroyed while the system frees
/// it. The system then holds the loader's lock, and a thread that is waited for needs that lock to
/// end.
struct LivingApplet {
  OwnModule module;
  applet::WindowsDesktop desktop{module.Get()};
};

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
  // A plain pointer: without a last message it goes with the process.
  static LivingApplet* living = nullptr;
  if (living == nullptr) {
    living = new LivingApplet;
  }
  const LONG answer = living->desktop.Answer(parent, message, lParam1, lParam2);
  if (message == static_cast<UINT>(applet::CplMessage::kExit) && ActiveCall::IsOnly()) {
    // The panel, which has sent the message, still holds the library.
    const std::unique_ptr<LivingApplet> gone(std::exchange(living, nullptr));
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
