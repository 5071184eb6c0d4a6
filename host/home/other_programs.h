#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <string>

#include "backends/desktop/desktop_shell.h"
#include "backends/posix/posix_threads.h"
#include "host/machine/backends.h"
#include "host/machine/places.h"

namespace home {

/// Starts what the window does not show itself: other programs of the system, and the help.
class OtherPrograms {
 public:
  /// `report` is called on the event loop if something could not be shown. It is not called after
  /// the destructor. Make this before there is a second thread.
  OtherPrograms(machine::Options options, std::function<void(const QString& text)> report);
  OtherPrograms(const OtherPrograms&) = delete;
  OtherPrograms& operator=(const OtherPrograms&) = delete;
  ~OtherPrograms();

  /// Starts a program with the same root, contacts, microphone and loudspeaker. It outlives this
  /// one. Returns false if it cannot be started.
  [[nodiscard]] bool Start(const machine::Program& program, const QStringList& arguments) const;

  void OpenHelp();

 private:
  const machine::Options m_options;
  const machine::Places m_places;
  QObject m_context;  ///< With it end the calls that wait for the event loop.
  posix::PosixThreads m_threads{std::string()};
  desktop::DesktopShell m_shell;
};

}  // namespace home
