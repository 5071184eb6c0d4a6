#pragma once

#include <deque>
#include <functional>
#include <optional>

#include "platform/dialog.h"

namespace framework {

/// The calls of a dialog's handler, for a presentation with an event loop. Each live dialog has
/// one.
///
/// The handler may run an event loop of its own: it opens message boxes and waits for recordings.
/// So all calls of it are counted. While one is active, nothing new that the user does is reported,
/// and posted commands are kept until the outermost call has returned. Belongs to the
/// user-interface thread.
class HandlerCalls {
 public:
  /// `wake` makes the event loop call Deliver soon, unless the dialog is gone by then.
  HandlerCalls(platform::DialogHandler& handler, std::function<void()> wake)
      : m_handler(handler), m_wake(std::move(wake)) {}

  [[nodiscard]] bool IsActive() const { return m_depth > 0; }
  /// Calls the handler by `call`. If that is the outermost call, wakes whoever delivers what was
  /// posted.
  void Make(const std::function<void()>& call);
  /// Keeps a command until no call is active.
  void Post(int id);
  /// Calls the handler with what was posted, and with what it posts meanwhile. Does nothing while a
  /// call is active: the end of that call wakes again. A dialog that has ended gets no command.
  void Deliver();

  /// Keeps the result of the dialog. Returns whether it is the first one, which counts: a worker
  /// may end the dialog in the moment in which the user does.
  [[nodiscard]] bool End(int result);
  [[nodiscard]] std::optional<int> GetResult() const { return m_result; }

 private:
  platform::DialogHandler& m_handler;
  const std::function<void()> m_wake;
  std::deque<int> m_posted;
  std::optional<int> m_result;
  int m_depth = 0;
};

}  // namespace framework
