#pragma once

#include <cstdint>
#include <memory>

#include "platform/result.h"
#include "platform/wave_format.h"

namespace platform {

/// An open output device that plays one queued buffer. Used by one thread at a time.
///
/// The device may read the queued memory at any time, from a thread of its own too, and never
/// writes to it. No call blocks for longer than a fixed limit of the back end (a few seconds),
/// whatever the device does. After Close every operation but Close itself fails with kNoDevice. The
/// destructor closes.
class WaveOutDevice {
 public:
  WaveOutDevice() = default;
  WaveOutDevice(const WaveOutDevice&) = delete;
  WaveOutDevice& operator=(const WaveOutDevice&) = delete;
  virtual ~WaveOutDevice() = default;

  /// Makes the header fit to be queued and sets kWaveHeaderPrepared in its flags. A second call
  /// does no harm. kFailed if the header has no memory, kStillPlaying while it is queued.
  [[nodiscard]] virtual WaveResult Prepare(WaveHeader& header) = 0;

  /// Queues a prepared header and starts to play it. Its memory must stay as it is until Unprepare
  /// succeeded, Reset or Close. Bytes at its end that are no whole sample block are not played.
  /// kNotPrepared for a header that lacks the flag, kStillPlaying while a header is queued, for
  /// there is room for one, kNoDevice if the device went away, kFailed if it cannot take the sound.
  /// After a failure the header is not queued.
  [[nodiscard]] virtual WaveResult Write(WaveHeader& header) = 0;

  /// While the header is queued this returns kStillPlaying until it was heard to its end, or
  /// kNoDevice if that will never be because the device went away; the header stays queued.
  /// Otherwise it returns kOk: the header is released and no longer prepared. A header that is not
  /// queued is released as it is.
  [[nodiscard]] virtual WaveResult Unprepare(WaveHeader& header) = 0;

  /// Stops at once and gives back the queued header, if any, still prepared.
  [[nodiscard]] virtual WaveResult Reset() = 0;

  /// Stops at once, and gives up the device and a queued header. A second call does no harm.
  [[nodiscard]] virtual WaveResult Close() = 0;
};

/// The default wave output. May be called from any thread.
class WaveOut {
 public:
  WaveOut() = default;
  WaveOut(const WaveOut&) = delete;
  WaveOut& operator=(const WaveOut&) = delete;
  virtual ~WaveOut() = default;

  /// Opens the default output for sound of `format`, whose average of bytes per second is not
  /// looked at. Fails with kBadFormat if the format is not PCM, has no whole bytes for the samples
  /// of each channel or is not to be had. Fails with kNoDevice if there is no output, or none that
  /// answers within the limit.
  [[nodiscard]] virtual Result<std::unique_ptr<WaveOutDevice>, WaveResult> Open(
      const WaveFormat& format) = 0;
};

}  // namespace platform
