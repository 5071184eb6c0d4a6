#pragma once

#include <atomic>
#include <cstdint>

#include "platform/clock.h"

namespace session {

/// The clock of a session. The pages sleep so that a user can speak, listen, or see a bar move. If
/// files stand for microphone and speaker, or a waiting dialog has no window, nobody needs that
/// time: within a QuickScope each sleep takes a hundredth of it, and the tick count moves on by the
/// whole of it. Threads still take turns as they do in the window. May be called from any thread.
class SessionClock final : public platform::Clock {
 public:
  /// `clock` outlives this.
  explicit SessionClock(platform::Clock& clock) : m_clock(clock) {}

  [[nodiscard]] std::uint32_t GetTickCount() override { return m_clock.GetTickCount() + m_skipped; }
  [[nodiscard]] std::int64_t GetUnixTime() override { return m_clock.GetUnixTime(); }
  void Sleep(std::uint32_t milliseconds) override;

 private:
  friend class QuickScope;

  platform::Clock& m_clock;
  std::atomic<std::uint32_t> m_skipped = 0;  ///< Milliseconds that nobody slept.
  std::atomic<bool> m_isQuick = false;
};

/// Makes the sleeps of a clock short as long as it exists, if `isQuick`.
class QuickScope {
 public:
  QuickScope(SessionClock& clock, bool isQuick) : m_clock(clock) { m_clock.m_isQuick = isQuick; }
  QuickScope(const QuickScope&) = delete;
  QuickScope& operator=(const QuickScope&) = delete;
  ~QuickScope() { m_clock.m_isQuick = false; }

 private:
  SessionClock& m_clock;
};

}  // namespace session
