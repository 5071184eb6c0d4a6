#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>

namespace pulse {

using Deadline = std::chrono::steady_clock::time_point;

/// One answer that the loop's thread gives and another thread waits for. The first one counts.
///
/// The wait needs neither the loop's lock nor its thread: it ends at the deadline even where the
/// loop is stuck, which a wait on the loop's own condition could not promise.
template <typename T>
class Answer {
 public:
  void Give(T value) {
    {
      const std::lock_guard lock(m_mutex);
      if (m_value) return;
      m_value = value;
    }
    m_given.notify_all();
  }

  /// Nothing where no answer came in time. Never called with the loop's lock held.
  [[nodiscard]] std::optional<T> WaitUntil(Deadline deadline) {
    std::unique_lock lock(m_mutex);
    m_given.wait_until(lock, deadline, [this] { return m_value.has_value(); });
    return m_value;
  }

 private:
  std::mutex m_mutex;
  std::condition_variable m_given;
  std::optional<T> m_value;
};

}  // namespace pulse
