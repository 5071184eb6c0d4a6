#pragma once

#include <QSocketNotifier>
#include <functional>
#include <string>

namespace qt {

/// Whether the environment names a display that windows can be shown on.
[[nodiscard]] bool HasDisplay();

/// Sees to an application object of the library in this process: the host's own, else one that is
/// made here and stays until the process ends. False where neither can be: the host's is one
/// without windows, or there is no display.
[[nodiscard]] bool EnsureApplication();

/// Shows this program's windows before those of others. `activationToken` is for window systems
/// that want to know who asked for it.
void BringWindowsForward(const std::string& activationToken);

/// Calls back whenever a descriptor can be read. Needs the application object.
class DescriptorWatch {
 public:
  DescriptorWatch(int descriptor, std::function<void()> onReadable);

 private:
  QSocketNotifier m_notifier;
};

}  // namespace qt
