#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace home {

/// A thread that does one task after another. The destructor waits for the task that is being done,
/// and drops those that wait.
class TaskThread {
 public:
  TaskThread() : m_thread([this] { Run(); }) {}
  TaskThread(const TaskThread&) = delete;
  TaskThread& operator=(const TaskThread&) = delete;
  ~TaskThread() {
    {
      const std::lock_guard lock(m_mutex);
      m_isEnding = true;
    }
    m_changed.notify_one();
    m_thread.join();
  }

  void Do(std::function<void()> task) {
    {
      const std::lock_guard lock(m_mutex);
      m_tasks.push_back(std::move(task));
    }
    m_changed.notify_one();
  }

 private:
  void Run() {
    for (;;) {
      std::function<void()> task;
      {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_isEnding || !m_tasks.empty(); });
        if (m_isEnding) {
          return;
        }
        task = std::move(m_tasks.front());
        m_tasks.pop_front();
      }
      task();
    }
  }

  std::mutex m_mutex;
  std::condition_variable m_changed;
  std::deque<std::function<void()>> m_tasks;
  bool m_isEnding = false;
  std::thread m_thread;  ///< Last, since it uses the rest.
};

}  // namespace home
