// Writes pictures of the windows as they are at one scale of the desktop:
//
//   screens FOLDER PERCENT [LANGUAGE_FILE]

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QProgressBar>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <cstdio>
#include <span>
#include <string>
#include <utility>

#include "applet/about_page.h"
#include "applet/voxtrel_app.h"
#include "connection/connection_page.h"
#include "resources/dialogs.h"
#include "resources/pictures.h"
#include "resources/strings.h"
#include "tags/page_one.h"
#include "tests/backends/qt/page_machine.h"
#include "tests/backends/qt/user.h"

namespace {

using support::User;

/// Takes a picture of the window when a progress bar has reached `value`.
class BarWatcher final : public QObject {
 public:
  BarWatcher(QString file, int value) : m_file(std::move(file)), m_value(value) {
    qApp->installEventFilter(this);
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    const auto* bar = dynamic_cast<QProgressBar*>(watched);
    if (bar != nullptr && event->type() == QEvent::Show) {
      connect(bar, &QProgressBar::valueChanged, this, [this](int value) {
        if (value == m_value) {
          // During the next wait, as the user sees it.
          QTimer::singleShot(0, this,
                             [this] { support::SaveScreenshot(*User::GetWindow(), m_file); });
        }
      });
    }
    return false;
  }

 private:
  const QString m_file;
  const int m_value;
};

/// Takes a picture of the window that opens next, and closes it.
void TakeNextWindow(User& user, const QString& file) {
  user.Soon([file] {
    User::GetWindow()->activateWindow();
    QApplication::processEvents();
    support::SaveScreenshot(*User::GetWindow(), file);
    User::GetWindow()->reject();
  });
}

/// Opens the Test dialog by its button. Call this while the Learning page is shown.
void TakeTestDialog(User& user, const QString& prefix) {
  TakeNextWindow(user, prefix + QStringLiteral("test.png"));
  User::Click(resources::kTestButtonId);
}

/// Runs the sheet as the applet shows it, with both pages.
void RunAppletSheet(support::PageMachine& machine) {
  tags::Page_one learning(machine.GetPlatform(), machine.texts);
  applet::AboutPage about(
      machine.GetPlatform(),
      {resources::kProductPicture, resources::kMakerPicture, u"Voxtrel PE", u"v3.0"});
  applet::PrShit sheet(machine.texts(resources::kSheetCaption), machine.GetPlatform(),
                       machine.texts);
  sheet.AddPage(learning);
  sheet.AddPage(about);
  sheet.DoModal();
}

void TakeConnection(support::PageMachine& machine, User& user, const QString& prefix) {
  TakeNextWindow(user, prefix + QStringLiteral("connection.png"));
  connection::RunConnectionSheet(machine.ui, machine.machine.registry,
                                 machine.texts(resources::kSheetCaption));
}

constexpr int kMiddle = 50;  ///< Of the bar of a recording.

void TakeSheet(support::PageMachine& machine, User& user, const QString& prefix) {
  user.Soon([&] {
    User::GetWindow()->activateWindow();
    QApplication::processEvents();
    support::SaveScreenshot(*User::GetWindow(), prefix + QStringLiteral("empty.png"));
    User::Click(resources::kRecordButtonId);
    User::Choose(resources::kContactComboId, 1);
    User::Click(resources::kRecordButtonId);
    const BarWatcher watcher(prefix + QStringLiteral("recording.png"), kMiddle);
    User::Click(resources::kRecordButtonId);
    User::ChooseLine(resources::kTagListId, 1);
    User::FindList(resources::kTagListId)->setFocus();
    User::GetWindow()->activateWindow();
    QApplication::processEvents();
    support::SaveScreenshot(*User::GetWindow(), prefix + QStringLiteral("learning.png"));
    user.SetAnswer([&](QDialog& box) {
      support::SaveScreenshot(box, prefix + QStringLiteral("confirm.png"));
      box.reject();
    });
    User::Click(resources::kDeleteButtonId);
    TakeTestDialog(user, prefix);
    User::GetWindow()->findChild<QTabWidget*>()->setCurrentIndex(1);
    support::SaveScreenshot(*User::GetWindow(), prefix + QStringLiteral("about.png"));
    User::GetWindow()->reject();
  });
  RunAppletSheet(machine);
}

void TakeBoxes(support::PageMachine& machine, User& user, const QString& prefix) {
  const auto take = [&](const char* name, const std::u16string& text) {
    user.SetAnswer([&](QDialog& box) {
      support::SaveScreenshot(box, prefix + QLatin1StringView(name));
      box.reject();
    });
    machine.ui.ShowMessage(platform::ApplicationBox(text));
  };
  take("short.png", u"Error: oid == 0");
  take("lines.png",
       u"There are no voice tags.\n\nTo record voice tags select Start -> Settings -> System tab "
       u"-> Zedra Voxtrel.");
  take("long_word.png", u"/home/" + std::u16string(120, u'x') + u"/Voxtrel_wav");
}

}  // namespace

int main(int argc, char** argv) {
  const std::span<char*> arguments(argv, static_cast<std::size_t>(argc));
  if (argc < 3) {
    std::fputs("usage: screens FOLDER PERCENT [LANGUAGE_FILE]\n", stderr);
    return 2;
  }
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }
  qputenv("QT_SCALE_FACTOR", QByteArray::number(std::stod(arguments[2]) / 100));
  const QApplication application(argc, argv);
  if (application.devicePixelRatio() * 100 != std::stod(arguments[2])) {
    std::fputs("screens: the scale was not taken\n", stderr);
    return 1;
  }
  support::PageMachine machine;
  if (argc > 3) {
    QFile file(QString::fromLocal8Bit(arguments[3]));
    if (!file.open(QIODevice::ReadOnly)) {
      std::fputs("screens: cannot read the language file\n", stderr);
      return 1;
    }
    const QByteArray read = file.readAll();
    const auto bytes =
        std::as_bytes(std::span(read.constData(), static_cast<std::size_t>(read.size())));
    machine.LoadLanguage(std::vector<std::byte>(bytes.begin(), bytes.end()));
  }
  User user;
  const QString prefix = QString::fromLocal8Bit(arguments[1]) + u'/';
  QDir().mkpath(prefix);
  TakeSheet(machine, user, prefix);
  TakeConnection(machine, user, prefix);
  TakeBoxes(machine, user, prefix);
  return 0;
}
