#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "platform/threads.h"

namespace posix {

/// A state that threads wait for; once open it lets all pass until it is shut.
class Gate {
 public:
  void Open();
  void Shut();
  [[nodiscard]] platform::WaitResult Wait(std::uint32_t milliseconds);

 private:
  std::mutex m_mutex;
  std::condition_variable m_opened;
  bool m_isOpen = false;
  std::uint64_t m_openings = 0;
};

}  // namespace posix
