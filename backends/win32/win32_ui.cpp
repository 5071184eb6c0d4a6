#include "backends/win32/win32_ui.h"

#include <commctrl.h>

#include <utility>

#include "backends/win32/dialog_resource.h"
#include "backends/win32/system_calls.h"
#include "backends/win32/win32_dialog.h"
#include "backends/win32/win32_sheet.h"
#include "framework/dialog.h"
#include "resources/pictures.h"

namespace win32 {

using platform::MessageAnswer;
using platform::MessageStyle;

static_assert(static_cast<UINT>(MessageStyle::kOkCancel) == MB_OKCANCEL);
static_assert(static_cast<UINT>(MessageStyle::kIconExclamation) == MB_ICONEXCLAMATION);
static_assert(static_cast<UINT>(MessageStyle::kSetForeground) == MB_SETFOREGROUND);
static_assert(static_cast<UINT>(MessageStyle::kTopmost) == MB_TOPMOST);
static_assert(framework::kIdOk == IDOK && framework::kIdCancel == IDCANCEL);

namespace {

/// The number under which the system looks for a library's description of the controls' look.
constexpr int kLookResource = 2;

/// Gives windows that are made as long as it lives the controls' present look. The program that has
/// loaded the library chooses the look of its own windows.
class PresentLook {
 public:
  explicit PresentLook(HMODULE module) {
    ACTCTXW description{};
    description.cbSize = sizeof(description);
    description.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    description.hModule = module;
    description.lpResourceName = MAKEINTRESOURCEW(kLookResource);
    m_context = CreateActCtxW(&description);
    m_isActive = m_context != INVALID_HANDLE_VALUE && ActivateActCtx(m_context, &m_cookie);
    INITCOMMONCONTROLSEX classes{sizeof(classes), ICC_PROGRESS_CLASS | ICC_TAB_CLASSES};
    InitCommonControlsEx(&classes);
  }
  PresentLook(const PresentLook&) = delete;
  PresentLook& operator=(const PresentLook&) = delete;
  ~PresentLook() {
    if (m_isActive) DeactivateActCtx(0, m_cookie);
    if (m_context != INVALID_HANDLE_VALUE) ReleaseActCtx(m_context);
  }

 private:
  HANDLE m_context = INVALID_HANDLE_VALUE;
  ULONG_PTR m_cookie = 0;
  bool m_isActive = false;
};

/// Makes windows as large as the screen asks for, as long as it lives. The system would draw those
/// of an old host small and enlarge the picture. Systems before Windows 10 do not know the call.
class ScreenScale {
 public:
  ScreenScale()
      : m_set(reinterpret_cast<Set>(reinterpret_cast<void*>(
            GetProcAddress(GetModuleHandleW(L"user32.dll"), "SetThreadDpiAwarenessContext")))) {
    if (m_set != nullptr) m_earlier = m_set(DPI_AWARENESS_CONTEXT_SYSTEM_AWARE);
  }
  ScreenScale(const ScreenScale&) = delete;
  ScreenScale& operator=(const ScreenScale&) = delete;
  ~ScreenScale() {
    if (m_set != nullptr && m_earlier != nullptr) m_set(m_earlier);
  }

 private:
  using Set = DPI_AWARENESS_CONTEXT(WINAPI*)(DPI_AWARENESS_CONTEXT);

  const Set m_set;
  DPI_AWARENESS_CONTEXT m_earlier = nullptr;
};

struct Search {
  const wchar_t* mark;
  HWND found;
};

BOOL CALLBACK FindMarked(HWND window, LPARAM parameter) {
  auto& search = *reinterpret_cast<Search*>(parameter);
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process == GetCurrentProcessId() || GetPropW(window, search.mark) == nullptr) {
    return TRUE;
  }
  search.found = window;
  return FALSE;
}

/// Brings the uppermost of a window and those that it owns to the front. To raise it alone would
/// not give it the keyboard, and Wine only gives a window the keyboard without raising it.
void BringToFront(HWND window) {
  if (window == nullptr) {
    return;
  }
  if (IsIconic(window)) {
    ShowWindow(window, SW_RESTORE);
  }
  const HWND uppermost = GetLastActivePopup(window);
  BringWindowToTop(uppermost);
  SetForegroundWindow(uppermost);
}

}  // namespace

