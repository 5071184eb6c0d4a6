#pragma once

#include "platform/threads.h"
#include "tests/support/fault_plan.h"

namespace support {

/// Forwards every call to other threads and lets the n-th one fail: what should be made is not
/// made, a wait ends at once as failed. Waits are counted with the rest; what cannot fail (Resume,
/// Set, Reset, destructors) is not.
class FailingThreads final : public platform::Threads {
 public:
  FailingThreads(platform::Threads& threads, FaultPlan& plan) : m_threads(threads), m_plan(plan) {}

  [[nodiscard]] std::unique_ptr<platform::Thread> Start(std::function<void()> body,
                                                        platform::ThreadStart start) override;
  [[nodiscard]] std::unique_ptr<platform::Event> CreateManualResetEvent() override;
  [[nodiscard]] platform::CreatedMutex CreateNamedMutex(std::u16string_view name) override;

 private:
  platform::Threads& m_threads;
  FaultPlan& m_plan;
};

}  // namespace support
