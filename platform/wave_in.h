#pragma once

#include <cstdint>
#include <memory>

#include "platform/wave_format.h"

namespace platform {

/// An open input device that records into one queued buffer. Used by one thread at a time.
///
/// The header and its memory are touched only within calls of this class, on the caller's thread:
/// what arrived since is copied there by Unprepare and Reset. No call blocks for longer than a
/// fixed limit of the back end (a few seconds), whatever the device does. The destructor resets
/// and closes.
class WaveInDevice {
 public:
  WaveInDevice() = default;
  WaveInDevice(const WaveInDevice&) = delete;
  WaveInDevice& operator=(const WaveInDevice&) = delete;
  virtual ~WaveInDevice() = default;

  /// Makes the header fit to be queued.
  [[nodiscard]] virtual WaveResult Prepare(WaveHeader& header) = 0;

  /// Queues a prepared header. Its memory must stay until Unprepare succeeded, Reset or Close.
  [[nodiscard]] virtual WaveResult AddBuffer(WaveHeader& header) = 0;

  /// Starts recording into the queued buffer.
  [[nodiscard]] virtual WaveResult Start() = 0;

  /// Copies what has been recorded so far and says how much that is in `bytesRecorded`.
  /// kStillPlaying while the buffer is queued and not full; else the header is released.
  [[nodiscard]] virtual WaveResult Unprepare(WaveHeader& header) = 0;

  /// Stops recording and gives back the queued buffer with what it holds.
  [[nodiscard]] virtual WaveResult Reset() = 0;

  [[nodiscard]] virtual WaveResult Close() = 0;
};

struct OpenedWaveIn {
  std::unique_ptr<WaveInDevice> device;  ///< Null exactly where `result` is not kOk.
  WaveResult result = WaveResult::kFailed;
};

/// The default wave input. May be called from any thread.
class WaveIn {
 public:
  WaveIn() = default;
  WaveIn(const WaveIn&) = delete;
  WaveIn& operator=(const WaveIn&) = delete;
  virtual ~WaveIn() = default;

  /// Number of real inputs; what only listens to an output does not count. 0 where the sound
  /// service cannot be reached.
  [[nodiscard]] virtual std::uint32_t GetDeviceCount() = 0;

  /// Opens the default input, which converts to `format`.
  [[nodiscard]] virtual OpenedWaveIn Open(const WaveFormat& format) = 0;
};

}  // namespace platform
