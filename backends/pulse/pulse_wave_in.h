#pragma once

#include "platform/wave_in.h"

namespace pulse {

/// The default source of the user's sound server, PulseAudio or one that speaks its protocol; where
/// that only listens to an output, the first source that does not.
///
/// No call, closing a device included, takes longer than about three seconds. Messages of the sound
/// library go to the system log, never to the program's own output, unless the user asked for them
/// by PULSE_LOG. To bring that about the constructor changes the environment, so it runs before the
/// program has a second thread.
class PulseWaveIn final : public platform::WaveIn {
 public:
  PulseWaveIn();

  [[nodiscard]] std::uint32_t GetDeviceCount() override;
  [[nodiscard]] platform::OpenedWaveIn Open(const platform::WaveFormat& format) override;
};

}  // namespace pulse
