#pragma once

#include <functional>
#include <string>
#include <utility>

#include "backends/posix/doorbell.h"
#include "platform/threads.h"

namespace applet {

/// Threads whose named mutex tells more than that it is taken: its holder hangs a bell, and whoever
/// is refused rings it, so that the window that is open comes forward.
class InstanceThreads final : public platform::Threads {
 public:
  struct Options {
    std::string bellPath;
    std::string message;  ///< What is rung with.
    /// This process holds the mutex, and the bell can be listened to.
    std::function<void(const posix::Doorbell& bell)> onHung;
    /// Another process holds it; `isAnswered` where that one has a bell.
    std::function<void(bool isAnswered)> onRefused;
  };

  /// `inner` outlives this.
  InstanceThreads(platform::Threads& inner, Options options)
      : m_inner(inner), m_options(std::move(options)) {}

  [[nodiscard]] std::unique_ptr<platform::Thread> Start(std::function<void()> body,
                                                        platform::ThreadStart start) override {
    return m_inner.Start(std::move(body), start);
  }
  [[nodiscard]] std::unique_ptr<platform::Event> CreateManualResetEvent() override {
    return m_inner.CreateManualResetEvent();
  }
  [[nodiscard]] platform::CreatedMutex CreateNamedMutex(std::u16string_view name) override;

 private:
  platform::Threads& m_inner;
  const Options m_options;
  posix::Doorbell m_bell;
};

}  // namespace applet
