#pragma once

#include <cstdint>
#include <string_view>

#include "backends/headless/headless_dialog.h"
#include "platform/clock.h"

namespace cli {

/// A clock for one recording, which is a sleep of its length: shows on the terminal how far that
/// has come. The line appears when the microphone is open and not before, so that nobody speaks
/// too early. Shows nothing if standard error is no terminal.
class ProgressClock final : public platform::Clock {
 public:
  /// `clock` and `label` outlive this. The label stands before the bar.
  ProgressClock(platform::Clock& clock, std::uint32_t recordingMilliseconds,
                std::string_view label);

  [[nodiscard]] std::uint32_t GetTickCount() override { return m_clock.GetTickCount(); }
  [[nodiscard]] std::int64_t GetUnixTime() override { return m_clock.GetUnixTime(); }
  void Sleep(std::uint32_t milliseconds) override;

 private:
  void Show(std::uint32_t passed) const;

  platform::Clock& m_clock;
  const std::uint32_t m_recording;
  const std::string_view m_label;
  bool m_isAwaited;  ///< The sleep to be shown is still to come.
};

// These wait in the place of a user in front of a window with a bar. They show on a terminal how
// far the work has come.

/// While every template is computed again. Closes the dialog as soon as it lets itself be closed.
void WatchReinit(headless::HeadlessDialog& window);

/// While voice tags are compared that take long.
void WatchComparison(headless::HeadlessDialog& window);

}  // namespace cli
