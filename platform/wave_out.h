#pragma once

#include "platform/wave_format.h"

namespace platform {

/// An open output device that plays one queued buffer. Used by one thread at a time. The
/// destructor resets and closes.
class WaveOutDevice {
 public:
  WaveOutDevice() = default;
  WaveOutDevice(const WaveOutDevice&) = delete;
  WaveOutDevice& operator=(const WaveOutDevice&) = delete;
  virtual ~WaveOutDevice() = default;

  [[nodiscard]] virtual WaveResult Prepare(WaveHeader& header) = 0;

  /// Hands the buffer to the device, which only reads it. Its memory must stay until Unprepare
  /// succeeded, Reset or Close.
  [[nodiscard]] virtual WaveResult Write(WaveHeader& header) = 0;

  /// kStillPlaying while the buffer has not been played to its end; else the header is released.
  [[nodiscard]] virtual WaveResult Unprepare(WaveHeader& header) = 0;

  /// Stops at once and gives back the queued buffer.
  [[nodiscard]] virtual WaveResult Reset() = 0;

  [[nodiscard]] virtual WaveResult Close() = 0;
};

}  // namespace platform
