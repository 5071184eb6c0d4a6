#include "host/panel/opener_process.h"

#include <QApplication>
#include <QFileInfo>
#include <QSocketNotifier>
#include <QTimer>
#include <QWidget>
#include <QWindow>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

#include "backends/text/printable.h"
#include "host/panel/applet_library.h"
#include "host/panel/applet_talk.h"
#include "host/panel/icons.h"
#include "host/panel/message.h"
#include "host/panel/opener_protocol.h"
#include "host/panel/places.h"
#include "host/panel/standard_output.h"
#include "resources/desktop_strings.h"

namespace panel {
namespace {

constexpr std::chrono::milliseconds kBetweenSigns{500};

std::vector<QWindow*> FindWindows() {
  std::vector<QWindow*> windows;
  for (QWindow* window : QGuiApplication::topLevelWindows()) {
    if (window->isVisible() && window->type() != Qt::ToolTip) {
      windows.push_back(window);
    }
  }
  return windows;
}

void RaiseWindows() {
  for (QWindow* window : FindWindows()) {
    window->setWindowStates(window->windowStates() & ~Qt::WindowMinimized);
    window->raise();
    window->requestActivate();
  }
}

/// The line to the panel that started this process, while the applet's windows are open: whatever
/// runs the windows' event loop serves it too.
class PanelLine {
 public:
  explicit PanelLine(int output)
      : m_output(output), m_requests(STDIN_FILENO, QSocketNotifier::Read) {
    QObject::connect(&m_signs, &QTimer::timeout, &m_signs, [this] { GiveSign(); });
    QObject::connect(&m_requests, &QSocketNotifier::activated, &m_requests,
                     [this] { TakeRequest(); });
    GiveSign();
    m_signs.start(kBetweenSigns);
  }

 private:
  void GiveSign() {
    const char sign = FindWindows().empty() ? kSignOfLife : kSignOfWindow;
    if (!WriteAll(m_output, &sign, 1)) {
      m_signs.stop();  // The panel was closed; the applet stays.
    }
  }

  void TakeRequest() {
    char request = '\0';
    if (::read(STDIN_FILENO, &request, 1) != 1) {
      m_requests.setEnabled(false);
    } else if (request == kRaiseRequest) {
      RaiseWindows();
    }
  }

  int m_output;
  QTimer m_signs;
  QSocketNotifier m_requests;
};

int Fail(const QString& path, const std::string& problem) {
  const std::string line =
      QFileInfo(path).fileName().toStdString() + ": This applet " + problem + ".\n";
  static_cast<void>(std::fputs(text::Printable(line).c_str(), stderr));
  return 1;
}

}  // namespace

int RunOpener(const Arguments& arguments) {
  std::unique_ptr<PanelLine> line;
  if (arguments.isWatched) {
    line = std::make_unique<PanelLine>(TakeStandardOutput());
  }
  const QString path = FindApplet(QString::fromStdString(arguments.applet));
  std::string problem;
  const std::unique_ptr<AppletLibrary> library = AppletLibrary::Load(path.toStdString(), problem);
  if (!library) {
    return Fail(path, problem);
  }
  const AppletTalk talk(*library);
  if (!talk.GetProblem().empty()) {
    return Fail(path, talk.GetProblem());
  }
  const auto number = static_cast<std::size_t>(arguments.number);
  if (arguments.number < 0 || number >= talk.GetAnswers().size()) {
    return Fail(path, Message(resources::kHoldsNoApplet).arg(arguments.number).toStdString());
  }
  QApplication::setWindowIcon(IconOf(QByteArray::fromStdString(talk.GetAnswers()[number].icon)));
  talk.Open(arguments.number);
  return 0;
}

}  // namespace panel
