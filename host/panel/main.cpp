#include <QApplication>
#include <QCoreApplication>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "backends/pulse/pulse_inputs.h"
#include "backends/qt/application.h"
#include "host/panel/applet_process.h"
#include "host/panel/arguments.h"
#include "host/panel/panel_window.h"
#include "host/panel/places.h"

namespace {

constexpr int kNoDisplay = 1;

/// Without a usable display Qt reports a fatal message and then aborts. This ends the process
/// before that, with an exit code and a message that helps.
void ReportNoDisplay(QtMsgType type, const QMessageLogContext& /*context*/,
                     const QString& /*text*/) {
  if (type != QtFatalMsg) {
    return;
  }
  static_cast<void>(std::fputs(
      "voxtrel-panel: There is no display to open a window on. Start it on a desktop, or set "
      "DISPLAY or WAYLAND_DISPLAY to one that this user may use. Without a display, the command "
      "line does the same work: voxtrel --help\n",
      stderr));
  std::_Exit(kNoDisplay);
}

int Show(const panel::Arguments& arguments) {
  panel::PanelWindow::Settings settings;
  settings.program = QCoreApplication::applicationFilePath();
  settings.commandLine = panel::FindCommandLine();
  for (const std::string& place : arguments.places) {
    settings.places.append(QString::fromStdString(place));
  }
  if (settings.places.isEmpty()) {
    settings.places = {panel::AppletFolder()};
  }
  // It outlives the window, which watches it.
  pulse::PulseWaveInputs inputs;
  settings.watchInputs = [&inputs](std::function<void()> changed) {
    return inputs.StartWatch(std::move(changed));
  };
  panel::PanelWindow window(settings);
  window.show();
  // The window may be closed before the applets that it opened.
  QApplication::setQuitOnLastWindowClosed(false);
  return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
  const auto parsed = panel::ParseArguments(argc, argv);
  if (const int* exitCode = std::get_if<int>(&parsed)) {
    return *exitCode;
  }
  const auto& arguments = std::get<panel::Arguments>(parsed);
  // An inquiry needs no display and shows nothing, so it begins before there is an application
  // object.
  if (arguments.mode == panel::Mode::kInquire) {
    return panel::RunInquiry(arguments.applet);
  }
  int ownArguments = 1;  // The rest was the panel's.
  const QtMessageHandler usual = qInstallMessageHandler(ReportNoDisplay);
  const QApplication application(ownArguments, argv);
  qInstallMessageHandler(usual);
  qt::FollowDesktopLanguage();
  QApplication::setApplicationName(QStringLiteral("voxtrel-panel"));
  QGuiApplication::setDesktopFileName(QStringLiteral("voxtrel-panel"));
  switch (arguments.mode) {
    case panel::Mode::kOpen:
      return panel::RunOpener(arguments);
    case panel::Mode::kShow:
      return Show(arguments);
    default:
      return 0;  // A probe that comes as far as this has found a display.
  }
}
