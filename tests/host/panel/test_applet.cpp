// Applets that behave, each in its own way, as applets should not.

#include "tests/host/panel/test_applet.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <QApplication>
#include <QEventLoop>
#include <QFile>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "applet/control_panel.h"

namespace {

using applet::CplMessage;

const std::string_view kFault = test_applet::kFaultOfThisLibrary;
constexpr std::string_view kIcon =
    R"(<svg xmlns="http://www.w3.org/2000/svg" width="8" height="8"><rect width="8" height="8" fill="#ff0000"/></svg>)";

[[noreturn]] void Hang() {
  for (;;) {
    ::pause();
  }
}

std::string FromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

/// What the panel did, for the test: one line for each message.
void Log(const std::string& line) {
  const std::string path = FromEnvironment("TEST_APPLET_LOG");
  if (std::FILE* file = path.empty() ? nullptr : std::fopen(path.c_str(), "a")) {
    static_cast<void>(std::fputs((line + "\n").c_str(), file));
    static_cast<void>(std::fclose(file));
  }
}

int MakeFile(std::string_view bytes) {
  const int descriptor = ::memfd_create("icon", MFD_CLOEXEC);
  static_cast<void>(!::write(descriptor, bytes.data(), bytes.size()));
  return descriptor;
}

void Fill(applet::NewCplInfo& info, std::intptr_t number) {
  info.dwSize = kFault == "other-record" ? 7U : std::uint32_t{sizeof(applet::NewCplInfo)};
  info.lData = 100 + static_cast<std::int32_t>(number);
  if (kFault == "odd-texts") {
    info.szName.fill(u'\u0007');  // No NUL at all.
    info.szName[0] = u'Q';
    info.szName[31] = u'Z';
    info.hIcon = static_cast<std::uint32_t>(MakeFile("This is no picture."));
    return;
  }
  const std::u16string_view name = number == 0 ? u"Beta" : u"Alpha";
  std::ranges::copy(name, info.szName.begin());
  info.hIcon = kFault == "no-icon" ? 987'654 : static_cast<std::uint32_t>(MakeFile(kIcon));
}

/// A window that waits, minimised, until the test makes a file.
class Window : public QWidget {
 public:
  void Run() {
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [this] {
      if (!isMinimized()) {
        Log("restored");
      }
      if (QFile::exists(QString::fromStdString(FromEnvironment("TEST_APPLET_LEAVE")))) {
        m_loop.quit();
      }
    });
    timer.start(20);
    showMinimized();
    if (!FromEnvironment("VOXTREL_WELCOMED").empty()) {
      Log("welcomed");
    }
    Log("shown");
    if (const QString remark = QGuiApplication::applicationDisplayName(); remark.contains(u' ')) {
      Log("as " + remark.toStdString());
    }
    m_loop.exec();
  }

 private:
  QEventLoop m_loop;
};

void Open() {
  if (kFault == "crash-at-open") {
    std::abort();
  }
  if (kFault == "hang-at-open") {
    Hang();
  }
  if (kFault == "says-at-open" || kFault == "fails-at-open") {
    const std::string lines =
        "a line for\x1B[31m nobody\n" + std::string(kFault) + ".cpl: It is busy.\n";
    static_cast<void>(std::fputs(lines.c_str(), stderr));
    std::_Exit(kFault == "fails-at-open" ? 3 : 0);
  }
  if (kFault == "ends-at-open") {
    std::_Exit(1);
  }
  if (!FromEnvironment("TEST_APPLET_LEAVE").empty()) {
    Window().Run();
  }
}

std::int32_t Answer(CplMessage message, std::intptr_t lParam1, std::intptr_t lParam2) {
  switch (message) {
    case CplMessage::kInit:
      static_cast<void>(std::puts("noise on standard output"));
      return kFault == "refuses" ? 0 : 1;
    case CplMessage::kGetCount:
      return kFault == "odd-count" ? -5 : 2;
    case CplMessage::kNewInquire:
      if (kFault == "crash-at-inquire") {
        std::abort();
      }
      if (kFault == "hang-at-inquire") {
        Hang();
      }
      if (kFault == "ends-at-inquire") {
        std::_Exit(0);
      }
      Fill(*reinterpret_cast<applet::NewCplInfo*>(lParam2), lParam1);
      return 0;
    case CplMessage::kDblClk:
      Open();
      return 0;
    default:
      return 0;
  }
}

}  // namespace

std::int32_t test_applet::Receive(std::uint32_t message, std::intptr_t lParam1,
                                  std::intptr_t lParam2) {
  const auto kind = static_cast<CplMessage>(message);
  Log(std::to_string(message) + " " + std::to_string(lParam1) + " " +
      (kind == CplMessage::kNewInquire ? "record" : std::to_string(lParam2)));
  return Answer(kind, lParam1, lParam2);
}
