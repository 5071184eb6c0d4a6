#include <QApplication>
#include <QGuiApplication>
#include <QSettings>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "backends/posix/library.h"
#include "backends/qt/application.h"
#include "backends/qt/icons.h"
#include "backends/qt/strings.h"
#include "backends/text/utf.h"
#include "host/home/arguments.h"
#include "host/home/dial_page.h"
#include "host/home/dial_parts.h"
#include "host/home/likeness_page.h"
#include "host/home/only_window.h"
#include "host/home/other_programs.h"
#include "host/home/setup_page.h"
#include "host/home/store_work.h"
#include "host/home/tags_window.h"
#include "host/home/teaching_page.h"
#include "host/home/trash_page.h"
#include "host/machine/backends.h"
#include "resources/desktop_strings.h"

namespace {

constexpr int kFailed = 1;

// What a second program asks of the window, and its activation token after that.
constexpr std::string_view kTeach = "teach ";
constexpr std::string_view kDial = "dial ";
constexpr std::string_view kShow = "show ";

/// Without a usable display Qt reports a fatal message and then aborts. This ends the process
/// before that, with an exit code and a message that helps.
void ReportNoDisplay(QtMsgType type, const QMessageLogContext& /*context*/,
                     const QString& /*text*/) {
  if (type != QtFatalMsg) {
    return;
  }
  static_cast<void>(std::fputs(
      "voxtrel-home: There is no display to open a window on. Start it on a desktop, or set "
      "DISPLAY or WAYLAND_DISPLAY to one that this user may use. Without a display, the command "
      "line does the same work: voxtrel --help\n",
      stderr));
  std::_Exit(kFailed);
}

/// Returns the pages of the window. What they need outlives the window.
home::TagsWindow::Settings MakeSettings(const machine::Options& options, home::Work& work,
                                        home::Sound sound, platform::WaveInputs& inputs,
                                        home::OtherPrograms& programs) {
  home::TagsWindow::Settings settings;
  settings.start = [&](const machine::Program& program, const QStringList& arguments) {
    return programs.Start(program, arguments);
  };
  settings.openHelp = [&] { programs.OpenHelp(); };
  settings.pages[home::PageId::kTeaching] = [&work, sound](home::Frame& frame) {
    return std::make_unique<home::TeachingPage>(work, frame, sound);
  };
  settings.pages[home::PageId::kDial] = [&options, &work, sound](home::Frame& frame) {
    return std::make_unique<home::DialPage>(
        work, frame,
        home::DialPage::Tools{
            {sound.threads,
             [&options, sound](const std::function<void(const dialer::Parts&)>& use) {
               return home::PrepareTalk(options, sound, use);
             }},
            [&options] { return home::ReadCalls(options); }});
  };
  settings.pages[home::PageId::kLikeness] = [&](home::Frame& frame) {
    return std::make_unique<home::LikenessPage>(work, frame);
  };
  settings.pages[home::PageId::kTrash] = [&](home::Frame& frame) {
    return std::make_unique<home::TrashPage>(work, frame);
  };
  settings.pages[home::PageId::kSetup] = [&, sound, start = settings.start](home::Frame&) {
    return std::make_unique<home::SetupPage>(home::SetupTools{
        options, work, sound, inputs,
        machine::Places(posix::FindOwnFile()).GetDataFolder() / "languages", start});
  };
  return settings;
}

/// Shows the page that a message asks for. Returns the word of it with which the message begins.
std::string_view ShowWish(home::TagsWindow& window, std::string_view message) {
  if (message.starts_with(kTeach)) {
    window.ShowPage(home::PageId::kTeaching, {});
    return kTeach;
  }
  if (message.starts_with(kDial)) {
    window.ShowPage(home::PageId::kDial, {});
    return kDial;
  }
  return kShow;
}

int Show(const home::Arguments& arguments, const std::string& token) {
  machine::Backends backends(arguments.machine);
  if (!backends.HasRoot()) {
    std::fprintf(stderr, "voxtrel-home: %s\n", text::ToUtf8(resources::kNoTagFolder).c_str());
    return kFailed;
  }
  home::OnlyWindow only(qEnvironmentVariable("XDG_RUNTIME_DIR").toStdString(),
                        backends.GetRoot().native());
  const std::string_view wish = arguments.teaches ? kTeach : arguments.dials ? kDial : kShow;
  // Another program has the window and shows it now. That is no failure of this one.
  if (!only.Claim(std::string(wish) + token)) {
    return 0;
  }
  // The sound library wants to be set up before there is a second thread.
  const home::Sound sound{backends.GetWaveIn(), backends.GetWaveOut(), backends.GetClock(),
                          backends.GetThreads()};
  platform::WaveInputs& inputs = backends.GetWaveInputs();
  home::StoreWork work(arguments.machine);
  QSettings remembered(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("voxtrel"),
                       QStringLiteral("voxtrel-home"));
  home::TagsWindow* shown = nullptr;
  home::OtherPrograms programs(arguments.machine, [&shown](const QString& message) {
    // The window that shows the messages is made after what may send them.
    shown->Report({false, qt::ToText(message)});
  });
  home::TagsWindow window(work, remembered,
                          MakeSettings(arguments.machine, work, sound, inputs, programs));
  shown = &window;
  only.OnCall([&window](const std::string& message) {
    qt::BringWindowsForward(message.substr(ShowWish(window, message).size()));
  });
  ShowWish(window, wish);
  window.show();
  return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
  const auto parsed = home::ParseArguments(machine::ReadOptions(), argc, argv);
  if (const int* exitCode = std::get_if<int>(&parsed)) {
    return *exitCode;
  }
  const auto& arguments = std::get<home::Arguments>(parsed);
  // The library takes it out of the environment.
  const std::string token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN").toStdString();
  int ownArguments = 1;  // The rest was the program's.
  const QtMessageHandler usual = qInstallMessageHandler(ReportNoDisplay);
  const QApplication application(ownArguments, argv);
  qInstallMessageHandler(usual);
  qt::FollowDesktopLanguage();
  QApplication::setApplicationName(QStringLiteral("voxtrel-home"));
  QGuiApplication::setDesktopFileName(QStringLiteral("voxtrel"));
  QApplication::setWindowIcon(qt::OwnIcon());
  return arguments.isProbe ? 0 : Show(arguments, token);
}
