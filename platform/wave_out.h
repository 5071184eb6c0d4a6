#pragma once

#include <cstdint>
#include <memory>

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

struct OpenedWaveOut {
  std::unique_ptr<WaveOutDevice> device;  ///< Null exactly where `result` is not kOk.
  WaveResult result = WaveResult::kFailed;
};

/// The default wave output. May be called from any thread. No call of it or of its devices blocks
/// for longer than a fixed limit of the back end (a few seconds), whatever the device does.
class WaveOut {
 public:
  WaveOut() = default;
  WaveOut(const WaveOut&) = delete;
  WaveOut& operator=(const WaveOut&) = delete;
  virtual ~WaveOut() = default;

  /// Opens the default output for sound of `format`, which must be one that makes sense: a rate and
  /// a block align above zero.
  [[nodiscard]] virtual OpenedWaveOut Open(const WaveFormat& format) = 0;
};

}  // namespace platform
