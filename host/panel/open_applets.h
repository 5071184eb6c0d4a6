#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>
#include <chrono>
#include <functional>
#include <map>
#include <memory>

#include "host/panel/opened_applet.h"

class QMessageBox;

namespace panel {

/// Which applet is to be opened, and in what surroundings.
struct AppletChoice {
  QString library;
  int number = 0;
  QString name;
  QStringList environment;  ///< "NAME=value", beside the panel's own.
};

/// The applets that are open. Tells the user how each of them fares.
class OpenApplets {
 public:
  struct Settings {
    QString program;                       ///< The panel itself.
    std::chrono::milliseconds patience{};  ///< Without a sign of life.
  };
  struct Events {
    std::function<void(const QString& text)> told;  ///< For the status line.
    /// What was told at the opening of an applet is no longer so: its window is there.
    std::function<void(const QString& told)> shown;
    std::function<void()> allClosed;
  };

  OpenApplets(QWidget& window, Settings settings, Events events);
  OpenApplets(const OpenApplets&) = delete;
  OpenApplets& operator=(const OpenApplets&) = delete;
  ~OpenApplets();

  /// Opens the applet, or brings its window to the front where it is open.
  void Open(const AppletChoice& choice);

  [[nodiscard]] bool IsAnyOpen() const { return !m_open.empty(); }

 private:
  struct Entry {
    AppletChoice choice;
    std::unique_ptr<OpenedApplet> applet;
    QMessageBox* question = nullptr;  ///< Whether to wait; null where it is not asked.
  };

  void OnEnd(const QString& key, Ending ending, const QString& message);
  void OnSilence(const QString& key);
  void OnAliveAgain(const QString& key);
  void Tell(const AppletChoice& choice, Ending ending, const QString& message);
  void ShowProblem(const QString& name, const QString& text);

  QWidget& m_window;
  Settings m_settings;
  Events m_events;
  std::map<QString, Entry> m_open;
  QObject m_context;  ///< Calls that wait for the event loop end with it.
};

}  // namespace panel
