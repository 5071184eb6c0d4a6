#pragma once

#include <cstdint>
#include <memory>

#include "platform/result.h"
#include "platform/wave_format.h"

namespace platform {

/// An open input device that records into one queued buffer. Used by one thread at a time.
///
/// The header and its memory are touched only within calls of this class, on the caller's thread:
/// what arrived since is copied there by Unprepare and Reset. No call blocks for longer than a
/// fixed limit of the back end (a few seconds), whatever the device does. After Close every
/// operation but Close itself fails with kNoDevice. The destructor closes.
class WaveInDevice {
 public:
  WaveInDevice() = default;
  WaveInDevice(const WaveInDevice&) = delete;
  WaveInDevice& operator=(const WaveInDevice&) = delete;
  virtual ~WaveInDevice() = default;

  /// Makes the header fit to be queued and sets kWaveHeaderPrepared in its flags. A second call
  /// does no harm. kFailed if the header has no memory, kStillPlaying while it is queued.
  [[nodiscard]] virtual WaveResult Prepare(WaveHeader& header) = 0;

  /// Queues a prepared header and sets its `bytesRecorded` to 0. Its memory must stay until
  /// Unprepare succeeded, Reset or Close. kNotPrepared for a header that lacks the flag,
  /// kStillPlaying while a header is queued, for there is room for one.
  [[nodiscard]] virtual WaveResult AddBuffer(WaveHeader& header) = 0;

  /// Starts recording into the queued buffer, from what the device hears now. kNotPrepared without
  /// a queued buffer, kNoDevice if the device went away. A second call changes nothing.
  [[nodiscard]] virtual WaveResult Start() = 0;

  /// Copies what has been recorded so far, and stores its length in `bytesRecorded`.
  ///
  /// While the buffer is queued and not full this returns kStillPlaying, or kNoDevice if nothing
  /// more will come because the device went away; the header stays queued. Otherwise it returns
  /// kOk: the header is released and no longer prepared. A header that is not queued is released as
  /// it is.
  [[nodiscard]] virtual WaveResult Unprepare(WaveHeader& header) = 0;

  /// Stops recording and gives back the queued buffer, if any, with what it holds.
  [[nodiscard]] virtual WaveResult Reset() = 0;

  /// Gives up the device, and a queued header without touching it. A second call does no harm.
  [[nodiscard]] virtual WaveResult Close() = 0;
};

/// The default wave input. May be called from any thread.
class WaveIn {
 public:
  WaveIn() = default;
  WaveIn(const WaveIn&) = delete;
  WaveIn& operator=(const WaveIn&) = delete;
  virtual ~WaveIn() = default;

  /// Returns the number of real inputs; an input that only listens to an output does not count.
  /// Returns 0 if the sound service cannot be reached, or does not answer within the limit.
  [[nodiscard]] virtual std::uint32_t GetDeviceCount() = 0;

  /// Opens the default input, which converts to `format`. The device is warm when this returns: a
  /// buffer that is queued and started then fills in its own length of time and less than a tenth
  /// of a second. Fails with kNoDevice if GetDeviceCount is 0, with kBadFormat if there
  /// is no such format.
  [[nodiscard]] virtual Result<std::unique_ptr<WaveInDevice>, WaveResult> Open(
      const WaveFormat& format) = 0;
};

}  // namespace platform
