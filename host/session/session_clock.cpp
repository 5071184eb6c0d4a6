#include "host/session/session_clock.h"

namespace session {

void SessionClock::Sleep(std::uint32_t milliseconds) {
  constexpr std::uint32_t kQuicker = 100;
  const std::uint32_t slept = m_isQuick ? milliseconds / kQuicker : milliseconds;
  m_clock.Sleep(slept);
  // So the tick count moves on by the whole time, and names of tags do not collide.
  m_skipped += milliseconds - slept;
}

}  // namespace session
