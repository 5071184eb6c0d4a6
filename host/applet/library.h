#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "applet/voxtrel_app.h"
#include "host/machine/backends.h"
#include "platform/module.h"
#include "platform/platform.h"

namespace applet {

/// What the applet's library is made of. Each system gives its own.
struct LibraryParts {
  machine::Backends& backends;
  platform::Platform platform;
  platform::Module& module;
  RecordWriter writeRecord;
  /// Whether there is a screen for windows. Nothing is shown unless this has said so.
  std::function<bool()> hasScreen;
  /// Whether a newcomer still has to hear where contacts are looked for.
  bool welcomesNewcomers = true;
  /// Shows the windows that are open in front of those of other programs.
  std::function<void()> bringForward;
};

/// The applet with the back ends of this machine. CPlApplet hands each message to it. Belongs to
/// the user-interface thread.
class Library {
 public:
  /// What `parts` refers to outlives this.
  explicit Library(LibraryParts parts);

  /// Answers a message of the control panel. The first message starts the applet up, since no back
  /// end could be used while the library is being loaded. A second double-click brings the windows
  /// of the first one forward.
  [[nodiscard]] std::int32_t Answer(std::uint32_t message, std::intptr_t lParam1,
                                    std::intptr_t lParam2);

 private:
  void WelcomeNewcomer();
  [[nodiscard]] bool CanOpen();

  const LibraryParts m_parts;
  VoxtrelApp m_app;
  bool m_isStarted = false;
};

/// Writes one line for the user to standard error. It begins with the library's name, by which a
/// control panel knows what to show.
void ReportOnStandardError(std::u16string_view text);

}  // namespace applet
