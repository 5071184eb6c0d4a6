#pragma once

#include <QObject>
#include <QString>

#include "tests/backends/qt/page_machine.h"
#include "tests/backends/qt/user.h"

namespace support {

/// Takes a picture of the window when a progress bar has got as far as `value`.
class BarWatcher final : public QObject {
 public:
  BarWatcher(QString file, int value);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  const QString m_file;
  const int m_value;
};

/// The Test dialog, opened by its button; called while the Learning page is shown.
void TakeTestDialog(User& user, const QString& prefix);

/// The sheet as the applet shows it, with both its pages.
void RunAppletSheet(PageMachine& machine);

/// The page of the other sheet.
void TakeConnection(PageMachine& machine, User& user, const QString& prefix);

}  // namespace support
