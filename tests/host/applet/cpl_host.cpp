// A control panel of the smallest kind: asks the library at argv[1] for its name and icon, and
// double-clicks it argv[2] times. With windows, each sheet is closed as soon as it is shown. If
// argv[3] is "again", the library is double-clicked once more before. If it is "ring PATH", the
// sheet is minimised and the bell of that path is rung before, and the sheet is closed when it is
// back.

#include <dlfcn.h>
#include <unistd.h>

#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>

#include "applet/control_panel.h"
#include "backends/posix/doorbell.h"

namespace {

using applet::CplMessage;

std::string ReadIcon(std::uint32_t icon) {
  std::array<char, 5> begin{};
  const ssize_t length = ::pread(static_cast<int>(icon), begin.data(), begin.size(), 0);
  return std::string(begin.data(), static_cast<std::size_t>(length < 0 ? 0 : length));
}

/// What is done when a window is first shown, if anything is.
std::function<void(QWidget& window)> onShown;

/// Says the title of whatever window is shown, once, and closes it. One that is busy stays, until
/// it is asked again.
void CloseWindows() {
  for (QWidget* const window : QApplication::topLevelWidgets()) {
    if (!window->isVisible()) {
      continue;
    }
    if (!window->property("said").toBool()) {
      std::printf("shown %s\n", window->windowTitle().toUtf8().constData());
      window->setProperty("said", true);
      if (onShown) {
        onShown(*window);
      }
    }
    if (!window->isMinimized()) {
      window->close();
    }
  }
}

/// Minimises the window and calls its process from outside.
void Ring(QWidget& window, const std::string& bell) {
  window.showMinimized();
  std::printf("minimised %d rung %d\n", window.isMinimized(),
              posix::Doorbell::Ring(bell, "").has_value());
}

int Run(applet::CplAppletFunction entry, int openings, const std::string& what,
        const std::string& bell) {
  const auto send = [entry](CplMessage message, std::intptr_t first = 0, std::intptr_t second = 0) {
    return entry(nullptr, static_cast<std::uint32_t>(message), first, second);
  };
  applet::NewCplInfo info;
  std::printf("init %d count %d\n", send(CplMessage::kInit), send(CplMessage::kGetCount));
  send(CplMessage::kNewInquire, 0, reinterpret_cast<std::intptr_t>(&info));
  std::printf("icon %s\n", ReadIcon(info.hIcon).c_str());
  if (what == "ring") {
    onShown = [bell](QWidget& window) { Ring(window, bell); };
  } else if (what == "again") {
    onShown = [send, &info](QWidget& /*window*/) {
      std::printf("again %d\n", send(CplMessage::kDblClk, 0, info.lData));
    };
  }
  for (int i = 0; i < openings; ++i) {
    std::printf("opened %d\n", send(CplMessage::kDblClk, 0, info.lData));
  }
  std::printf("stop %d exit %d\n", send(CplMessage::kStop), send(CplMessage::kExit));
  std::printf("icon %s\n", ReadIcon(info.hIcon).c_str());
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    return 2;
  }
  std::unique_ptr<QApplication> application;
  QTimer timer;
  if (std::getenv("QT_QPA_PLATFORM") != nullptr) {
    application = std::make_unique<QApplication>(argc, argv);
    QObject::connect(&timer, &QTimer::timeout, CloseWindows);
    timer.start(1);
  }
  void* const library = ::dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  void* const entry = library == nullptr ? nullptr : ::dlsym(library, applet::kCplAppletName);
  if (entry == nullptr) {
    std::fprintf(stderr, "%s\n", ::dlerror());
    return 3;
  }
  const int result = Run(reinterpret_cast<applet::CplAppletFunction>(entry), std::atoi(argv[2]),
                         argc > 3 ? argv[3] : "", argc > 4 ? argv[4] : "");
  ::dlclose(library);
  return result;
}
