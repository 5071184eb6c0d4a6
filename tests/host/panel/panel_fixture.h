#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace panel_test {

/// The library of the applet with that fault; "good" has none.
inline QString Applet(const char* fault) {
  return QStringLiteral(PANEL_TEST_APPLETS "/%1.cpl").arg(QLatin1String(fault));
}

inline QString Program() { return QStringLiteral(PANEL_PROGRAM); }

/// Serves the event loop until `isReached`; false if a real process takes much too long.
template <typename Condition>
bool Until(Condition isReached) {
  constexpr qint64 kLongest = 60'000;  // ms
  QElapsedTimer timer;
  timer.start();
  while (!isReached()) {
    if (timer.elapsed() > kLongest) {
      return false;
    }
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
  }
  return true;
}

inline QString ReadAll(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// Where the test applets write what they were sent, and read that they are to close.
class AppletTrace {
 public:
  AppletTrace() {
    qputenv("TEST_APPLET_LOG", Log().toUtf8());
    qunsetenv("TEST_APPLET_LEAVE");
  }
  AppletTrace(const AppletTrace&) = delete;
  AppletTrace& operator=(const AppletTrace&) = delete;
  ~AppletTrace() {
    qunsetenv("TEST_APPLET_LOG");
    qunsetenv("TEST_APPLET_LEAVE");
  }

  [[nodiscard]] QStringList Lines() const {
    return ReadAll(Log()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
  }
  [[nodiscard]] QString Path(const char* name) const {
    return m_folder.filePath(QLatin1String(name));
  }

  /// From now on an opened applet's window stays until Leave.
  void Stay() { qputenv("TEST_APPLET_LEAVE", Path("leave").toUtf8()); }
  void Leave() {
    QFile file(Path("leave"));
    static_cast<void>(file.open(QIODevice::WriteOnly));
  }

 private:
  [[nodiscard]] QString Log() const { return Path("log"); }

  QTemporaryDir m_folder;
};

}  // namespace panel_test
