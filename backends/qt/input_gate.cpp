#include "backends/qt/input_gate.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>
#include <QWindow>

#include "backends/qt/message_dialog.h"

namespace qt {
namespace {

[[nodiscard]] bool IsInput(QEvent::Type type) {
  switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::NonClientAreaMouseButtonPress:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::InputMethod:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::NativeGesture:
    case QEvent::Gesture:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
    case QEvent::Close:
      return true;
    default:
      return false;
  }
}

/// A window has to see how the pointer moves and that its button went up again, or it takes the
/// next press for a part of the last one; the widgets in it do not.
[[nodiscard]] bool IsBookkeeping(const QObject* watched, QEvent::Type type) {
  return watched->isWindowType() &&
         (type == QEvent::MouseMove || type == QEvent::MouseButtonRelease);
}

/// The widget that an event is for, where it is for one.
[[nodiscard]] const QWidget* FindWidget(const QObject* watched) {
  if (watched->isWidgetType()) {
    return static_cast<const QWidget*>(watched);
  }
  if (watched->isWindowType()) {
    for (const QWidget* widget : QApplication::topLevelWidgets()) {
      if (widget->windowHandle() == watched) {
        return widget;
      }
    }
  }
  return nullptr;
}

/// A message box, or what belongs to one, such as the menu of its text.
[[nodiscard]] bool IsOfMessageBox(const QWidget* widget) {
  for (; widget != nullptr; widget = widget->parentWidget()) {
    if (dynamic_cast<const MessageDialog*>(widget) != nullptr) {
      return true;
    }
  }
  return false;
}

}  // namespace

void InputGate::Close() {
  if (m_depth++ == 0) {
    qApp->installEventFilter(this);
  }
}

void InputGate::Open() {
  if (--m_depth == 0) {
    qApp->removeEventFilter(this);
  }
}

bool InputGate::eventFilter(QObject* watched, QEvent* event) {
  if (!IsInput(event->type()) || IsBookkeeping(watched, event->type()) ||
      IsOfMessageBox(FindWidget(watched))) {
    return false;
  }
  event->ignore();
  return true;
}

}  // namespace qt
