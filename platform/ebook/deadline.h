#pragma once

#include <gio/gio.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "platform/ebook/glib_pointers.h"

namespace ebook {

/// Ends blocking calls of the library that take too long: some of its own limits are minutes.
class Deadline {
 public:
  explicit Deadline(std::chrono::milliseconds limit)
      : m_cancellable(g_cancellable_new()), m_watch([this, limit] { Watch(limit); }) {}
  Deadline(const Deadline&) = delete;
  Deadline& operator=(const Deadline&) = delete;
  ~Deadline() {
    {
      const std::lock_guard lock(m_mutex);
      m_isOver = true;
    }
    m_over.notify_one();
    m_watch.join();
  }

  /// For each call that is to end with it.
  [[nodiscard]] GCancellable* GetCancellable() const { return m_cancellable.get(); }

 private:
  void Watch(std::chrono::milliseconds limit) {
    std::unique_lock lock(m_mutex);
    if (!m_over.wait_for(lock, limit, [this] { return m_isOver; })) {
      g_cancellable_cancel(m_cancellable.get());
    }
  }

  ObjectPointer<GCancellable> m_cancellable;
  std::mutex m_mutex;
  std::condition_variable m_over;
  bool m_isOver = false;
  std::thread m_watch;  ///< Last: it uses all of the above.
};

}  // namespace ebook
