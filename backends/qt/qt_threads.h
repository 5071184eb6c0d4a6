#pragma once

#include "backends/qt/ui_thread.h"
#include "platform/threads.h"

namespace qt {

/// Threads and events whose waits leave the windows alive on the user-interface thread. That holds
/// for the end of a thread's handle as well, which waits for its body.
class QtThreads final : public platform::Threads {
 public:
  QtThreads(UiThread& thread, platform::Threads& inner) : m_thread(thread), m_inner(inner) {}

  [[nodiscard]] std::unique_ptr<platform::Thread> Start(std::function<void()> body,
                                                        platform::ThreadStart start) override;
  [[nodiscard]] std::unique_ptr<platform::Event> CreateManualResetEvent() override;
  [[nodiscard]] platform::CreatedMutex CreateNamedMutex(std::u16string_view name) override {
    return m_inner.CreateNamedMutex(name);
  }

 private:
  UiThread& m_thread;
  platform::Threads& m_inner;
};

}  // namespace qt
