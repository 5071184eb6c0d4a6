#pragma once

#include <QObject>
#include <functional>
#include <vector>

#include "framework/served_waits.h"

namespace qt {

/// A filter of the user's input. While it is closed, input reaches message boxes only. What the
/// user types or clicks elsewhere is lost and not done later. Windows go on painting, moving and
/// resizing, and look as dead as they are. Belongs to the user-interface thread.
class InputGate final : public QObject {
 public:
  void Close();
  void Open();
  [[nodiscard]] bool IsClosed() const { return m_depth > 0; }

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  int m_depth = 0;
};

/// The thread that runs the user interface. A page waits on it as if it were any thread (for a
/// recording, for a worker); UiThread makes such a wait harmless. The wait itself happens on a
/// helper thread, and this one serves an event loop meanwhile: windows are painted and workers get
/// their calls done, but the gate keeps the user's input away, because the page is in the middle of
/// its work. Before there is an application object of the library, no window needs that, and a wait
/// is just a wait. Make it on that thread. It must outlive every object that was given it.
class UiThread final : public framework::WaitServer {
 public:
  // From any thread.

  [[nodiscard]] bool IsCurrent() const;

  /// Makes this thread call `call` when it next handles events, also during a wait. Calls come in
  /// the order of posting.
  void Post(std::function<void()> call);

  void Await(const std::function<void()>& blocking) override;

  // On this thread.

  [[nodiscard]] bool IsWaiting() const { return m_gate.IsClosed(); }

  /// Does the same as Post, but not during a wait.
  void PostForLater(std::function<void()> call);

 private:
  void ServeUntilDone(const std::function<void()>& blocking);

  QObject m_receiver;  ///< Lives on the thread.
  InputGate m_gate;
  std::vector<std::function<void()>> m_later;
};

}  // namespace qt
