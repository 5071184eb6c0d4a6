#pragma once

#include <cstdint>
#include <functional>

#include "platform/wave_devices.h"

namespace e2e {

/// Another input, with what a test of a recorder needs to depend on no clock.
class WatchedWaveIn final : public platform::WaveIn {
 public:
  explicit WatchedWaveIn(platform::WaveIn& input) : m_input(input) {}

  /// Devices opened from now on act once `bytes` of the recording are there, before Start returns:
  /// the recording is then under way and still has far to go.
  void ActAfter(std::uint32_t bytes, std::function<void()> action);

  /// Unprepare waits, for a bounded time, for what a busy machine delivers late.
  void WaitForStragglers() { m_waitsForStragglers = true; }

  [[nodiscard]] std::uint32_t GetDeviceCount() override { return m_input.GetDeviceCount(); }
  [[nodiscard]] platform::Result<std::unique_ptr<platform::WaveInDevice>, platform::WaveResult>
  Open(const platform::WaveFormat& format) override;

 private:
  class Device;

  platform::WaveIn& m_input;
  std::uint32_t m_bytes = 0;
  std::function<void()> m_action;
  bool m_waitsForStragglers = false;
};

}  // namespace e2e
