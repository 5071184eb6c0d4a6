#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "platform/threads.h"
#include "tests/support/fault_plan.h"

namespace support {

/// The threads of a test: every call goes on to other threads. A plan lets the n-th call fail; then
/// what should be made is not made, and a wait ends at once as failed. Waits count with the rest;
/// what cannot fail (Resume, Set, Reset, destructors) does not. May be used by several threads; the
/// settings are made before that.
class WatchedThreads final : public platform::Threads {
 public:
  enum class Made : std::uint8_t { kThread, kEvent, kMutex };

  explicit WatchedThreads(platform::Threads& inner) : m_inner(inner), m_plan(m_noFaults) {}
  WatchedThreads(platform::Threads& inner, FaultPlan& plan) : m_inner(inner), m_plan(plan) {}

  /// Is called before each thing that is made.
  void SetListener(std::function<void(Made)> listener) { m_listener = std::move(listener); }
  /// Is called on each thread that is started from now on, before its body.
  void SetEntry(std::function<void()> entry) { m_entry = std::move(entry); }
  /// From now on none of `refused` is made.
  void Refuse(std::set<Made> refused) { m_refused = std::move(refused); }
  /// From now on a wait that has a limit takes at most so long, so what comes late is late at once.
  void ShortenWaits(std::uint32_t milliseconds) { m_longestWait = milliseconds; }

  /// Events that were made and not given up.
  [[nodiscard]] int CountEvents() const { return m_events; }

  [[nodiscard]] platform::StartedThread Start(std::function<void()> body,
                                              platform::ThreadStart start) override;
  [[nodiscard]] platform::CreatedEvent CreateManualResetEvent() override;
  [[nodiscard]] platform::CreatedMutex CreateNamedMutex(std::u16string_view name) override;

 private:
  class Thread;
  class Event;

  [[nodiscard]] bool Fails(Made made);
  template <typename Waited>
  [[nodiscard]] platform::WaitResult Wait(Waited& waited, std::uint32_t milliseconds);

  platform::Threads& m_inner;
  FaultPlan m_noFaults;
  FaultPlan& m_plan;
  std::function<void(Made)> m_listener;
  std::function<void()> m_entry;
  std::set<Made> m_refused;
  std::optional<std::uint32_t> m_longestWait;
  std::atomic<int> m_events = 0;
};

}  // namespace support
