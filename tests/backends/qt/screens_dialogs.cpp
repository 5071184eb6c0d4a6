#include "tests/backends/qt/screens_dialogs.h"

#include <QApplication>
#include <QProgressBar>
#include <utility>

#include "applet/about_page.h"
#include "applet/pr_shit.h"
#include "connection/connection_sheet.h"
#include "resources/dialogs.h"
#include "resources/pictures.h"
#include "resources/strings.h"
#include "tags/page_one.h"

namespace support {
namespace {

/// A picture of the window that comes next, which is then closed.
void TakeNextWindow(User& user, const QString& file) {
  user.Soon([file] {
    User::GetWindow()->activateWindow();
    QApplication::processEvents();
    SaveScreenshot(*User::GetWindow(), file);
    User::GetWindow()->reject();
  });
}

}  // namespace

BarWatcher::BarWatcher(QString file, int value) : m_file(std::move(file)), m_value(value) {
  qApp->installEventFilter(this);
}

bool BarWatcher::eventFilter(QObject* watched, QEvent* event) {
  const auto* bar = dynamic_cast<QProgressBar*>(watched);
  if (bar != nullptr && event->type() == QEvent::Show) {
    connect(bar, &QProgressBar::valueChanged, this, [this](int value) {
      if (value == m_value) {
        SaveScreenshot(*User::GetWindow(), m_file);
      }
    });
  }
  return false;
}

void TakeTestDialog(User& user, const QString& prefix) {
  TakeNextWindow(user, prefix + QStringLiteral("test.png"));
  User::Click(resources::kTestButtonId);
}

void RunAppletSheet(PageMachine& machine) {
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

void TakeConnection(PageMachine& machine, User& user, const QString& prefix) {
  TakeNextWindow(user, prefix + QStringLiteral("connection.png"));
  connection::RunConnectionSheet(machine.ui, machine.machine.registry,
                                 machine.texts(resources::kSheetCaption));
}

}  // namespace support
