#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/result.h"

namespace platform {

/// Format of a wave stream, field by field the record that wave devices take.
struct WaveFormat {
  std::uint16_t formatTag = 0;  ///< 1 is PCM.
  std::uint16_t channels = 0;
  std::uint32_t samplesPerSecond = 0;
  std::uint32_t averageBytesPerSecond = 0;
  std::uint16_t blockAlign = 0;  ///< Bytes of one sample of all channels.
  std::uint16_t bitsPerSample = 0;
  std::uint16_t extraSize = 0;

  friend bool operator==(const WaveFormat&, const WaveFormat&) = default;
};

inline constexpr std::uint16_t kFormatTagPcm = 1;

/// Returns whether this is PCM with fields that agree with each other: a rate, channels, and whole
/// bytes for each sample. Does not look at the average of bytes per second, since some programs
/// fill in something else.
[[nodiscard]] constexpr bool IsWholeBytePcm(const WaveFormat& format) {
  return format.formatTag == kFormatTagPcm && format.channels > 0 && format.samplesPerSecond > 0 &&
         format.bitsPerSample > 0 && format.bitsPerSample % 8 == 0 &&
         format.blockAlign == format.channels * (format.bitsPerSample / 8);
}

/// One buffer on its way through a wave device. The caller owns the memory.
struct WaveHeader {
  std::byte* data = nullptr;
  std::uint32_t bufferLength = 0;   ///< Bytes.
  std::uint32_t bytesRecorded = 0;  ///< Input only: how many bytes of `data` the device has filled.
  std::uint32_t flags = 0;
};

inline constexpr std::uint32_t kWaveHeaderPrepared = 2;

/// What an operation of a wave device returns. The values mirror the codes of wave devices, of
/// which kStillPlaying is no failure but an answer; so kOk stands among them.
enum class WaveResult : std::uint8_t {
  kOk,
  kNoDevice,      ///< No device, no server, or it went away.
  kBadFormat,     ///< The device cannot take this format.
  kStillPlaying,  ///< The buffer is in use: not yet full, or not yet played to its end.
  kNotPrepared,
  kFailed,
};

/// An open input device that records into one queued buffer. Used by one thread at a time.
///
/// Only calls of this class touch the header and its memory, on the caller's thread: Unprepare and
/// Reset copy there what has arrived. No call blocks for longer than a
/// fixed limit of the back end (a few seconds), whatever the device does. After Close every
/// operation but Close itself fails with kNoDevice. The destructor closes.
class WaveInDevice {
 public:
  WaveInDevice() = default;
  WaveInDevice(const WaveInDevice&) = delete;
  WaveInDevice& operator=(const WaveInDevice&) = delete;
  virtual ~WaveInDevice() = default;

  /// Makes the header fit to be queued and sets kWaveHeaderPrepared in its flags. A second call
  /// does no harm. Returns kFailed if the header has no memory, and kStillPlaying while it is
  /// queued.
  [[nodiscard]] virtual WaveResult Prepare(WaveHeader& header) = 0;

  /// Queues a prepared header and sets its `bytesRecorded` to 0. Its memory must stay until
  /// Unprepare has succeeded, or until Reset or Close. Returns kNotPrepared if the header lacks the
  /// flag. Returns kStillPlaying while a header is queued, since there is room for one.
  [[nodiscard]] virtual WaveResult AddBuffer(WaveHeader& header) = 0;

  /// Starts recording into the queued buffer, from what the device hears now. Returns kNotPrepared
  /// without a queued buffer, and kNoDevice if the device went away. A second call changes nothing.
  [[nodiscard]] virtual WaveResult Start() = 0;

  /// Copies what has been recorded so far, and stores its length in `bytesRecorded`.
  ///
  /// Returns kStillPlaying while the buffer is queued and not full. Returns kNoDevice if it will
  /// never be full, because the device went away. In both cases the header stays queued. Otherwise
  /// releases the header, which is then no longer prepared, and returns kOk. A header that is not
  /// queued is released as it is.
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

  /// Opens the default input, which converts to `format`. The device is warm when this returns: if
  /// a buffer is queued and started then, it fills in its own length of time and less than a tenth
  /// of a second more. Fails with kNoDevice if GetDeviceCount is 0, and with kBadFormat if there is
  /// no such format.
  [[nodiscard]] virtual Result<std::unique_ptr<WaveInDevice>, WaveResult> Open(
      const WaveFormat& format) = 0;
};

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
  /// does no harm. Returns kFailed if the header has no memory, and kStillPlaying while it is
  /// queued.
  [[nodiscard]] virtual WaveResult Prepare(WaveHeader& header) = 0;

  /// Queues a prepared header and starts to play it. Its memory must stay as it is until Unprepare
  /// has succeeded, or until Reset or Close. Bytes at its end that are no whole sample block are
  /// not played. Returns kNotPrepared if the header lacks the flag. Returns kStillPlaying while a
  /// header is queued, since there is room for one. Returns kNoDevice if the device went away, and
  /// kFailed if it cannot take the sound. After a failure the header is not queued.
  [[nodiscard]] virtual WaveResult Write(WaveHeader& header) = 0;

  /// Returns kStillPlaying while the sound of the queued header has not been heard to its end.
  /// Returns kNoDevice if it never will be, because the device went away. In both cases the header
  /// stays queued. Otherwise releases the header, which is then no longer prepared, and returns
  /// kOk. A header that is not queued is released as it is.
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

  /// Opens the default output for sound of `format`. Does not look at its average of bytes per
  /// second. Fails with kBadFormat if the format is not PCM, if a sample of one channel is no whole
  /// number of bytes, or if the output cannot play it. Fails with kNoDevice if there is no output,
  /// or none that answers within the limit.
  [[nodiscard]] virtual Result<std::unique_ptr<WaveOutDevice>, WaveResult> Open(
      const WaveFormat& format) = 0;
};

/// The queue of a wave device, which has room for one header: the rules of preparing, queueing and
/// releasing that are the same for every device. Owns nothing. Used by one thread at a time.
class WaveQueue {
 public:
  [[nodiscard]] WaveResult Prepare(WaveHeader& header) const {
    if (Holds(header)) return WaveResult::kStillPlaying;
    if (header.data == nullptr || header.bufferLength == 0) return WaveResult::kFailed;
    header.flags |= kWaveHeaderPrepared;
    return WaveResult::kOk;
  }

  [[nodiscard]] WaveResult Add(WaveHeader& header) {
    if ((header.flags & kWaveHeaderPrepared) == 0) return WaveResult::kNotPrepared;
    if (m_queued != nullptr) return WaveResult::kStillPlaying;
    header.bytesRecorded = 0;
    m_queued = &header;
    return WaveResult::kOk;
  }

  [[nodiscard]] bool Holds(const WaveHeader& header) const { return m_queued == &header; }

  /// Returns the queued header. Returns null if there is none.
  [[nodiscard]] WaveHeader* Queued() const { return m_queued; }

  /// Ends the use of `header`, queued or not: it is no longer prepared.
  void Release(WaveHeader& header) {
    header.flags &= ~kWaveHeaderPrepared;
    if (Holds(header)) m_queued = nullptr;
  }

  /// Forgets the queued header and leaves it as it is.
  void Drop() { m_queued = nullptr; }

 private:
  WaveHeader* m_queued = nullptr;
};

}  // namespace platform
