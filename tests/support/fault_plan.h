#pragma once

#include <cstddef>
#include <mutex>
#include <ostream>

namespace support {

/// For how long an injected failure lasts.
enum class Failing : unsigned char {
  kOnce,         ///< One call fails, the next works again.
  kFromThenOn,   ///< Every later call fails too.
  kPowerFailure  ///< From then on nothing takes effect any more, as if the process was killed in
                 ///< this call.
};

inline std::ostream& operator<<(std::ostream& stream, Failing failing) {
  constexpr const char* kNames[] = {"once", "from then on", "power failure"};
  return stream << kNames[static_cast<std::size_t>(failing)];
}

/// Counts the calls of one back end and says which of them fail. Every double of tests/support that
/// can fail asks such a plan. Tests let call 1, 2, ... fail until a run ends without a failure. May
/// be used by several threads.
class FaultPlan {
 public:
  /// What becomes of one call.
  struct Verdict {
    bool fails = false;
    bool takesEffect = true;  ///< Whether a call that may take effect although it fails does so.
  };

  /// Lets call `number` (from 1, counted from now on) fail. No call fails if it is 0.
  void FailCall(std::size_t number, Failing failing) {
    const std::lock_guard lock(m_mutex);
    m_calls = 0;
    m_failingCall = number;
    m_failing = failing;
  }

  /// Returns the number of calls since the latest FailCall, or since the start.
  [[nodiscard]] std::size_t CountCalls() const {
    const std::lock_guard lock(m_mutex);
    return m_calls;
  }

  /// Returns whether a failure was injected since the latest FailCall.
  [[nodiscard]] bool HasFailed() const {
    const std::lock_guard lock(m_mutex);
    return m_failingCall != 0 && m_calls >= m_failingCall;
  }

  /// Counts one call. For the doubles.
  [[nodiscard]] Verdict Next() {
    const std::lock_guard lock(m_mutex);
    ++m_calls;
    const bool isTheOne = m_calls == m_failingCall;
    const bool isLater = m_failingCall != 0 && m_calls > m_failingCall;
    if (!isTheOne && (!isLater || m_failing == Failing::kOnce)) {
      return {};
    }
    // A killed process may have been in the middle of its last call, and makes no further one.
    return {true, isTheOne || m_failing != Failing::kPowerFailure};
  }

  /// As Next, for calls that never take effect if they fail.
  [[nodiscard]] bool NextFails() { return Next().fails; }

 private:
  mutable std::mutex m_mutex;
  std::size_t m_calls = 0;
  std::size_t m_failingCall = 0;
  Failing m_failing = Failing::kOnce;
};

}  // namespace support
