#include "tests/support/watched_threads.h"

#include <algorithm>

namespace support {

using platform::WaitResult;

class WatchedThreads::Thread final : public platform::Thread {
 public:
  Thread(WatchedThreads& owner, std::unique_ptr<platform::Thread> inner)
      : m_owner(owner), m_inner(std::move(inner)) {}

  void Resume() override { m_inner->Resume(); }
  WaitResult Wait(std::uint32_t milliseconds) override {
    return m_owner.Wait(*m_inner, milliseconds);
  }

 private:
  WatchedThreads& m_owner;
  const std::unique_ptr<platform::Thread> m_inner;
};

class WatchedThreads::Event final : public platform::Event {
 public:
  Event(WatchedThreads& owner, std::unique_ptr<platform::Event> inner)
      : m_owner(owner), m_inner(std::move(inner)) {
    ++m_owner.m_events;
  }
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;
  ~Event() override { --m_owner.m_events; }

  void Set() override { m_inner->Set(); }
  void Reset() override { m_inner->Reset(); }
  WaitResult Wait(std::uint32_t milliseconds) override {
    return m_owner.Wait(*m_inner, milliseconds);
  }

 private:
  WatchedThreads& m_owner;
  const std::unique_ptr<platform::Event> m_inner;
};

bool WatchedThreads::Fails(Made made) {
  if (m_listener) {
    m_listener(made);
  }
  return m_plan.NextFails() || m_refused.contains(made);
}

template <typename Waited>
WaitResult WatchedThreads::Wait(Waited& waited, std::uint32_t milliseconds) {
  if (m_plan.NextFails()) {
    return WaitResult::kFailed;
  }
  const bool isLimited = milliseconds != platform::kNoLimit;
  return waited.Wait(isLimited ? std::min(milliseconds, m_longestWait.value_or(milliseconds))
                               : milliseconds);
}

platform::StartedThread WatchedThreads::Start(std::function<void()> body,
                                              platform::ThreadStart start) {
  if (Fails(Made::kThread)) {
    return platform::Failure(platform::ThreadError::kRefused);
  }
  auto run = [entry = m_entry, body = std::move(body)] {
    if (entry) {
      entry();
    }
    body();
  };
  auto started = m_inner.Start(std::move(run), start);
  if (started) {
    started = std::make_unique<Thread>(*this, std::move(*started));
  }
  return started;
}

platform::CreatedEvent WatchedThreads::CreateManualResetEvent() {
  if (Fails(Made::kEvent)) {
    return platform::Failure(platform::ThreadError::kRefused);
  }
  auto created = m_inner.CreateManualResetEvent();
  if (created) {
    created = std::make_unique<Event>(*this, std::move(*created));
  }
  return created;
}

platform::CreatedMutex WatchedThreads::CreateNamedMutex(std::u16string_view name) {
  return Fails(Made::kMutex) ? platform::Failure(platform::ThreadError::kRefused)
                             : m_inner.CreateNamedMutex(name);
}

}  // namespace support
