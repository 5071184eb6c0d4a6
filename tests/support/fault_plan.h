#pragma once

#include <cstddef>
#include <mutex>

#include "tests/support/failing_file_system.h"

namespace support {

/// Counts the calls of one back end and says which of them fail. May be used by several threads.
class FaultPlan {
 public:
  /// Lets call `number` (from 1, counted from now on) fail; 0 for none. A power failure is one from
  /// then on.
  void FailCall(std::size_t number, Failing failing) {
    const std::lock_guard lock(m_mutex);
    m_calls = 0;
    m_failingCall = number;
    m_failing = failing;
  }

  /// Whether a failure was injected since the latest FailCall.
  [[nodiscard]] bool HasFailed() const {
    const std::lock_guard lock(m_mutex);
    return m_failingCall != 0 && m_calls >= m_failingCall;
  }

  /// Counts one call. For the wrappers.
  [[nodiscard]] bool NextFails() {
    const std::lock_guard lock(m_mutex);
    ++m_calls;
    return m_failingCall != 0 &&
           (m_failing == Failing::kOnce ? m_calls == m_failingCall : m_calls >= m_failingCall);
  }

 private:
  mutable std::mutex m_mutex;
  std::size_t m_calls = 0;
  std::size_t m_failingCall = 0;
  Failing m_failing = Failing::kOnce;
};

}  // namespace support
