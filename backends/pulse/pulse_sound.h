#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/wave_devices.h"

// The user's sound server, PulseAudio or one that speaks its protocol.
//
// No call, closing a device included, takes longer than about three seconds. Messages of the sound
// library go to the system log, never to the program's own output, unless the user asked for them
// by PULSE_LOG. To bring that about the constructors change the environment, so they run before the
// program has a second thread.

namespace pulse {

/// Returns the name of the source that the user chose for this program, and an empty text if none
/// was chosen. Is called each time that it is needed, on any thread.
using ChosenInput = std::function<std::u16string()>;

/// The chosen source. If it is not there, the server's default. If that only listens to an output,
/// the first source that does not.
class PulseWaveIn final : public platform::WaveIn {
 public:
  explicit PulseWaveIn(ChosenInput getChosen = {});

  [[nodiscard]] std::uint32_t GetDeviceCount() override;
  [[nodiscard]] platform::Result<std::unique_ptr<platform::WaveInDevice>, platform::WaveResult>
  Open(const platform::WaveFormat& format) override;

 private:
  const ChosenInput m_getChosen;
};

/// The server's default sink. Takes samples of 8 bits without sign and of 16, 24 and 32 bits with
/// one, in as many channels and at such rates as the library knows; the server converts.
class PulseWaveOut final : public platform::WaveOut {
 public:
  PulseWaveOut();

  [[nodiscard]] platform::Result<std::unique_ptr<platform::WaveOutDevice>, platform::WaveResult>
  Open(const platform::WaveFormat& format) override;
};

}  // namespace pulse
