#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "applet/voxtrel_app.h"
#include "backends/desktop/desktop_shell.h"
#include "backends/posix/posix_module.h"
#include "backends/posix/posix_process.h"
#include "host/applet/instance_threads.h"
#include "host/applet/late_presentation.h"
#include "host/machine/backends.h"

namespace applet {

/// What a loaded library is made with.
struct LibraryOptions {
  machine::Options backends;
  desktop::Environment environment;
  std::string runtimeFolder;             ///< $XDG_RUNTIME_DIR.
  std::string activationToken;           ///< $XDG_ACTIVATION_TOKEN, of whoever opened this.
  std::vector<std::string> helpFolders;  ///< Best first.
  posix::PosixModule::GetPicture getPicture;
  PresentationMaker makePresentation;
};

/// The applet with the real back ends of this machine: what CPlApplet is the door to. Belongs to
/// the user-interface thread.
class Library {
 public:
  explicit Library(LibraryOptions options);

  /// The first message starts the applet up: while a library is being loaded, neither the
  /// presentation nor the back ends could be.
  [[nodiscard]] std::int32_t Answer(std::uint32_t message, std::intptr_t lParam1,
                                    std::intptr_t lParam2);

 private:
  [[nodiscard]] platform::Platform GetPlatform();
  [[nodiscard]] InstanceThreads::Options MakeInstanceOptions();
  [[nodiscard]] desktop::DesktopShell::Options MakeShellOptions();
  void TellNewcomer();
  void Listen(const posix::Doorbell& bell);
  [[nodiscard]] bool CanOpen();

  const LibraryOptions m_options;
  machine::Backends m_backends;
  posix::PosixModule m_module;
  posix::PosixProcess m_process;
  LatePresentation m_presentation;
  InstanceThreads m_threads;
  desktop::DesktopShell m_shell;
  VoxtrelApp m_app;
  bool m_isStarted = false;
};

}  // namespace applet
