#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>

#include "backends/pulse/library.h"

// The library runs a thread of its own, the loop's thread, for each connection, and calls this
// program on it. Another thread that touches anything of the library holds the loop's lock, and
// waits for what the loop's thread has to say by an Answer.

namespace pulse {

struct Release {
  void operator()(pa_threaded_mainloop* loop) const { pa_threaded_mainloop_free(loop); }
  void operator()(pa_context* context) const { pa_context_unref(context); }
  void operator()(pa_stream* stream) const { pa_stream_unref(stream); }
  void operator()(pa_proplist* properties) const { pa_proplist_free(properties); }

  /// Cancels an operation that is given up early, so that its callback never comes. Needs the lock.
  void operator()(pa_operation* operation) const {
    pa_operation_cancel(operation);
    pa_operation_unref(operation);
  }
};

using LoopHandle = std::unique_ptr<pa_threaded_mainloop, Release>;
using ContextHandle = std::unique_ptr<pa_context, Release>;
using StreamHandle = std::unique_ptr<pa_stream, Release>;
using ProplistHandle = std::unique_ptr<pa_proplist, Release>;
using OperationHandle = std::unique_ptr<pa_operation, Release>;

/// Holds the loop's lock, without which nothing of a context or stream may be touched outside the
/// loop's thread.
class LoopLock {
 public:
  explicit LoopLock(pa_threaded_mainloop* loop) : m_loop(loop) { pa_threaded_mainloop_lock(loop); }
  LoopLock(const LoopLock&) = delete;
  LoopLock& operator=(const LoopLock&) = delete;
  ~LoopLock() { pa_threaded_mainloop_unlock(m_loop); }

 private:
  pa_threaded_mainloop* m_loop;
};

using Deadline = std::chrono::steady_clock::time_point;

/// One yes or no that the loop's thread gives and another thread waits for. The first one counts.
///
/// The wait needs neither the loop's lock nor its thread. It ends at the deadline even if the loop
/// is stuck, which a wait on the loop's own condition could not promise.
class Answer {
 public:
  void Give(bool value) {
    {
      const std::lock_guard lock(m_mutex);
      if (m_value) return;
      m_value = value;
    }
    m_given.notify_all();
  }

  /// Returns nothing if no answer comes in time. Never called with the loop's lock held.
  [[nodiscard]] std::optional<bool> WaitUntil(Deadline deadline) {
    std::unique_lock lock(m_mutex);
    m_given.wait_until(lock, deadline, [this] { return m_value.has_value(); });
    return m_value;
  }

 private:
  std::mutex m_mutex;
  std::condition_variable m_given;
  std::optional<bool> m_value;
};

}  // namespace pulse
