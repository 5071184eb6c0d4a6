#pragma once

#include <QObject>
#include <functional>
#include <vector>

#include "backends/qt/input_gate.h"

namespace qt {

/// The thread that runs the user interface, and how it waits.
///
/// Made on that thread, after the application object of the library, and outlives everything that
/// was given it.
class UiThread {
 public:
  UiThread() = default;
  UiThread(const UiThread&) = delete;
  UiThread& operator=(const UiThread&) = delete;

  // From any thread.

  [[nodiscard]] bool IsCurrent() const;

  /// Has `call` called on this thread when it next handles events, also during a wait, in the order
  /// of posting.
  void Post(std::function<void()> call);

  /// Calls `blocking`, which waits for something, and returns after it. On this thread it is called
  /// on another one, and meanwhile windows are painted and posted calls served, but the user's
  /// input reaches message boxes only.
  void Await(const std::function<void()>& blocking);

  // On this thread.

  [[nodiscard]] bool IsWaiting() const { return m_gate.IsClosed(); }

  /// Has `call` called as Post does, but not during a wait.
  void PostForLater(std::function<void()> call);

 private:
  void ServeUntilDone(const std::function<void()>& blocking);

  QObject m_receiver;  ///< Lives on the thread.
  InputGate m_gate;
  std::vector<std::function<void()>> m_later;
};

}  // namespace qt
