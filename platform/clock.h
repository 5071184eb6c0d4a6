#pragma once

#include <cstdint>

namespace platform {

/// Time as the system sees it. May be called from any thread.
class Clock {
 public:
  Clock() = default;
  Clock(const Clock&) = delete;
  Clock& operator=(const Clock&) = delete;
  virtual ~Clock() = default;

  /// Milliseconds since the machine started, wrapping after 2^32 of them.
  [[nodiscard]] virtual std::uint32_t GetTickCount() = 0;

  /// Seconds since the beginning of 1970 in UTC, as the user set the machine's calendar. It can
  /// jump in either direction: it dates what a user looks at and orders nothing.
  [[nodiscard]] virtual std::int64_t GetUnixTime() = 0;

  /// Lets at least `milliseconds` pass.
  virtual void Sleep(std::uint32_t milliseconds) = 0;
};

}  // namespace platform
