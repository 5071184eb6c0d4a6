#include "host/panel/applet_process.h"

#include <fcntl.h>
#include <unistd.h>

#include <QApplication>
#include <QFileInfo>
#include <QSocketNotifier>
#include <QTimer>
#include <QWindow>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <vector>

#include "backends/qt/icons.h"
#include "backends/qt/strings.h"
#include "backends/text/printable.h"
#include "host/panel/applet_talk.h"
#include "host/panel/inquiry.h"
#include "host/panel/opened_applet.h"
#include "host/panel/places.h"
#include "resources/desktop_strings.h"

// The two lives of this program in which it loads an applet: the inquiry, which asks for names and
// icons, and the opener, which shows an applet until it is closed. Each is a process of its own. A
// library that crashes or hangs takes only that process with it.
namespace panel {
namespace {

constexpr std::chrono::milliseconds kBetweenSigns{500};

/// Keeps standard output for the panel that started this process: what the library prints there
/// goes to standard error from now on. Returns the descriptor of the old standard output, or -1.
int TakeStandardOutput() {
  // If the panel ends, the applets that are open must not end with it.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  // A number above the three standard ones, which programs that the applet starts do not inherit.
  const int own = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  static_cast<void>(::dup2(STDERR_FILENO, STDOUT_FILENO));
  return own;
}

/// Returns whether the panel's end of the pipe took all.
bool WriteAll(int descriptor, const char* bytes, qsizetype count) {
  while (count > 0) {
    const ssize_t written = ::write(descriptor, bytes, static_cast<std::size_t>(count));
    if (written < 0 && errno == EINTR) {
      continue;
    }
    if (written <= 0) {
      return false;
    }
    bytes += written;
    count -= written;
  }
  return true;
}

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

/// The line to the panel that started this process, while the applet's windows are open. The event
/// loop that serves the windows serves it too, so a window that hangs gives no sign of life.
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
    // The end of the pipe would be reported again and again.
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

LibraryReport ReportOn(const std::string& path) {
  const auto library = AppletLibrary::Load(path);
  if (!library) {
    return platform::Failure(library.error());
  }
  const auto talk = AppletTalk::Begin(*library);
  if (!talk) {
    return platform::Failure(talk.error());
  }
  std::vector<AppletReport> applets;
  for (const AppletAnswer& answer : (*talk)->GetAnswers()) {
    applets.push_back({qt::ToQString(answer.name), QByteArray::fromStdString(answer.icon)});
  }
  return applets;
}

/// Returns when the applet's window is closed. The error completes "This applet".
platform::Result<void, QString> OpenApplet(const QString& path, int number) {
  const auto library = AppletLibrary::Load(path.toStdString());
  if (!library) {
    return platform::Failure(library.error());
  }
  const auto talk = AppletTalk::Begin(*library);
  if (!talk) {
    return platform::Failure(talk.error());
  }
  const std::vector<AppletAnswer>& answers = (*talk)->GetAnswers();
  const auto index = static_cast<std::size_t>(number);
  if (number < 0 || index >= answers.size()) {
    return platform::Failure(qt::Say(resources::kHoldsNoApplet).arg(number));
  }
  // The windows of the applet show its own icon in the task bar, and not the panel's.
  QApplication::setWindowIcon(qt::IconOf(QByteArray::fromStdString(answers[index].icon)));
  (*talk)->Open(number);
  return {};
}

}  // namespace

int RunInquiry(const std::string& applet) {
  const int output = TakeStandardOutput();
  // The whole report at the end, in one piece. Whatever the library does before, half a report
  // cannot be taken for a whole one.
  const QByteArray bytes = ToBytes(ReportOn(applet));
  return WriteAll(output, bytes.constData(), bytes.size()) ? 0 : 1;
}

int RunOpener(const Arguments& arguments) {
  std::unique_ptr<PanelLine> line;
  if (arguments.isWatched) {
    line = std::make_unique<PanelLine>(TakeStandardOutput());
  }
  // The library puts this name into the title of each window, and the applet's own title stays.
  if (!arguments.remark.empty()) {
    QGuiApplication::setApplicationDisplayName(QString::fromStdString(arguments.remark));
  }
  const QString path = FindApplet(QString::fromStdString(arguments.applet));
  const auto opened = OpenApplet(path, arguments.number);
  if (opened) {
    return 0;
  }
  // The panel knows by the prefix that the line is meant for the user.
  const std::string problem = QFileInfo(path).fileName().toStdString() + ": This applet " +
                              opened.error().toStdString() + ".\n";
  static_cast<void>(std::fputs(text::Printable(problem).c_str(), stderr));
  return 1;
}

}  // namespace panel
