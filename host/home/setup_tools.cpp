#include "host/home/setup_tools.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>

namespace home {
namespace {

QString AskForFile(QWidget* parent, const QString& title, const QString& filter) {
  return QFileDialog::getOpenFileName(parent, title, {}, filter);
}

QString AskForNewFile(QWidget* parent, const QString& title, const QString& filter,
                      const QString& name) {
  return QFileDialog::getSaveFileName(parent, title, name, filter);
}

bool Ask(QWidget* parent, const QString& question, const QString& yes, const QString& no) {
  // Not with the library's own Yes and No: a button that says what it does needs no second reading.
  // Enter and Escape change nothing.
  QMessageBox box(QMessageBox::Question, parent->window()->windowTitle(), question,
                  QMessageBox::NoButton, parent);
  box.setTextFormat(Qt::PlainText);  // Names of the user's must not be read as marks of a format.
  const QPushButton* const agrees = box.addButton(yes, QMessageBox::AcceptRole);
  QPushButton* const declines = box.addButton(no, QMessageBox::RejectRole);
  box.setDefaultButton(declines);
  box.setEscapeButton(declines);
  box.exec();
  return box.clickedButton() == agrees;
}

}  // namespace

Questions DesktopQuestions() { return {AskForFile, AskForNewFile, Ask}; }

}  // namespace home
