#include "tests/machine/simulation.h"

#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

#include "tests/machine/scheduler.h"

namespace machine {

/// The names of the mutexes that have a holder. May be used from any thread.
class MutexNames {
 public:
  [[nodiscard]] static platform::CreatedMutex Create(const std::shared_ptr<MutexNames>& names,
                                                     std::u16string_view name);

 private:
  class Holder;

  std::mutex m_mutex;
  std::set<std::u16string, std::less<>> m_held;
};

class MutexNames::Holder final : public platform::NamedMutex {
 public:
  Holder(std::shared_ptr<MutexNames> names, std::u16string_view name)
      : m_names(std::move(names)), m_name(name) {}
  ~Holder() override {
    const std::lock_guard lock(m_names->m_mutex);
    m_names->m_held.erase(m_name);
  }

 private:
  const std::shared_ptr<MutexNames> m_names;
  const std::u16string m_name;
};

platform::CreatedMutex MutexNames::Create(const std::shared_ptr<MutexNames>& names,
                                          std::u16string_view name) {
  const std::lock_guard lock(names->m_mutex);
  if (!names->m_held.emplace(name).second) {
    return platform::Failure(platform::ThreadError::kHeld);
  }
  return std::make_unique<Holder>(names, name);
}

namespace {

using platform::ThreadStart;
using platform::WaitResult;

class SimulatedThread final : public platform::Thread {
 public:
  SimulatedThread(std::shared_ptr<Scheduler> scheduler, std::function<void()> body,
                  ThreadStart start)
      : m_scheduler(std::move(scheduler)), m_participant(std::make_shared<Participant>()) {
    m_thread = std::thread([scheduler = m_scheduler, self = m_participant, run = std::move(body)] {
      if (scheduler->Enter(*self)) {
        run();
        scheduler->Leave(*self);
      }
    });
    m_scheduler->Add(*m_participant, start);
  }

  SimulatedThread(const SimulatedThread&) = delete;
  SimulatedThread& operator=(const SimulatedThread&) = delete;

  ~SimulatedThread() override {
    if (m_scheduler->IsSelf(*m_participant)) {
      m_thread.detach();
      return;
    }
    if (!m_scheduler->Abandon(*m_participant)) {
      // A wait may fail if all threads wait for each other; that wakes the thread as well.
      while (!m_scheduler->IsSet(m_participant->ended)) {
        m_scheduler->Wait(&m_participant->ended, platform::kNoLimit);
      }
    }
    m_thread.join();
  }

  void Resume() override { m_scheduler->Resume(*m_participant); }

  [[nodiscard]] WaitResult Wait(std::uint32_t milliseconds) override {
    return m_scheduler->Wait(&m_participant->ended, milliseconds);
  }

 private:
  const std::shared_ptr<Scheduler> m_scheduler;
  const std::shared_ptr<Participant> m_participant;
  std::thread m_thread;
};

class SimulatedEvent final : public platform::Event {
 public:
  explicit SimulatedEvent(std::shared_ptr<Scheduler> scheduler)
      : m_scheduler(std::move(scheduler)) {}
  SimulatedEvent(const SimulatedEvent&) = delete;
  SimulatedEvent& operator=(const SimulatedEvent&) = delete;
  ~SimulatedEvent() override { m_scheduler->Forget(m_signal); }

  void Set() override { m_scheduler->Set(m_signal); }
  void Reset() override { m_scheduler->Reset(m_signal); }
  [[nodiscard]] WaitResult Wait(std::uint32_t milliseconds) override {
    return m_scheduler->Wait(&m_signal, milliseconds);
  }

 private:
  const std::shared_ptr<Scheduler> m_scheduler;
  Signal m_signal;
};

}  // namespace

Simulation::Simulation(std::uint32_t startTick)
    : m_scheduler(std::make_shared<Scheduler>()),
      m_startTick(startTick),
      m_mutexNames(std::make_shared<MutexNames>()) {}

std::uint32_t Simulation::GetTickCount() {
  return static_cast<std::uint32_t>(m_startTick + m_scheduler->Now());
}

std::int64_t Simulation::GetUnixTime() {
  constexpr std::uint64_t kMillisecondsPerSecond = 1000;
  return kStartTime + static_cast<std::int64_t>(m_scheduler->Now() / kMillisecondsPerSecond);
}

void Simulation::Sleep(std::uint32_t milliseconds) { m_scheduler->Wait(nullptr, milliseconds); }

std::uint64_t Simulation::GetElapsed() { return m_scheduler->Now(); }

platform::StartedThread Simulation::Start(std::function<void()> body, ThreadStart start) {
  try {
    return std::make_unique<SimulatedThread>(m_scheduler, std::move(body), start);
  } catch (const std::system_error&) {
    return platform::Failure(platform::ThreadError::kRefused);
  }
}

platform::CreatedEvent Simulation::CreateManualResetEvent() {
  return std::make_unique<SimulatedEvent>(m_scheduler);
}

platform::CreatedMutex Simulation::CreateNamedMutex(std::u16string_view name) {
  return MutexNames::Create(m_mutexNames, name);
}

}  // namespace machine
