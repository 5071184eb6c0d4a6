#pragma once

#include "platform/clock.h"

namespace posix {

/// The time of a Linux system; the tick count goes on while the machine is suspended.
class PosixClock final : public platform::Clock {
 public:
  [[nodiscard]] std::uint32_t GetTickCount() override;
  [[nodiscard]] std::int64_t GetUnixTime() override;
  void Sleep(std::uint32_t milliseconds) override;
};

}  // namespace posix
