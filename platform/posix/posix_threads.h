#pragma once

#include <functional>
#include <memory>

#include "platform/threads.h"

namespace posix {

/// Threads and events of the C++ library.
class PosixThreads final : public platform::Threads {
 public:
  [[nodiscard]] std::unique_ptr<platform::Thread> Start(std::function<void()> body,
                                                        platform::ThreadStart start) override;
  [[nodiscard]] std::unique_ptr<platform::Event> CreateManualResetEvent() override;
};

}  // namespace posix
