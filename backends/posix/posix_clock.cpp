#include "backends/posix/posix_clock.h"

#include <cerrno>
#include <ctime>

namespace posix {
namespace {

constexpr std::uint64_t kMillisecondsPerSecond = 1000;
constexpr std::uint64_t kNanosecondsPerMillisecond = 1'000'000;
constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;

}  // namespace

std::uint32_t PosixClock::GetTickCount() {
  timespec now{};
  ::clock_gettime(CLOCK_BOOTTIME, &now);
  const std::uint64_t milliseconds =
      static_cast<std::uint64_t>(now.tv_sec) * kMillisecondsPerSecond +
      static_cast<std::uint64_t>(now.tv_nsec) / kNanosecondsPerMillisecond;
  return static_cast<std::uint32_t>(milliseconds);
}

std::int64_t PosixClock::GetUnixTime() {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  return now.tv_sec;
}

void PosixClock::Sleep(std::uint32_t milliseconds) {
  // To a fixed end, so that signals on the way do not make it longer.
  timespec end{};
  ::clock_gettime(CLOCK_MONOTONIC, &end);
  const std::uint64_t nanoseconds = static_cast<std::uint64_t>(end.tv_nsec) +
                                    std::uint64_t{milliseconds} * kNanosecondsPerMillisecond;
  end.tv_sec += static_cast<time_t>(nanoseconds / kNanosecondsPerSecond);
  end.tv_nsec = static_cast<long>(nanoseconds % kNanosecondsPerSecond);
  while (::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR) {
  }
}

}  // namespace posix
