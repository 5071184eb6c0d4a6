#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string_view>

#include "platform/result.h"

namespace platform {

inline constexpr std::uint32_t kNoLimit = std::numeric_limits<std::uint32_t>::max();

enum class WaitResult : std::uint8_t {
  kSignalled,
  kTimedOut,
  kFailed,  ///< The wait can never end, or the system has refused it.
};

/// A handle of one thread. The destructor waits until the body has ended, so no thread outlives
/// what it uses. A thread that was never resumed ends without having run.
class Thread {
 public:
  Thread() = default;
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;
  virtual ~Thread() = default;

  /// Lets a suspended thread run. Has no effect on a thread that runs already.
  virtual void Resume() = 0;

  /// Waits until the body has ended, for at most `milliseconds`. kNoLimit waits without limit.
  [[nodiscard]] virtual WaitResult Wait(std::uint32_t milliseconds) = 0;
};

/// A manual-reset event. After it is set, every waiter passes until it is reset. May be called from
/// any thread.
class Event {
 public:
  Event() = default;
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;
  virtual ~Event() = default;

  virtual void Set() = 0;
  virtual void Reset() = 0;

  /// Waits until the event is set, for at most `milliseconds`. kNoLimit waits without limit.
  [[nodiscard]] virtual WaitResult Wait(std::uint32_t milliseconds) = 0;
};

/// A mutex that all processes of the device know by its name. The mutex goes with its last holder,
/// even if that process is killed.
class NamedMutex {
 public:
  NamedMutex() = default;
  NamedMutex(const NamedMutex&) = delete;
  NamedMutex& operator=(const NamedMutex&) = delete;
  virtual ~NamedMutex() = default;
};

/// Why there is no thread, no event or no mutex.
enum class ThreadError : std::uint8_t {
  kHeld,     ///< Another holder has the mutex.
  kRefused,  ///< The system gives none.
};

using StartedThread = Result<std::unique_ptr<Thread>, ThreadError>;
using CreatedEvent = Result<std::unique_ptr<Event>, ThreadError>;
using CreatedMutex = Result<std::unique_ptr<NamedMutex>, ThreadError>;

enum class ThreadStart : std::uint8_t { kRunning, kSuspended };

/// Makes threads, and what they wait for. May be called from any thread.
class Threads {
 public:
  Threads() = default;
  Threads(const Threads&) = delete;
  Threads& operator=(const Threads&) = delete;
  virtual ~Threads() = default;

  /// Starts a thread that calls `body`, which must not throw. Fails with kRefused only.
  [[nodiscard]] virtual StartedThread Start(std::function<void()> body, ThreadStart start) = 0;

  /// Returns an event that is not set. Fails with kRefused only.
  [[nodiscard]] virtual CreatedEvent CreateManualResetEvent() = 0;

  /// Makes the mutex of this name. Fails with kHeld if another holder has it.
  [[nodiscard]] virtual CreatedMutex CreateNamedMutex(std::u16string_view name) = 0;
};

}  // namespace platform
