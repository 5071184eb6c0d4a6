#include "backends/posix/gate.h"

#include <chrono>

namespace posix {

using platform::WaitResult;

void Gate::Open() {
  const std::lock_guard lock(m_mutex);
  m_isOpen = true;
  ++m_openings;
  m_opened.notify_all();
}

void Gate::Shut() {
  const std::lock_guard lock(m_mutex);
  m_isOpen = false;
}

WaitResult Gate::Wait(std::uint32_t milliseconds) {
  std::unique_lock lock(m_mutex);
  // Whoever waited while the gate was open passes, even where it was shut again at once.
  const auto passes = [this, openings = m_openings] { return m_isOpen || m_openings != openings; };
  if (milliseconds == platform::kNoLimit) {
    m_opened.wait(lock, passes);
    return WaitResult::kSignalled;
  }
  return m_opened.wait_for(lock, std::chrono::milliseconds(milliseconds), passes)
             ? WaitResult::kSignalled
             : WaitResult::kTimedOut;
}

}  // namespace posix
