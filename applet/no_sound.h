#pragma once

#include "platform/wave_in.h"
#include "platform/wave_out.h"

namespace applet {

// A machine whose sound server cannot even be asked.

class NoWaveIn final : public platform::WaveIn {
 public:
  [[nodiscard]] std::uint32_t GetDeviceCount() override { return 0; }
  [[nodiscard]] platform::OpenedWaveIn Open(const platform::WaveFormat& /*format*/) override {
    return {nullptr, platform::WaveResult::kNoDevice};
  }
};

class NoWaveOut final : public platform::WaveOut {
 public:
  [[nodiscard]] platform::OpenedWaveOut Open(const platform::WaveFormat& /*format*/) override {
    return {nullptr, platform::WaveResult::kNoDevice};
  }
};

}  // namespace applet
