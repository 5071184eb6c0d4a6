#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

#include "backends/headless/headless_dialog.h"
#include "platform/clock.h"

namespace cli {

/// The clock of a command. The pages sleep so that a user can speak, listen, or see a bar move. If
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
