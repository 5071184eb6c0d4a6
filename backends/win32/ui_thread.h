#pragma once

#include <functional>

#include "backends/win32/windows.h"
#include "framework/served_waits.h"

namespace win32 {

/// The thread that runs the user interface. A page waits on it as if it were any thread. The wait
/// itself happens on a helper thread, and this one serves its message queue meanwhile: windows are
/// painted and workers get their calls done. What the user types or clicks is lost and not done
/// later, because the page is in the middle of its work. Message boxes of other threads have queues
/// of their own, so they can be answered.
///
/// Make it on that thread, and destroy it there. It outlives every object that was given it.
class UiThread final : public framework::WaitServer {
 public:
  UiThread();
  ~UiThread() override;

  // From any thread.

  [[nodiscard]] bool IsCurrent() const;

  /// Makes this thread call `call` when it next handles messages, also during a wait and while a
  /// window of the system runs a loop of its own. Calls come in the order of posting. One that was
  /// not made when this is destroyed is dropped.
  void Post(std::function<void()> call);

  void Await(const std::function<void()>& blocking) override;

  // On this thread.

  [[nodiscard]] bool IsWaiting() const { return m_waits > 0; }

  /// Whether the pointer has to say "wait": during a wait, and if the page has asked for it.
  [[nodiscard]] bool IsBusy() const { return m_isBusy || IsWaiting(); }
  /// Returns what was set before.
  bool SetBusy(bool isBusy);
  void ShowPointer() const;

 private:
  static LRESULT CALLBACK Serve(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  void ServeUntil(HANDLE done) const;

  const DWORD m_id;
  HWND m_window = nullptr;  ///< Takes the posted calls; nobody sees it. Null if there is none.
  int m_waits = 0;
  bool m_isBusy = false;
};

}  // namespace win32
