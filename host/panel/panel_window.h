#pragma once

#include <QListWidget>
#include <QMainWindow>
#include <QString>
#include <QStringList>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "backends/desktop/desktop_shell.h"
#include "backends/posix/posix_threads.h"
#include "host/panel/inquiry.h"
#include "host/panel/newcomer.h"
#include "host/panel/open_applets.h"
#include "platform/wave_inputs.h"

class QAction;
class QLabel;
class QMenu;
class QStackedWidget;

namespace panel {

/// The control panel: a grid of icons, one for each applet. It runs no code of an applet itself.
class PanelWindow : public QMainWindow {
 public:
  struct Settings {
    QString program;      ///< This program, which is started again for each applet.
    QStringList places;   ///< The applets, and the folders of applets, to show.
    QString commandLine;  ///< Asked what the machine has; empty if nobody is asked.
    /// Starts a watch on the microphones. Null if nobody watches.
    std::function<std::unique_ptr<platform::WaveInputs::Watch>(std::function<void()> changed)>
        watchInputs;
    std::chrono::milliseconds inquiryLimit{10'000};
    std::chrono::milliseconds patience{15'000};
  };

  explicit PanelWindow(Settings settings);
  ~PanelWindow() override;

  /// Looks for the applets again, asks each of them, and looks again what is missing.
  void Refresh();

 protected:
  void changeEvent(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void BuildMenus();
  void BuildSampleMenu();
  void BuildCentre();
  void OpenHelp();
  void ShowApplets(const QString& library, const LibraryReport& report);
  QListWidgetItem* AddItem(const QString& library, int number, const QString& name);
  void DescribeCurrent();
  void OpenCurrent();
  void OpenSample(const Sample& sample);
  void LookForEquipment();
  void OnEquipment(const Equipment& equipment);

  Settings m_settings;
  OpenApplets m_applets;
  std::vector<std::unique_ptr<Inquiry>> m_inquiries;
  std::unique_ptr<EquipmentCheck> m_equipment;
  std::unique_ptr<platform::WaveInputs::Watch> m_watch;  ///< While there is no microphone.
  QString m_missing;                                     ///< What the bar has said last.
  posix::PosixThreads m_threads{std::string()};
  std::unique_ptr<desktop::DesktopShell> m_shell;  ///< Null until it is needed.
  // Owned by the window.
  QStackedWidget* m_centre = nullptr;
  QListWidget* m_list = nullptr;
  QLabel* m_empty = nullptr;
  QLabel* m_status = nullptr;
  QAction* m_open = nullptr;
  QMenu* m_samples = nullptr;
  bool m_lacksContacts = false;  ///< As the bar says.
  NoticeBar* m_notice = nullptr;
};

}  // namespace panel
