#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/threads.h"

namespace contract {

/// One way of having threads, with the clock that goes with it.
class ThreadBackend {
 public:
  ThreadBackend() = default;
  ThreadBackend(const ThreadBackend&) = delete;
  ThreadBackend& operator=(const ThreadBackend&) = delete;
  virtual ~ThreadBackend() = default;

  [[nodiscard]] virtual platform::Threads& Threads() = 0;
  [[nodiscard]] virtual platform::Clock& Clock() = 0;
};

struct ThreadBackendKind {
  const char* name;
  std::unique_ptr<ThreadBackend> (*make)();
};

std::ostream& operator<<(std::ostream& stream, const ThreadBackendKind& kind);

/// The threads of this system. Each system has one source file with them.
[[nodiscard]] ThreadBackendKind SystemThreadBackend();

[[nodiscard]] std::vector<ThreadBackendKind> AllThreadBackends();

/// Base of the suites that run over each of them.
class ThreadContract : public testing::TestWithParam<ThreadBackendKind> {
 protected:
  [[nodiscard]] platform::Threads& Threads() { return m_backend->Threads(); }
  [[nodiscard]] platform::Clock& Clock() { return m_backend->Clock(); }

  /// A thread or event that the system must have to give.
  [[nodiscard]] std::unique_ptr<platform::Thread> MustStart(
      std::function<void()> body, platform::ThreadStart start = platform::ThreadStart::kRunning);
  [[nodiscard]] std::unique_ptr<platform::Event> MustCreateEvent();

 private:
  const std::unique_ptr<ThreadBackend> m_backend = GetParam().make();
};

[[nodiscard]] std::string ThreadBackendName(const testing::TestParamInfo<ThreadBackendKind>& info);

}  // namespace contract
