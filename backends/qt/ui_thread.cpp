#include "backends/qt/ui_thread.h"

#include <QApplication>
#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QThread>
#include <QWidget>
#include <QWindow>
#include <atomic>
#include <system_error>
#include <thread>
#include <utility>

#include "backends/qt/look.h"
#include "backends/qt/message_dialog.h"

namespace qt {
namespace {

/// Closing a window counts as input: the page is in the middle of its work and could not go.
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

/// A window must see the pointer move and its button go up. Otherwise it takes the next press for a
/// part of the last one. The widgets in the window need not see that.
[[nodiscard]] bool IsBookkeeping(const QObject* watched, QEvent::Type type) {
  return watched->isWindowType() &&
         (type == QEvent::MouseMove || type == QEvent::MouseButtonRelease);
}

/// Returns the widget that an event is for. Returns null if it is for none.
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

/// Returns whether the widget is a message box or belongs to one, such as the menu of its text.
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
  // Waits nest: a message box of a worker can lead to another wait. The outermost one counts.
  if (m_depth++ == 0) {
    qApp->installEventFilter(this);
    DrawAsBusy(true);
  }
}

void InputGate::Open() {
  if (--m_depth == 0) {
    qApp->removeEventFilter(this);
    DrawAsBusy(false);
  }
}

// The filter sits on the application and sees every event before its receiver does.
bool InputGate::eventFilter(QObject* watched, QEvent* event) {
  if (!IsInput(event->type()) || IsBookkeeping(watched, event->type()) ||
      IsOfMessageBox(FindWidget(watched))) {
    return false;
  }
  event->ignore();
  return true;
}

bool UiThread::IsCurrent() const { return QThread::currentThread() == m_receiver.thread(); }

void UiThread::Post(std::function<void()> call) {
  QMetaObject::invokeMethod(&m_receiver, std::move(call), Qt::QueuedConnection);
}

// A posted call that must not come during a wait is kept in m_later, and posted again after the
// outermost wait.

void UiThread::PostForLater(std::function<void()> call) {
  Post([this, call = std::move(call)] {
    if (IsWaiting()) {
      m_later.push_back(call);
    } else {
      call();
    }
  });
}

void UiThread::Await(const std::function<void()>& blocking) {
  if (!IsCurrent() || QCoreApplication::instance() == nullptr) {
    blocking();
    return;
  }
  // The gate is closed before the helper starts and opened after it has ended, so no event of the
  // user comes between.
  m_gate.Close();
  ServeUntilDone(blocking);
  m_gate.Open();
  if (!IsWaiting()) {
    for (auto& call : std::exchange(m_later, {})) {
      PostForLater(std::move(call));
    }
  }
}

// The helper thread posts a Quit event when `blocking` has returned. An event that was posted
// before the loop began is not lost, so it does not matter who is first.
void UiThread::ServeUntilDone(const std::function<void()>& blocking) {
  QEventLoop loop;
  std::atomic<bool> isDone = false;
  std::thread waiter;
  try {
    waiter = std::thread([&] {
      blocking();
      isDone = true;
      QCoreApplication::postEvent(&loop, new QEvent(QEvent::Quit));
    });
  } catch (const std::system_error&) {
    blocking();  // There is no thread, so this one waits, and its windows with it.
    return;
  }
  loop.exec();
  // The loop ends early if the application has to quit. The wait that was begun still has to end.
  while (!isDone) {
    loop.processEvents(QEventLoop::WaitForMoreEvents);
  }
  waiter.join();
}

}  // namespace qt
