#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/clock.h"
#include "platform/platform.h"
#include "platform/wave_devices.h"

namespace home {

/// The recording of a tag, to be played once. Stop may be called by any thread; all else belongs to
/// the thread that plays.
///
/// The player of the pages sleeps for about twice the length of a sound. A user who sees what is
/// playing would take that for a fault. So this stands between the player and the machine: its
/// sleep ends as soon as the loudspeaker has done, or somebody says stop.
class Playback final : private platform::WaveOut, private platform::Clock {
 public:
  explicit Playback(std::u16string tag) : m_tag(std::move(tag)) {}

  /// Plays the recording, and returns an audio::PlayCode. Returns audio::kPlayed if it was stopped.
  [[nodiscard]] int Run(const platform::Platform& platform);

  /// Ends the playing. If it has not begun, it does not begin.
  void Stop() { m_isStopped = true; }

 private:
  class Device;

  [[nodiscard]] platform::Result<std::unique_ptr<platform::WaveOutDevice>, platform::WaveResult>
  Open(const platform::WaveFormat& format) override;

  [[nodiscard]] std::uint32_t GetTickCount() override { return m_platform->clock.GetTickCount(); }
  [[nodiscard]] std::int64_t GetUnixTime() override { return m_platform->clock.GetUnixTime(); }
  void Sleep(std::uint32_t milliseconds) override;

  const std::u16string m_tag;
  std::atomic<bool> m_isStopped = false;
  const platform::Platform* m_platform = nullptr;  ///< While it runs.
  Device* m_device = nullptr;                      ///< While it is open.
};

}  // namespace home
