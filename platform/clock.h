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

  /// Returns the milliseconds since the machine started. After 2^32 of them the count begins again.
  [[nodiscard]] virtual std::uint32_t GetTickCount() = 0;

  /// Returns the seconds since the beginning of 1970 in UTC, as the user set the machine's
  /// calendar. It can jump in either direction, so it serves as a date for users and puts nothing
  /// in order.
  [[nodiscard]] virtual std::int64_t GetUnixTime() = 0;

  /// Lets at least `milliseconds` pass.
  virtual void Sleep(std::uint32_t milliseconds) = 0;
};

}  // namespace platform
