#include "backends/qt/frame.h"

#include <QEventLoop>
#include <QKeyEvent>
#include <QPushButton>
#include <algorithm>

namespace qt {

Frame::Frame(QWidget* parent) : QDialog(parent) {
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
}

// This is not QDialog::exec, which would show a window that is over already, and would return if
// the application has to quit.
void Frame::Run() {
  if (m_isOver) {
    return;
  }
  QEventLoop loop;
  m_loop = &loop;
  show();
  loop.exec();
  // The loop ends early if the application has to quit. The user still has to answer.
  while (!m_isOver) {
    loop.processEvents(QEventLoop::WaitForMoreEvents);
  }
  m_loop = nullptr;
  hide();
}

void Frame::End() {
  // Noted also if the window is not running yet: a dialog can end while it is set up, and Run then
  // shows nothing.
  m_isOver = true;
  if (m_loop != nullptr) {
    m_loop->quit();
  } else {
    hide();
  }
}

// Returns whether QDialog itself has a button to press on Enter.
bool Frame::HasDefaultButton() const {
  const auto buttons = findChildren<QPushButton*>();
  return std::ranges::any_of(buttons, [](const QPushButton* button) {
    return button->isDefault() && button->isVisible();
  });
}

void Frame::keyPressEvent(QKeyEvent* event) {
  const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (event->matches(QKeySequence::HelpContents)) {
    OnHelpKey();
  } else if (isEnter && !HasDefaultButton()) {
    OnEnterKey();
  } else {
    QDialog::keyPressEvent(event);
  }
}

}  // namespace qt
