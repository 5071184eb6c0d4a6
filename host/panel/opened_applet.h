#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <chrono>
#include <cstdint>
#include <functional>

#include "host/panel/error_lines.h"

namespace panel {

/// How an opened applet ended.
enum class Ending : std::uint8_t {
  kClosed,      ///< As it should.
  kFailed,      ///< With an exit code that is not 0.
  kCrashed,     ///< By a signal that nobody here sent.
  kStopped,     ///< By Stop.
  kNotStarted,  ///< The process could not be made.
};

/// An applet that is open in a process of its own, which is ended with the object.
class OpenedApplet {
 public:
  struct Start {
    QString program;  ///< The panel itself.
    QString library;
    int number = 0;
    QStringList environment;               ///< "NAME=value", beside the panel's own.
    std::chrono::milliseconds patience{};  ///< Without a sign of life.
  };
  /// All are called from the event loop. The object must not be released within them.
  struct Events {
    /// `message` is what the applet had to say to the user.
    std::function<void(Ending ending, const QString& message)> ended;
    std::function<void()> silent;      ///< There was no sign of life for longer than the patience.
    std::function<void()> aliveAgain;  ///< There is one again.
    std::function<void()> shown;       ///< Its first window is there. Once.
  };

  OpenedApplet(const Start& start, Events events);
  OpenedApplet(const OpenedApplet&) = delete;
  OpenedApplet& operator=(const OpenedApplet&) = delete;
  ~OpenedApplet();

  /// Asks for the applet's windows to come in front of all others.
  void Raise();
  void Stop();

 private:
  void TakeSignsOfLife();
  void OnSilence();
  void OnEnd(Ending ending);

  QProcess m_process;
  QTimer m_silence;
  Events m_events;
  ErrorLines m_errors;
  bool m_isSilent = false;
  bool m_isShown = false;
  bool m_isStopped = false;
};

}  // namespace panel