/// What holds from before a window is made until it is closed: how it looks, and that it is the
/// uppermost one. Over a window that expects an answer, the pointer never says "wait".
class Win32Ui::Opening {
 public:
  explicit Opening(Win32Ui& ui)
      : m_ui(ui),
        m_look(ui.m_module),
        m_count(ui.m_windows.size()),
        m_wasBusy(ui.m_thread.SetBusy(false)) {}
  Opening(const Opening&) = delete;
  Opening& operator=(const Opening&) = delete;
  ~Opening() {
    m_ui.m_windows.resize(m_count);
    m_ui.m_thread.SetBusy(m_wasBusy);
  }

  void OnCreated(HWND window) { m_ui.m_windows.push_back(window); }

 private:
  Win32Ui& m_ui;
  const ScreenScale m_scale;
  const PresentLook m_look;
  const std::size_t m_count;
  const bool m_wasBusy;
};

Win32Ui::Win32Ui(UiThread& thread, std::u16string_view applicationName, HMODULE module)
    : m_thread(thread), m_applicationName(applicationName), m_module(module), m_pictures(module) {}

bool Win32Ui::BringMarkedForward(const std::u16string& mark) {
  Search search{ToWide(mark), nullptr};
  EnumWindows(&FindMarked, reinterpret_cast<LPARAM>(&search));
  BringToFront(search.found);
  return search.found != nullptr;
}

void Win32Ui::BringForward() const { BringToFront(GetTop()); }

std::u16string Win32Ui::CaptionOf(const platform::MessageBox& box) const {
  switch (box.captionKind) {
    case platform::MessageCaption::kText:
      return box.caption;
    case platform::MessageCaption::kApplication:
      return m_applicationName;
    case platform::MessageCaption::kNone:
      break;
  }
  return {};
}

// The box of a worker thread has no owner, so it blocks no window, and its worker waits for it
// here. It comes forward, since nobody would look for it behind the windows that are open.
MessageAnswer Win32Ui::ShowMessage(const platform::MessageBox& box) {
  const bool isWorkers = !m_thread.IsCurrent();
  const ScreenScale scale;
  const PresentLook look(m_module);
  const bool wasBusy = !isWorkers && m_thread.SetBusy(false);
  const int answer =
      ::MessageBoxW(isWorkers ? nullptr : GetTop(), ToWide(box.text), ToWide(CaptionOf(box)),
                    static_cast<UINT>(box.style) | (isWorkers ? MB_SETFOREGROUND : 0U));
  if (!isWorkers) {
    m_thread.SetBusy(wasBusy);
  }
  return answer == IDOK ? MessageAnswer::kOk : MessageAnswer::kCancel;
}

void Win32Ui::Beep(platform::Sound /*sound*/) { MessageBeep(MB_ICONEXCLAMATION); }

void Win32Ui::SetCursor(platform::Cursor cursor) {
  m_thread.SetBusy(cursor == platform::Cursor::kWait);
}

// The system shows no dialog that was ended while it was set up.
int Win32Ui::RunDialog(const resources::DialogTemplate& dialog, platform::DialogHandler& handler) {
  Opening opening(*this);
  Win32Dialog window(dialog, handler, m_thread, m_pictures);
  window.OnCreated([&](HWND created) { opening.OnCreated(created); });
  const auto resource = MakeDialogResource(dialog, DialogPlace::kWindow);
  DialogBoxIndirectParamW(m_module, reinterpret_cast<const DLGTEMPLATE*>(resource.data()), GetTop(),
                          &Win32Dialog::Procedure, reinterpret_cast<LPARAM>(&window));
  return window.GetResult().value_or(framework::kIdCancel);
}

bool Win32Ui::RunSheet(std::u16string_view caption, std::span<const platform::SheetPage> pages,
                       platform::SheetHandler& handler) {
  Opening opening(*this);
  Win32Sheet sheet(caption, pages, handler, m_thread, m_pictures);
  sheet.OnCreated([&](HWND created) {
    opening.OnCreated(created);
    if (!m_mark.empty()) {
      SetPropW(created, ToWide(m_mark), created);
    }
  });
  const auto icon =
      static_cast<HICON>(LoadImageW(m_module, MAKEINTRESOURCEW(resources::kAppletIcon), IMAGE_ICON,
                                    0, 0, LR_SHARED | LR_DEFAULTSIZE));
  return sheet.Run(GetTop(), icon);
}

}  // namespace win32
