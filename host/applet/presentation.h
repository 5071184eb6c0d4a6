#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "platform/clock.h"
#include "platform/threads.h"
#include "platform/ui.h"

namespace applet {

/// What shows the applet, and how its user-interface thread waits meanwhile. Belongs to that
/// thread.
class Presentation {
 public:
  Presentation() = default;
  Presentation(const Presentation&) = delete;
  Presentation& operator=(const Presentation&) = delete;
  virtual ~Presentation() = default;

  [[nodiscard]] virtual platform::Ui& GetUi() = 0;
  [[nodiscard]] virtual platform::Clock& GetClock() = 0;
  [[nodiscard]] virtual platform::Threads& GetThreads() = 0;

  /// Has `onReadable` called whenever the descriptor can be read while windows are open.
  virtual void Watch(int descriptor, std::function<void()> onReadable) = 0;

  /// Shows the windows before those of other programs. `activationToken` is the leave of the window
  /// system to do so, which whoever asked was given; empty where there is none.
  virtual void BringForward(std::string_view activationToken) = 0;
};

/// Makes the presentation of this machine; `clock` and `threads` are what it waits with. Never
/// null.
using PresentationMaker = std::function<std::unique_ptr<Presentation>(platform::Clock& clock,
                                                                      platform::Threads& threads)>;

}  // namespace applet
