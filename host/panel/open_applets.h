#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "host/panel/opened_applet.h"

class QMessageBox;

namespace panel {

/// The applet to open, and its surroundings.
struct AppletChoice {
  QString library;
  int number = 0;
  QString name;
  QStringList environment;  ///< "NAME=value", added to the panel's own.
  QString remark = {};      ///< Stands in the titles of its windows, after their own; can be empty.
  /// Of several choices of one group, one is open: to open another one closes it first. Empty for
  /// a choice without a group.
  QString group = {};
  /// Whether the panel shows already that there are no contacts.
  bool isNewcomerWelcomed = false;
};

/// The applets that are open, each at most once. Reports to the user how each of them fares: in the
/// status line, and in a box if something went wrong or an applet does not answer.
class OpenApplets {
 public:
  struct Settings {
    QString program;                       ///< The panel itself.
    std::chrono::milliseconds patience{};  ///< How long an applet may go without a sign of life.
  };
  struct Events {
    std::function<void(const QString& text)> status;  ///< A text for the status line.
    /// An applet's window is there. So `text`, which the status line got at its opening, is no
    /// longer true.
    std::function<void(const QString& text)> shown;
    std::function<void()> allClosed;
  };

  OpenApplets(QWidget& window, Settings settings, Events events);
  OpenApplets(const OpenApplets&) = delete;
  OpenApplets& operator=(const OpenApplets&) = delete;
  ~OpenApplets();

  /// Opens the applet, or brings its window to the front if it is open. Closes another one of its
  /// group first.
  void Open(const AppletChoice& choice);

  [[nodiscard]] bool IsAnyOpen() const { return !m_open.empty(); }

 private:
  struct Entry {
    AppletChoice choice;
    std::unique_ptr<OpenedApplet> applet;
    QMessageBox* question = nullptr;                  ///< "Wait or close?" Null if it is not asked.
    std::optional<AppletChoice> next = std::nullopt;  ///< Opens in its place once it has ended.
  };

  /// Makes `choice` follow the one of its group that is open. Returns false if none is.
  [[nodiscard]] bool TakesTurn(const AppletChoice& choice);
  void OnEnd(const QString& key, Ending ending, const QString& message);
  void OnSilence(const QString& key);
  void OnAliveAgain(const QString& key);
  void ReportEnd(const AppletChoice& choice, Ending ending, const QString& message);
  void ShowProblem(const QString& name, const QString& text);

  QWidget& m_window;
  Settings m_settings;
  Events m_events;
  std::map<QString, Entry> m_open;
  QObject m_context;  ///< With it end the calls that wait for the event loop.
};

}  // namespace panel
