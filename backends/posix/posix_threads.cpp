#include "backends/posix/posix_threads.h"

#include <fcntl.h>
#include <sys/file.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <ctime>
#include <filesystem>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "backends/posix/host_paths.h"
#include "backends/posix/system_calls.h"
#include "backends/text/utf.h"

// Threads, events, the clock, and mutexes that programs share. The system has none of these in the
// form that the device has them: a thread that waits to be started, an event that stays set, a
// mutex with a name.
namespace posix {
namespace {

using platform::Failure;
using platform::ThreadError;
using platform::ThreadStart;
using platform::WaitResult;

/// A state that threads wait for: the start and the end of a thread, or an event. Once it is open
/// it lets all pass until it is shut.
class Gate {
 public:
  void Open() {
    const std::lock_guard lock(m_mutex);
    m_isOpen = true;
    ++m_openings;
    m_opened.notify_all();
  }

  void Shut() {
    const std::lock_guard lock(m_mutex);
    m_isOpen = false;
  }

  [[nodiscard]] WaitResult Wait(std::uint32_t milliseconds) {
    std::unique_lock lock(m_mutex);
    // A thread that waits when the gate opens passes, even if the gate is shut again at once.
    const auto passes = [this, openings = m_openings] {
      return m_isOpen || m_openings != openings;
    };
    if (milliseconds == platform::kNoLimit) {
      m_opened.wait(lock, passes);
      return WaitResult::kSignalled;
    }
    return m_opened.wait_for(lock, std::chrono::milliseconds(milliseconds), passes)
               ? WaitResult::kSignalled
               : WaitResult::kTimedOut;
  }

 private:
  std::mutex m_mutex;
  std::condition_variable m_opened;
  bool m_isOpen = false;
  std::uint64_t m_openings = 0;
};

/// A thread begins at a gate, so that it can be made without running. A handle that is given up
/// before opens the gate as well, and the thread ends without having run its body.
class PosixThread final : public platform::Thread {
 public:
  PosixThread(std::function<void()> body, ThreadStart start) : m_state(std::make_shared<State>()) {
    if (start == ThreadStart::kRunning) {
      Resume();
    }
    // The thread keeps the state and not the handle, which may be gone before it.
    m_thread = std::thread([state = m_state, run = std::move(body)] {
      static_cast<void>(state->resumed.Wait(platform::kNoLimit));
      if (!state->isAbandoned) {
        run();
      }
      state->ended.Open();
    });
  }

  PosixThread(const PosixThread&) = delete;
  PosixThread& operator=(const PosixThread&) = delete;

  ~PosixThread() override {
    // The body has given up its own handle. A thread cannot wait for itself, so it is let go.
    if (m_thread.get_id() == std::this_thread::get_id()) {
      m_thread.detach();
      return;
    }
    if (!m_isResumed.exchange(true)) {
      m_state->isAbandoned = true;
      m_state->resumed.Open();
    }
    m_thread.join();
  }

  void Resume() override {
    m_isResumed = true;
    m_state->resumed.Open();
  }

  [[nodiscard]] WaitResult Wait(std::uint32_t milliseconds) override {
    const bool isSelf = m_thread.get_id() == std::this_thread::get_id();
    return isSelf ? WaitResult::kFailed : m_state->ended.Wait(milliseconds);
  }

 private:
  /// Shared with the thread, which outlives its handle if it destroys the handle itself.
  struct State {
    Gate resumed;
    Gate ended;
    std::atomic<bool> isAbandoned = false;
  };

  const std::shared_ptr<State> m_state;
  std::atomic<bool> m_isResumed = false;
  std::thread m_thread;
};

class PosixEvent final : public platform::Event {
 public:
  void Set() override { m_gate.Open(); }
  void Reset() override { m_gate.Shut(); }
  [[nodiscard]] WaitResult Wait(std::uint32_t milliseconds) override {
    return m_gate.Wait(milliseconds);
  }

 private:
  Gate m_gate;
};

constexpr std::uint64_t kMillisecondsPerSecond = 1000;
constexpr std::uint64_t kNanosecondsPerMillisecond = 1'000'000;
constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;

constexpr int kOwnerOnly = 0600;

/// A lock on a file, held as long as the descriptor is open. The system takes it away from a
/// process that ends in any way, so no mutex outlives its holder.
class FileMutex final : public platform::NamedMutex {
 public:
  explicit FileMutex(Descriptor file) : m_file(std::move(file)) {}

 private:
  const Descriptor m_file;
};

std::string PathOf(const std::string& lockFolder, std::u16string_view name) {
  return lockFolder + "/" + PosixThreads::LockName(name);
}

}  // namespace

platform::StartedThread PosixThreads::Start(std::function<void()> body, ThreadStart start) {
  try {
    return std::make_unique<PosixThread>(std::move(body), start);
  } catch (const std::system_error&) {
    return Failure(ThreadError::kRefused);
  }
}

platform::CreatedEvent PosixThreads::CreateManualResetEvent() {
  return std::make_unique<PosixEvent>();
}

std::string PosixThreads::LockName(std::u16string_view name) {
  return "." + text::ToHostName(name) + ".lock";
}

bool PosixThreads::WasNamedMutexMade(const std::string& lockFolder, std::u16string_view name) {
  std::error_code error;
  // If that is not known, the attempt to take it shows it.
  return std::filesystem::exists(PathOf(lockFolder, name), error) || error;
}

platform::CreatedMutex PosixThreads::CreateNamedMutex(std::u16string_view name) {
  platform::CreatedMutex created = Lock(name);
  if (m_onNamedMutex) {
    m_onNamedMutex(created);
  }
  return created;
}

platform::CreatedMutex PosixThreads::Lock(std::u16string_view name) const {
  static_cast<void>(MakeFolders(m_lockFolder));  // If that fails, so does what comes next.
  const std::string path = PathOf(m_lockFolder, name);
  Descriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, kOwnerOnly));
  if (!file.IsOpen()) {
    return Failure(ThreadError::kRefused);
  }
  if (Retry([&] { return ::flock(file.Get(), LOCK_EX | LOCK_NB); }) != 0) {
    return Failure(errno == EWOULDBLOCK ? ThreadError::kHeld : ThreadError::kRefused);
  }
  return std::make_unique<FileMutex>(std::move(file));
}

std::uint32_t PosixClock::GetTickCount() {
  timespec now{};
  // Time since the machine was switched on, sleep included, as the tick count of a device. It wraps
  // after 49.7 days, like the device's.
  ::clock_gettime(CLOCK_BOOTTIME, &now);
  const std::uint64_t milliseconds =
      static_cast<std::uint64_t>(now.tv_sec) * kMillisecondsPerSecond +
      static_cast<std::uint64_t>(now.tv_nsec) / kNanosecondsPerMillisecond;
  return static_cast<std::uint32_t>(milliseconds);
}

std::int64_t PosixClock::GetUnixTime() {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  return now.tv_sec;
}

void PosixClock::Sleep(std::uint32_t milliseconds) {
  // To a fixed end, so that signals on the way do not make it longer.
  timespec end{};
  ::clock_gettime(CLOCK_MONOTONIC, &end);
  const std::uint64_t nanoseconds = static_cast<std::uint64_t>(end.tv_nsec) +
                                    std::uint64_t{milliseconds} * kNanosecondsPerMillisecond;
  end.tv_sec += static_cast<time_t>(nanoseconds / kNanosecondsPerSecond);
  end.tv_nsec = static_cast<long>(nanoseconds % kNanosecondsPerSecond);
  while (::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR) {
  }
}

}  // namespace posix
