#pragma once

#include "platform/wave_devices.h"
#include "tests/support/fault_plan.h"

namespace support {

// Each forwards every call to another wave input or output and lets the n-th one fail. Calls of
// the input or output and of its devices are counted together, those of destructors not at all. A
// failed call does nothing, but that a Close which fails gives up the device even so.

class FailingWaveIn final : public platform::WaveIn {
 public:
  FailingWaveIn(platform::WaveIn& waveIn, FaultPlan& plan) : m_waveIn(waveIn), m_plan(plan) {}

  /// A failure is that there is no device.
  [[nodiscard]] std::uint32_t GetDeviceCount() override;
  [[nodiscard]] platform::Result<std::unique_ptr<platform::WaveInDevice>, platform::WaveResult>
  Open(const platform::WaveFormat& format) override;

 private:
  platform::WaveIn& m_waveIn;
  FaultPlan& m_plan;
};

class FailingWaveOut final : public platform::WaveOut {
 public:
  FailingWaveOut(platform::WaveOut& waveOut, FaultPlan& plan) : m_waveOut(waveOut), m_plan(plan) {}

  [[nodiscard]] platform::Result<std::unique_ptr<platform::WaveOutDevice>, platform::WaveResult>
  Open(const platform::WaveFormat& format) override;

 private:
  platform::WaveOut& m_waveOut;
  FaultPlan& m_plan;
};

}  // namespace support
