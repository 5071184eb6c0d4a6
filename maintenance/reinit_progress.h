#pragma once

#include "platform/threads.h"

namespace maintenance {

/// What the worker and the monitor know of the dialog that the user waits in front of. Called by
/// their threads; the dialog stays until both have ended.
class ReinitProgress {
 public:
  ReinitProgress() = default;
  ReinitProgress(const ReinitProgress&) = delete;
  ReinitProgress& operator=(const ReinitProgress&) = delete;
  virtual ~ReinitProgress() = default;

  /// Moves the bar on by one.
  virtual void Step() = 0;

  /// Set by the monitor when the bar has made all its steps.
  [[nodiscard]] virtual platform::Event& GetDoneEvent() = 0;

  /// The dialog was ended, or is about to go: whoever sees this leaves as soon as it can.
  [[nodiscard]] virtual bool IsGone() const = 0;

  /// Lets the user close the dialog, which then goes on being shown and tells that it may be
  /// closed.
  virtual void LetUserClose() = 0;

  /// Ends the dialog with result 0.
  virtual void End() = 0;
};

}  // namespace maintenance
