#include "backends/posix/posix_threads.h"

#include <atomic>
#include <system_error>
#include <thread>
#include <utility>

#include "backends/posix/gate.h"

namespace posix {
namespace {

using platform::ThreadStart;
using platform::WaitResult;

class PosixThread final : public platform::Thread {
 public:
  PosixThread(std::function<void()> body, ThreadStart start) : m_state(std::make_shared<State>()) {
    if (start == ThreadStart::kRunning) {
      Resume();
    }
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
  /// Shared with the thread, which may outlive its handle where it destroys that itself.
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

}  // namespace

std::unique_ptr<platform::Thread> PosixThreads::Start(std::function<void()> body,
                                                      ThreadStart start) {
  try {
    return std::make_unique<PosixThread>(std::move(body), start);
  } catch (const std::system_error&) {
    return nullptr;
  }
}

std::unique_ptr<platform::Event> PosixThreads::CreateManualResetEvent() {
  return std::make_unique<PosixEvent>();
}

}  // namespace posix
