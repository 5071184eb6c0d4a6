#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "platform/clock.h"
#include "platform/threads.h"

namespace machine {

class MutexNames;
class Scheduler;

/// Threads that run one at a time, in the same order in every run, and a clock that does not wait:
/// if all of them wait, the time jumps to the earliest limit.
///
/// Used by the threads that it started and by one other, its host. A thread gives up its turn only
/// in Sleep, in Wait of a thread or an event (also in one that need not wait), and at its end; so a
/// body that waits for another thread in any other way hangs. A wait that nothing can end any more,
/// because every thread waits without limit, fails.
class Simulation final : public platform::Clock, public platform::Threads {
 public:
  /// What GetUnixTime gives at the start: 2026-11-21T22:10:05Z.
  static constexpr std::int64_t kStartTime = 1'795'299'005;

  /// `startTick` is the tick count at the start.
  explicit Simulation(std::uint32_t startTick = 0);

  [[nodiscard]] std::uint32_t GetTickCount() override;
  [[nodiscard]] std::int64_t GetUnixTime() override;
  void Sleep(std::uint32_t milliseconds) override;

  [[nodiscard]] platform::StartedThread Start(std::function<void()> body,
                                              platform::ThreadStart start) override;
  [[nodiscard]] platform::CreatedEvent CreateManualResetEvent() override;
  /// Names are known to this simulation alone.
  [[nodiscard]] platform::CreatedMutex CreateNamedMutex(std::u16string_view name) override;

  /// Milliseconds that have passed since the start, without wrapping.
  [[nodiscard]] std::uint64_t GetElapsed();

 private:
  const std::shared_ptr<Scheduler> m_scheduler;
  const std::uint32_t m_startTick;
  const std::shared_ptr<MutexNames> m_mutexNames;
};

}  // namespace machine
