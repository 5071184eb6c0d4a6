#include "host/cli/clocks.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

namespace cli {
namespace {

constexpr std::uint32_t kStep = 100;
constexpr std::uint32_t kClockWidth = 30;

double ToSeconds(std::uint32_t milliseconds) { return milliseconds / 1000.0; }

/// Not fmt::print, which throws where the terminal is gone.
void DrawClock(const std::string& text) {
  static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
  std::fflush(stderr);
}

}  // namespace

void SessionClock::Sleep(std::uint32_t milliseconds) {
  constexpr std::uint32_t kQuicker = 100;
  const std::uint32_t slept = m_isQuick ? milliseconds / kQuicker : milliseconds;
  m_clock.Sleep(slept);
  m_skipped += milliseconds - slept;
}

ProgressClock::ProgressClock(platform::Clock& clock, std::uint32_t recordingMilliseconds,
                             std::string_view label)
    : m_clock(clock),
      m_recording(recordingMilliseconds),
      m_label(label),
      m_isAwaited(::isatty(STDERR_FILENO) == 1) {}

void ProgressClock::Sleep(std::uint32_t milliseconds) {
  if (!m_isAwaited || milliseconds != m_recording) {
    m_clock.Sleep(milliseconds);
    return;
  }
  m_isAwaited = false;
  for (std::uint32_t passed = 0; passed < milliseconds;) {
    Show(passed);
    const std::uint32_t step = std::min(kStep, milliseconds - passed);
    m_clock.Sleep(step);
    passed += step;
  }
  Show(milliseconds);
  DrawClock("\n");
}

void ProgressClock::Show(std::uint32_t passed) const {
  const auto filled = static_cast<std::uint32_t>(std::uint64_t{kClockWidth} * passed / m_recording);
  DrawClock(fmt::format("\r{}  [{:#<{}}{:.<{}}] {:.1f} s of {:.1f} s", m_label, "", filled, "",
                        kClockWidth - filled, ToSeconds(passed), ToSeconds(m_recording)));
}

}  // namespace cli
