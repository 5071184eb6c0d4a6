#pragma once

#include <QSocketNotifier>
#include <functional>
#include <string>

// The application object of the library, in a process that may have none: a control panel of any
// kind loads the applet, and asks it for its name without wanting a window.

namespace qt {

/// Returns whether windows can be shown: the process has an application object with windows, or it
/// has none and the environment names a display.
[[nodiscard]] bool CanShowWindows();

/// Makes the application object if the process has none. It then stays until the process ends. Call
/// it only if windows can be shown.
void EnsureApplication();

/// Gives our own texts, and the library's "Cancel" and the like, the language of the user's desktop
/// if we have it. Needs the application object. EnsureApplication and the main functions of
/// programs call it, before they show anything.
void FollowDesktopLanguage();

/// Shows this program's windows in front of those of others. `activationToken` is for window
/// systems that want to know which program asked for it.
void BringWindowsForward(const std::string& activationToken);

/// Calls `onReadable` each time a descriptor can be read, as long as this object lives. Needs the
/// application object.
class DescriptorWatch {
 public:
  DescriptorWatch(int descriptor, std::function<void()> onReadable);

 private:
  QSocketNotifier m_notifier;
};

}  // namespace qt
