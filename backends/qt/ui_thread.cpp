#include "backends/qt/ui_thread.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QThread>
#include <atomic>
#include <system_error>
#include <thread>
#include <utility>

namespace qt {

bool UiThread::IsCurrent() const { return QThread::currentThread() == m_receiver.thread(); }

void UiThread::Post(std::function<void()> call) {
  QMetaObject::invokeMethod(&m_receiver, std::move(call), Qt::QueuedConnection);
}

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
  if (!IsCurrent()) {
    blocking();
    return;
  }
  m_gate.Close();
  ServeUntilDone(blocking);
  m_gate.Open();
  if (!IsWaiting()) {
    for (auto& call : std::exchange(m_later, {})) {
      PostForLater(std::move(call));
    }
  }
}

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
    blocking();  // No thread to be had: this one waits, and its windows with it.
    return;
  }
  loop.exec();
  // The loop ends early where the application is told to quit; what was begun is still waited for.
  while (!isDone) {
    loop.processEvents(QEventLoop::WaitForMoreEvents);
  }
  waiter.join();
}

}  // namespace qt
