#pragma once

#include <functional>

#include "platform/clock.h"
#include "platform/threads.h"

namespace framework {

/// Makes waits on the user-interface thread harmless: windows are painted meanwhile. Each
/// presentation has one.
class WaitServer {
 public:
  WaitServer() = default;
  WaitServer(const WaitServer&) = delete;
  WaitServer& operator=(const WaitServer&) = delete;
  virtual ~WaitServer() = default;

  /// Calls `blocking`, which waits for something, and returns after it. If the caller is the
  /// user-interface thread, `blocking` runs on another one. Meanwhile windows are painted and
  /// posted calls are done, but the user's input reaches message boxes only. May be called from any
  /// thread.
  virtual void Await(const std::function<void()>& blocking) = 0;
};

/// A clock over another one. Its Sleep keeps the windows alive on the user-interface thread.
class ServedClock final : public platform::Clock {
 public:
  ServedClock(WaitServer& server, platform::Clock& inner) : m_server(server), m_inner(inner) {}

  [[nodiscard]] std::uint32_t GetTickCount() override { return m_inner.GetTickCount(); }
  [[nodiscard]] std::int64_t GetUnixTime() override { return m_inner.GetUnixTime(); }
  void Sleep(std::uint32_t milliseconds) override {
    m_server.Await([this, milliseconds] { m_inner.Sleep(milliseconds); });
  }

 private:
  WaitServer& m_server;
  platform::Clock& m_inner;
};

/// Threads and events over others. Their waits keep the windows alive on the user-interface thread.
/// Destroying a thread's handle is such a wait too, because it waits for the thread's body.
class ServedThreads final : public platform::Threads {
 public:
  ServedThreads(WaitServer& server, platform::Threads& inner) : m_server(server), m_inner(inner) {}

  [[nodiscard]] platform::StartedThread Start(std::function<void()> body,
                                              platform::ThreadStart start) override;
  [[nodiscard]] platform::CreatedEvent CreateManualResetEvent() override;
  [[nodiscard]] platform::CreatedMutex CreateNamedMutex(std::u16string_view name) override {
    return m_inner.CreateNamedMutex(name);
  }

 private:
  WaitServer& m_server;
  platform::Threads& m_inner;
};

}  // namespace framework
