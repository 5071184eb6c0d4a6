#include "framework/served_waits.h"

#include <memory>
#include <utility>

// Each wait of a thread or an event is handed to the server as one function, which may run on
// another thread. It uses this object, and that is safe: Await returns after it.
namespace framework {
namespace {

using platform::WaitResult;

class ServedThread final : public platform::Thread {
 public:
  ServedThread(WaitServer& server, std::unique_ptr<platform::Thread> inner)
      : m_server(server), m_inner(std::move(inner)) {}
  ServedThread(const ServedThread&) = delete;
  ServedThread& operator=(const ServedThread&) = delete;
  ~ServedThread() override {
    m_server.Await([this] { m_inner.reset(); });
  }

  void Resume() override { m_inner->Resume(); }
  [[nodiscard]] WaitResult Wait(std::uint32_t milliseconds) override {
    WaitResult result = WaitResult::kFailed;
    m_server.Await([&] { result = m_inner->Wait(milliseconds); });
    return result;
  }

 private:
  WaitServer& m_server;
  std::unique_ptr<platform::Thread> m_inner;
};

class ServedEvent final : public platform::Event {
 public:
  ServedEvent(WaitServer& server, std::unique_ptr<platform::Event> inner)
      : m_server(server), m_inner(std::move(inner)) {}

  void Set() override { m_inner->Set(); }
  void Reset() override { m_inner->Reset(); }
  [[nodiscard]] WaitResult Wait(std::uint32_t milliseconds) override {
    WaitResult result = WaitResult::kFailed;
    m_server.Await([&] { result = m_inner->Wait(milliseconds); });
    return result;
  }

 private:
  WaitServer& m_server;
  const std::unique_ptr<platform::Event> m_inner;
};

}  // namespace

platform::StartedThread ServedThreads::Start(std::function<void()> body,
                                             platform::ThreadStart start) {
  auto started = m_inner.Start(std::move(body), start);
  if (started) {
    started = std::make_unique<ServedThread>(m_server, std::move(*started));
  }
  return started;
}

platform::CreatedEvent ServedThreads::CreateManualResetEvent() {
  auto created = m_inner.CreateManualResetEvent();
  if (created) {
    created = std::make_unique<ServedEvent>(m_server, std::move(*created));
  }
  return created;
}

}  // namespace framework
