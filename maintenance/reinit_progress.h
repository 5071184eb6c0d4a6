#pragma once

#include "platform/threads.h"

namespace maintenance {

/// What the worker and the monitor know of the dialog in which the user waits. Their threads call
/// it. The dialog stays until both have ended.
class ReinitProgress {
 public:
  ReinitProgress() = default;
  ReinitProgress(const ReinitProgress&) = delete;
  ReinitProgress& operator=(const ReinitProgress&) = delete;
  virtual ~ReinitProgress() = default;

  /// Moves the bar on by one.
  virtual void Step() = 0;

  /// Returns the event that the monitor sets after the last step of the bar.
  [[nodiscard]] virtual platform::Event& GetDoneEvent() = 0;

  /// Returns whether the dialog has ended or is about to go. A thread that sees this ends as soon
  /// as it can.
  [[nodiscard]] virtual bool IsGone() const = 0;

  /// Lets the user close the dialog. The dialog stays and says that it may be closed.
  virtual void LetUserClose() = 0;

  /// Ends the dialog with result 0.
  virtual void End() = 0;
};

}  // namespace maintenance
