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
  kFailed,  ///< The wait can never end, or the system refused it.
};

/// A handle of one thread. The destructor of a thread that ran waits for its body to end, so no
/// thread outlives what it was given; a thread never resumed ends without having run.
class Thread {
 public:
  Thread() = default;
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;
  virtual ~Thread() = default;

  /// Lets a suspended thread run; no effect on one that runs already.
  virtual void Resume() = 0;

  /// Waits for the end of the body for at most `milliseconds` (kNoLimit: without limit).
  [[nodiscard]] virtual WaitResult Wait(std::uint32_t milliseconds) = 0;
};

/// A manual-reset event: once set it lets every waiter pass until it is reset.
class Event {
 public:
  Event() = default;
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;
  virtual ~Event() = default;

  virtual void Set() = 0;
  virtual void Reset() = 0;
  [[nodiscard]] virtual WaitResult Wait(std::uint32_t milliseconds) = 0;
};

/// A mutex known by its name to all processes on the device. Goes with its last holder, also where
/// that is killed.
class NamedMutex {
 public:
  NamedMutex() = default;
  NamedMutex(const NamedMutex&) = delete;
  NamedMutex& operator=(const NamedMutex&) = delete;
  virtual ~NamedMutex() = default;
};

struct CreatedMutex {
  std::unique_ptr<NamedMutex> mutex;  ///< Null where another holder has it, or none can be made.
  bool existed = false;               ///< Another holder has it.
};

enum class ThreadStart : std::uint8_t { kRunning, kSuspended };

/// Threads and what they wait for. May be called from any thread.
class Threads {
 public:
  Threads() = default;
  Threads(const Threads&) = delete;
  Threads& operator=(const Threads&) = delete;
  virtual ~Threads() = default;

  /// Null where the system has no thread to give. `body` must not throw.
  [[nodiscard]] virtual std::unique_ptr<Thread> Start(std::function<void()> body,
                                                      ThreadStart start) = 0;

  /// An event, not signalled; null where the system has none to give.
  [[nodiscard]] virtual std::unique_ptr<Event> CreateManualResetEvent() = 0;

  [[nodiscard]] virtual CreatedMutex CreateNamedMutex(std::u16string_view name) = 0;
};

}  // namespace platform
