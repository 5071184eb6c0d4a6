#pragma once

#include "platform/wave_out.h"

namespace pulse {

/// The default sink of the user's sound server, PulseAudio or one that speaks its protocol. Takes
/// samples of 8 bits without sign and of 16, 24 and 32 bits with one, in as many channels and at
/// such rates as the library knows; the server converts.
///
/// No call, closing a device included, takes longer than about three seconds. Messages of the sound
/// library go to the system log, as with PulseWaveIn; the constructor runs before the program has a
/// second thread.
class PulseWaveOut final : public platform::WaveOut {
 public:
  PulseWaveOut();

  [[nodiscard]] platform::OpenedWaveOut Open(const platform::WaveFormat& format) override;
};

}  // namespace pulse
