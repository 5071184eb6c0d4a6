#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string_view>

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

struct CreatedMutex {
  std::unique_ptr<NamedMutex> mutex;  ///< Null if another holder has it, or if none can be made.
  bool existed = false;               ///< Another holder has it.
};

enum class ThreadStart : std::uint8_t { kRunning, kSuspended };

/// Makes threads, and what they wait for. May be called from any thread.
class Threads {
 public:
  Threads() = default;
  Threads(const Threads&) = delete;
  Threads& operator=(const Threads&) = delete;
  virtual ~Threads() = default;

  /// Starts a thread that calls `body`, which must not throw. Returns null if the system gives no
  /// thread.
  [[nodiscard]] virtual std::unique_ptr<Thread> Start(std::function<void()> body,
                                                      ThreadStart start) = 0;

  /// Returns an event that is not set. Returns null if the system gives none.
  [[nodiscard]] virtual std::unique_ptr<Event> CreateManualResetEvent() = 0;

  /// Makes the mutex of this name, unless another holder has it.
  [[nodiscard]] virtual CreatedMutex CreateNamedMutex(std::u16string_view name) = 0;
};

}  // namespace platform
