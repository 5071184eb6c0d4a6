#include <pthread.h>
#include <sched.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>

#include "tests/faults/plan.h"

// Clocks that move on when somebody sleeps, and a little with each look. A sleep returns at once,
// so that three seconds of recording take none, and each run reads the same times.
namespace {

constexpr std::int64_t kSecond = 1'000'000'000;
constexpr std::int64_t kLook = 1'000;
/// 2026-11-21 22:10:05 UTC, when the program begins without VOXTREL_FAULT_TIME.
constexpr std::int64_t kDate = 1'795'299'005;
/// How long the machine has been up.
constexpr std::int64_t kUpTime = 100'000;

std::atomic<std::int64_t> g_passed{0};

[[gnu::constructor]] void ReadTime() {
  if (const char* seconds = std::getenv("VOXTREL_FAULT_TIME")) {
    g_passed = std::atoll(seconds) * kSecond;
  }
}

std::int64_t Nanoseconds(const timespec& time) { return time.tv_sec * kSecond + time.tv_nsec; }
timespec ToTime(std::int64_t nanoseconds) { return {nanoseconds / kSecond, nanoseconds % kSecond}; }

bool IsDate(clockid_t clock) { return clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE; }

std::int64_t Now(clockid_t clock) {
  return (IsDate(clock) ? kDate : kUpTime) * kSecond + (g_passed += kLook);
}

void Pass(std::int64_t nanoseconds) {
  if (nanoseconds > 0) {
    g_passed += nanoseconds;
  }
  // Another thread's turn, as a sleep would give it.
  sched_yield();
}

/// Longer than any thread works here, none of which sleeps.
constexpr std::int64_t kLongestWork = 2 * kSecond;

}  // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* now) noexcept {
  if (clock == CLOCK_PROCESS_CPUTIME_ID || clock == CLOCK_THREAD_CPUTIME_ID) {
    return static_cast<int>(syscall(SYS_clock_gettime, clock, now));
  }
  *now = ToTime(Now(clock));
  return 0;
}

int gettimeofday(timeval* now, void*) noexcept {
  const timespec time = ToTime(Now(CLOCK_REALTIME));
  *now = {time.tv_sec, time.tv_nsec / 1000};
  return 0;
}

time_t time(time_t* now) noexcept {
  const time_t seconds = Now(CLOCK_REALTIME) / kSecond;
  if (now != nullptr) {
    *now = seconds;
  }
  return seconds;
}

int clock_nanosleep(clockid_t clock, int flags, const timespec* wanted, timespec*) {
  Pass(Nanoseconds(*wanted) - ((flags & TIMER_ABSTIME) != 0 ? Now(clock) : 0));
  return 0;
}

int nanosleep(const timespec* wanted, timespec*) {
  Pass(Nanoseconds(*wanted));
  return 0;
}

int usleep(useconds_t microseconds) {
  Pass(std::int64_t{microseconds} * 1000);
  return 0;
}

unsigned sleep(unsigned seconds) {
  Pass(seconds * kSecond);
  return 0;
}

/// Waits for another thread in real time, since that one does not sleep, and not for long.
int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock,
                           const timespec* end) {
  using Wait = int (*)(pthread_cond_t*, pthread_mutex_t*, clockid_t, const timespec*);
  static const auto wait = reinterpret_cast<Wait>(faults::NextFunction("pthread_cond_clockwait"));
  const std::int64_t wanted = Nanoseconds(*end) - Now(clock);
  timespec now{};
  syscall(SYS_clock_gettime, clock, &now);
  const timespec realEnd = ToTime(Nanoseconds(now) + std::min(wanted, kLongestWork));
  const int result = wait(condition, mutex, clock, &realEnd);
  if (result == ETIMEDOUT) {
    Pass(wanted);
  }
  return result;
}

int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* end) {
  return pthread_cond_clockwait(condition, mutex, CLOCK_REALTIME, end);
}

/// The same numbers in each run, another at each call.
ssize_t getrandom(void* buffer, size_t size, unsigned) {
  static std::atomic<std::uint64_t> s_state{1};
  auto* bytes = static_cast<unsigned char*>(buffer);
  for (size_t i = 0; i < size; ++i) {
    bytes[i] = static_cast<unsigned char>((s_state += 0x9E3779B97F4A7C15U) >> 56U);
  }
  return static_cast<ssize_t>(size);
}

int getentropy(void* buffer, size_t size) {
  static_cast<void>(getrandom(buffer, size, 0));
  return 0;
}

}  // extern "C"
