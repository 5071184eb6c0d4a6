#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <chrono>
#include <cstdint>
#include <functional>

namespace panel {

// An opened applet's process writes a byte on its standard output at least every second while it
// serves its windows: the first of these before a window is shown, the second from then on.
inline constexpr char kSignOfLife = '.';
inline constexpr char kSignOfWindow = 'w';
/// What it reads on its standard input: bring the windows to the front.
inline constexpr char kRaiseRequest = 'r';

/// What an opened applet writes on its standard error. Lines that begin with its file's name are
/// meant for the user, and all others are passed on. Of a line the first 4,096 bytes count.
class ErrorLines {
 public:
  using PassOn = std::function<void(const QByteArray& line)>;

  ErrorLines(QByteArray prefix, PassOn passOn);

  /// Takes the next bytes, in whatever pieces they arrive.
  void Take(const QByteArray& bytes);
  /// No more bytes follow: what has arrived of a line counts as a line.
  void End();

  /// Returns the last line that was meant for the user, without the prefix. Returns an empty text
  /// if there was none.
  [[nodiscard]] const QString& GetMessage() const { return m_message; }

 private:
  void TakeLine(const QByteArray& line);

  QByteArray m_prefix;
  PassOn m_passOn;
  QByteArray m_begun;  ///< The line that has not ended yet.
  QString m_message;
};

/// How an opened applet ended.
enum class Ending : std::uint8_t {
  kClosed,      ///< As it should.
  kFailed,      ///< With an exit code that is not 0.
  kCrashed,     ///< By a signal that the panel did not send.
  kStopped,     ///< By Stop.
  kNotStarted,  ///< The process could not be made.
};

/// An applet that is open in a process of its own. The process ends with the object.
class OpenedApplet {
 public:
  struct Start {
    QString program;  ///< The panel itself.
    QString library;
    int number = 0;
    QStringList environment;               ///< "NAME=value", added to the panel's own.
    std::chrono::milliseconds patience{};  ///< How long it may go without a sign of life.
    QString remark = {};  ///< Stands in the titles of its windows, after their own; can be empty.
  };
  /// All are called from the event loop. They must not release the object.
  struct Events {
    /// `message` is what the applet had to say to the user.
    std::function<void(Ending ending, const QString& message)> ended;
    std::function<void()> silent;      ///< There was no sign of life for longer than the patience.
    std::function<void()> aliveAgain;  ///< There is one again.
    std::function<void()> shown;       ///< Its first window is there. Called once.
  };

  OpenedApplet(const Start& start, Events events);
  OpenedApplet(const OpenedApplet&) = delete;
  OpenedApplet& operator=(const OpenedApplet&) = delete;
  ~OpenedApplet();

  /// Asks for the applet's windows to come in front of all others.
  void Raise();
  /// Kills the process. The event `ended` follows.
  void Stop();

 private:
  void TakeSignsOfLife();
  void OnSilence();
  void OnEnd(Ending ending);

  QProcess m_process;
  QTimer m_silence;  ///< Starts again with each sign of life.
  Events m_events;
  ErrorLines m_errors;
  bool m_isSilent = false;
  bool m_isShown = false;
  bool m_isStopped = false;
};

}  // namespace panel
