#include "backends/qt/qt_threads.h"

#include <utility>

namespace qt {
namespace {

using platform::WaitResult;

class QtThread final : public platform::Thread {
 public:
  QtThread(UiThread& thread, std::unique_ptr<platform::Thread> inner)
      : m_thread(thread), m_inner(std::move(inner)) {}
  QtThread(const QtThread&) = delete;
  QtThread& operator=(const QtThread&) = delete;
  ~QtThread() override {
    m_thread.Await([this] { m_inner.reset(); });
  }

  void Resume() override { m_inner->Resume(); }
  [[nodiscard]] WaitResult Wait(std::uint32_t milliseconds) override {
    WaitResult result = WaitResult::kFailed;
    m_thread.Await([&] { result = m_inner->Wait(milliseconds); });
    return result;
  }

 private:
  UiThread& m_thread;
  std::unique_ptr<platform::Thread> m_inner;
};

class QtEvent final : public platform::Event {
 public:
  QtEvent(UiThread& thread, std::unique_ptr<platform::Event> inner)
      : m_thread(thread), m_inner(std::move(inner)) {}

  void Set() override { m_inner->Set(); }
  void Reset() override { m_inner->Reset(); }
  [[nodiscard]] WaitResult Wait(std::uint32_t milliseconds) override {
    WaitResult result = WaitResult::kFailed;
    m_thread.Await([&] { result = m_inner->Wait(milliseconds); });
    return result;
  }

 private:
  UiThread& m_thread;
  const std::unique_ptr<platform::Event> m_inner;
};

}  // namespace

std::unique_ptr<platform::Thread> QtThreads::Start(std::function<void()> body,
                                                   platform::ThreadStart start) {
  auto inner = m_inner.Start(std::move(body), start);
  return inner ? std::make_unique<QtThread>(m_thread, std::move(inner)) : nullptr;
}

std::unique_ptr<platform::Event> QtThreads::CreateManualResetEvent() {
  auto inner = m_inner.CreateManualResetEvent();
  return inner ? std::make_unique<QtEvent>(m_thread, std::move(inner)) : nullptr;
}

}  // namespace qt
