#include "tests/support/failing_threads.h"

#include <memory>
#include <utility>

namespace support {
namespace {

using platform::WaitResult;

class FailingThread final : public platform::Thread {
 public:
  FailingThread(FaultPlan& plan, std::unique_ptr<platform::Thread> thread)
      : m_plan(plan), m_thread(std::move(thread)) {}

  void Resume() override { m_thread->Resume(); }
  WaitResult Wait(std::uint32_t milliseconds) override {
    return m_plan.NextFails() ? WaitResult::kFailed : m_thread->Wait(milliseconds);
  }

 private:
  FaultPlan& m_plan;
  const std::unique_ptr<platform::Thread> m_thread;
};

class FailingEvent final : public platform::Event {
 public:
  FailingEvent(FaultPlan& plan, std::unique_ptr<platform::Event> event)
      : m_plan(plan), m_event(std::move(event)) {}

  void Set() override { m_event->Set(); }
  void Reset() override { m_event->Reset(); }
  WaitResult Wait(std::uint32_t milliseconds) override {
    return m_plan.NextFails() ? WaitResult::kFailed : m_event->Wait(milliseconds);
  }

 private:
  FaultPlan& m_plan;
  const std::unique_ptr<platform::Event> m_event;
};

}  // namespace

std::unique_ptr<platform::Thread> FailingThreads::Start(std::function<void()> body,
                                                        platform::ThreadStart start) {
  auto thread = m_plan.NextFails() ? nullptr : m_threads.Start(std::move(body), start);
  return thread ? std::make_unique<FailingThread>(m_plan, std::move(thread)) : nullptr;
}

std::unique_ptr<platform::Event> FailingThreads::CreateManualResetEvent() {
  auto event = m_plan.NextFails() ? nullptr : m_threads.CreateManualResetEvent();
  return event ? std::make_unique<FailingEvent>(m_plan, std::move(event)) : nullptr;
}

platform::CreatedMutex FailingThreads::CreateNamedMutex(std::u16string_view name) {
  return m_plan.NextFails() ? platform::CreatedMutex{} : m_threads.CreateNamedMutex(name);
}

}  // namespace support
