#include "backends/win32/ui_thread.h"

#include <memory>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include "backends/win32/system_calls.h"

namespace win32 {
namespace {

using Call = std::function<void()>;

constexpr UINT kCall = WM_APP;

// The system's own pointers.
constexpr int kArrowPointer = 32512;
constexpr int kWaitPointer = 32514;

/// Messages of a pen or a finger. Headers for older systems do not name them.
constexpr UINT kFirstPointer = 0x0241;
constexpr UINT kLastPointer = 0x024F;

/// The last hexadecimal digit of a system command is the system's own.
constexpr WPARAM kCommandMask = 0xFFF0;

/// Messages by which the user acts. What only shows a window elsewhere on the screen is not among
/// them.
[[nodiscard]] bool IsInput(const MSG& message) {
  const UINT id = message.message;
  if (id == WM_SYSCOMMAND) {
    const WPARAM command = message.wParam & kCommandMask;
    return command == SC_CLOSE || command == SC_KEYMENU || command == SC_MOUSEMENU;
  }
  return (id >= WM_KEYFIRST && id <= WM_KEYLAST) || (id >= WM_MOUSEFIRST && id <= WM_MOUSELAST) ||
         (id >= WM_NCMOUSEMOVE && id <= WM_NCXBUTTONDBLCLK) || id == WM_CLOSE ||
         id == WM_CONTEXTMENU || id == WM_HOTKEY || id == WM_TOUCH || id == WM_GESTURE ||
         (id >= kFirstPointer && id <= kLastPointer);
}

}  // namespace

// A window of a class that the system has. A class of our own would have to be unregistered before
// the library goes.
UiThread::UiThread()
    : m_id(GetCurrentThreadId()),
      m_window(CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr,
                               nullptr)) {
  if (m_window != nullptr) {
    SetWindowLongPtrW(m_window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Serve));
  }
}

UiThread::~UiThread() {
  if (m_window == nullptr) {
    return;
  }
  MSG message;
  while (PeekMessageW(&message, m_window, kCall, kCall, PM_REMOVE)) {
    const std::unique_ptr<Call> dropped(reinterpret_cast<Call*>(message.lParam));
  }
  DestroyWindow(m_window);
}

LRESULT CALLBACK UiThread::Serve(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message != kCall) {
    return DefWindowProcW(window, message, wParam, lParam);
  }
  const std::unique_ptr<Call> call(reinterpret_cast<Call*>(lParam));
  (*call)();
  return 0;
}

bool UiThread::IsCurrent() const { return GetCurrentThreadId() == m_id; }

// Without a window the system would take the message for one of the calling thread's own.
void UiThread::Post(std::function<void()> call) {
  if (m_window == nullptr) {
    return;
  }
  auto posted = std::make_unique<Call>(std::move(call));
  if (PostMessageW(m_window, kCall, 0, reinterpret_cast<LPARAM>(posted.get()))) {
    static_cast<void>(posted.release());
  }
}

void UiThread::Await(const std::function<void()>& blocking) {
  const Handle done(IsCurrent() ? CreateEventW(nullptr, TRUE, FALSE, nullptr) : nullptr);
  std::thread waiter;
  if (done.IsOpen()) {
    try {
      waiter = std::thread([&] {
        blocking();
        SetEvent(done.Get());
      });
    } catch (const std::system_error&) {
    }
  }
  if (!waiter.joinable()) {
    blocking();  // On another thread; or there is none, so this one waits, and its windows with it.
    return;
  }
  ++m_waits;
  ShowPointer();
  ServeUntil(done.Get());
  waiter.join();
  --m_waits;
  ShowPointer();
}

// One message at a time, so that a full queue does not hide the end of the wait.
void UiThread::ServeUntil(HANDLE done) const {
  std::optional<WPARAM> quit;
  for (;;) {
    const DWORD woken =
        MsgWaitForMultipleObjectsEx(1, &done, INFINITE, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    if (woken != WAIT_OBJECT_0 + 1) {
      break;
    }
    MSG message;
    if (!PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      continue;
    }
    if (message.message == WM_QUIT) {
      quit = message.wParam;
    } else if (!IsInput(message)) {
      DispatchMessageW(&message);
    }
  }
  if (quit) {
    PostQuitMessage(static_cast<int>(*quit));  // For the loop around the wait.
  }
}

bool UiThread::SetBusy(bool isBusy) {
  const bool wasBusy = std::exchange(m_isBusy, isBusy);
  ShowPointer();
  return wasBusy;
}

void UiThread::ShowPointer() const {
  ::SetCursor(::LoadCursorW(nullptr, MAKEINTRESOURCEW(IsBusy() ? kWaitPointer : kArrowPointer)));
}

}  // namespace win32
