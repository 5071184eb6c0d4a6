#include "host/cli/waiting.h"

#include <fmt/format.h>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>

#include "host/cli/system.h"
#include "resources/dialogs.h"

// What a terminal shows while something takes long: a bar that is drawn over itself. Nothing is
// drawn if standard error is no terminal, so a script's log has no bars.
namespace cli {
namespace {

/// Between two looks at how far something has come.
constexpr std::uint32_t kStep = 100;

double ToSeconds(std::uint32_t milliseconds) { return milliseconds / 1000.0; }

/// Not fmt::print, which throws if the terminal is gone.
void DrawText(const std::string& text) {
  static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
  std::fflush(stderr);
}

/// Draws the line of a bar over the line that stands there. `howFar` says the same in words.
void DrawLine(std::string_view what, std::uint64_t done, std::uint64_t whole,
              const std::string& howFar) {
  constexpr std::uint64_t kWidth = 30;
  const std::uint64_t filled = kWidth * done / whole;
  DrawText(fmt::format("\r{}  [{:#<{}}{:.<{}}] {}", what, "", filled, "", kWidth - filled, howFar));
}

void DrawBar(const headless::HeadlessDialog& window, std::string_view what) {
  const auto progress = window.GetProgress(resources::kProgressBarId);
  if (progress && progress->bar.maximum > 0) {
    DrawLine(what, static_cast<std::uint64_t>(progress->position),
             static_cast<std::uint64_t>(progress->bar.maximum),
             fmt::format("{} of {}", progress->position, progress->bar.maximum));
  }
}

/// Does `whenever` again and again until the window has ended.
void Watch(headless::HeadlessDialog& window, std::string_view what,
           const std::function<void()>& whenever) {
  const bool isTerminal = IsTerminal(Stream::kError);
  if (isTerminal) {
    DrawBar(window, what);
  }
  while (!window.WaitForEnd(kStep)) {
    if (isTerminal) {
      DrawBar(window, what);
    }
    whenever();
  }
  if (isTerminal) {
    DrawBar(window, what);
    DrawText("\n");
  }
}

}  // namespace

ProgressClock::ProgressClock(platform::Clock& clock, std::uint32_t recordingMilliseconds,
                             std::string_view label)
    : m_clock(clock),
      m_recording(recordingMilliseconds),
      m_label(label),
      m_isAwaited(IsTerminal(Stream::kError)) {}

void ProgressClock::Sleep(std::uint32_t milliseconds) {
  // The recorder sleeps for other reasons too, and only the long sleep is the recording.
  if (!m_isAwaited || milliseconds != m_recording) {
    m_clock.Sleep(milliseconds);
    return;
  }
  // Once: a second sleep of this length is none of the recording.
  m_isAwaited = false;
  for (std::uint32_t passed = 0; passed < milliseconds;) {
    Show(passed);
    const std::uint32_t step = std::min(kStep, milliseconds - passed);
    m_clock.Sleep(step);
    passed += step;
  }
  Show(milliseconds);
  DrawText("\n");
}

void ProgressClock::Show(std::uint32_t passed) const {
  DrawLine(m_label, passed, m_recording,
           fmt::format("{:.1f} s of {:.1f} s", ToSeconds(passed), ToSeconds(m_recording)));
}

void WatchReinit(headless::HeadlessDialog& window) {
  // Closing does nothing while the work goes on; once that has failed, nobody else closes it.
  Watch(window, "Computing the voice tags again", [&window] { window.Close(); });
}

void WatchComparison(headless::HeadlessDialog& window) {
  Watch(window, "Comparing the voice tags", [] {});
}

}  // namespace cli
