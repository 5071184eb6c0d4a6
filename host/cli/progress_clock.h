#pragma once

#include <cstdint>

#include "platform/clock.h"

namespace cli {

/// A clock for one recording, which is a sleep of its length: shows on the terminal how far that
/// has come. The line appears when the microphone is open and not before, so that nobody speaks
/// too early. Shows nothing where standard error is no terminal.
class ProgressClock final : public platform::Clock {
 public:
  /// `clock` outlives this.
  ProgressClock(platform::Clock& clock, std::uint32_t recordingMilliseconds);

  [[nodiscard]] std::uint32_t GetTickCount() override { return m_clock.GetTickCount(); }
  [[nodiscard]] std::int64_t GetUnixTime() override { return m_clock.GetUnixTime(); }
  void Sleep(std::uint32_t milliseconds) override;

 private:
  void Show(std::uint32_t passed) const;

  platform::Clock& m_clock;
  const std::uint32_t m_recording;
  bool m_isAwaited;  ///< The sleep to be shown is still to come.
};

}  // namespace cli
