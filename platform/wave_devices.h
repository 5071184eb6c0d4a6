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

/// Whether this is PCM whose fields agree with each other: a rate, channels, and whole bytes for
/// each sample. The average of bytes per second is not looked at; players are known to fill in
/// something else.
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
