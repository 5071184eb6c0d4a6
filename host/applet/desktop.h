#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "backends/desktop/desktop_shell.h"
#include "backends/posix/doorbell.h"
#include "backends/posix/library.h"
#include "backends/posix/posix_process.h"
#include "backends/posix/posix_threads.h"
#include "backends/qt/application.h"
#include "backends/qt/qt_ui.h"
#include "backends/qt/ui_thread.h"
#include "host/applet/library.h"
#include "host/machine/backends.h"

namespace applet {

/// What the environment of the process says to the applet on a Linux desktop.
struct DesktopOptions {
  machine::Options machine;
  desktop::Environment environment;
  std::string runtimeFolder;             ///< $XDG_RUNTIME_DIR.
  std::string activationToken;           ///< $XDG_ACTIVATION_TOKEN of the program that opened this.
  std::vector<std::string> helpFolders;  ///< Best first.
  /// Whether the program that opened this shows already that there are no contacts.
  bool isNewcomerWelcomed = false;
};

/// Call it before there is a second thread.
[[nodiscard]] DesktopOptions ReadDesktopOptions();

/// The applet on a Linux desktop, with windows of Qt.
///
/// There is one instance for each root folder, which is known by the named mutex that the Learning
/// page takes. The holder hangs a bell next to it. A second instance is refused the mutex, rings
/// the bell and ends; the windows of the first one come forward.
class Desktop {
 public:
  explicit Desktop(DesktopOptions options);

  [[nodiscard]] std::int32_t Answer(std::uint32_t message, std::intptr_t lParam1,
                                    std::intptr_t lParam2) {
    return m_library.Answer(message, lParam1, lParam2);
  }

 private:
  [[nodiscard]] LibraryParts GetParts();
  [[nodiscard]] desktop::DesktopShell::Options GetShellOptions();
  void OnNamedMutex(const platform::CreatedMutex& created);
  void OnRing();

  const DesktopOptions m_options;
  machine::Backends m_backends;
  posix::PosixModule m_module;
  posix::PosixProcess m_process;
  posix::Doorbell m_bell;
  std::optional<qt::DescriptorWatch> m_bellWatch;
  posix::PosixThreads m_plainThreads;
  qt::UiThread m_thread;
  framework::ServedClock m_clock;
  framework::ServedThreads m_threads;
  qt::QtUi m_ui;
  desktop::DesktopShell m_shell;
  Library m_library;
};

}  // namespace applet
