#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/platform.h"
#include "platform/wave_devices.h"

namespace audio {

/// Result codes of WaveDevice::Record. The numbers are shown to users and are fixed.
enum RecordCode : int {
  kRecorded = 0,
  kFileNotCreated = 1,  ///< Or not written to its end, or not put in its place; a message said so.
  kDeviceNotOpened = 2,
  kNoBuffer = 3,  ///< Memory ran out.
  kBufferNotQueued = 4,
  kNotStarted = 5,
  kDeviceLost = 6,     ///< It went away before the recording was whole; no file is left.
  kProcessEnded = -1,  ///< Seen only in a host that ends just the applet: leave at once.
};

/// Result codes of WaveDevice::Play.
enum PlayCode : int {
  kPlayed = 0,
  kSoundNotOpened = 1,
  kSoundNotMapped = 2,  ///< Its length is not known, or it is longer than such a file can be.
  kSoundTooShort = 3,
  kSoundNoRiff = 4,
  kSoundNoWave = 5,
  kSoundNotPcm = 6,
  kSoundNoData = 7,  ///< No usable data, or a header that no device can play.
  kOutputNotOpened = 8,
  kNoPlayBuffer = 9,  ///< Memory ran out.
  kNotWritten = 10,
  kNotHeardToEnd = 11,  ///< The device went away, or was still playing when the time was over.
  kNotPrepared = 101,
  kSoundNotRead = 202,
};

/// The recorder and player of the Learning page. Records one utterance of fixed length from the
/// default wave input into a wave file, and plays a wave file through the default wave output. Used
/// by one thread at a time: while a recording runs on a worker, nobody else touches the object.
class WaveDevice {
 public:
  explicit WaveDevice(const platform::Platform& platform);
  WaveDevice(const WaveDevice&) = delete;
  WaveDevice& operator=(const WaveDevice&) = delete;
  ~WaveDevice();

  /// Sets the format of the next recording: mono PCM.
  void SetFormat(std::uint16_t bits, std::uint32_t samplesPerSecond);

  /// Allocates the capture buffer, as long as `milliseconds` of the set format, all zeros. Returns
  /// null if there is no memory for it or its length does not fit the header's 32 bits. The device
  /// owns the result, which stays valid until the next call or the end of a recording.
  [[nodiscard]] platform::WaveHeader* AllocBuffer(std::uint32_t milliseconds);

  /// Prepares the header and queues it with the open input. Returns 0 if that worked, else 1.
  [[nodiscard]] int QueueBuffer(platform::WaveHeader& header);

  /// Records `milliseconds` from now into a file, and returns a RecordCode. The file takes its
  /// place at `path` when it is whole; whatever happens before, the path is what it was. Blocks for
  /// the length of the recording: it sleeps until the end and waits for no notice. With
  /// Durability::kLater the code that works on the recording next has to flush it.
  [[nodiscard]] int Record(std::u16string_view path, std::uint32_t milliseconds,
                           platform::Durability durability = platform::Durability::kNow);

  /// Plays the wave file at `path` and returns a PlayCode. Shows no message. It waits for no notice
  /// of the end, but blocks for a time that it computes before. Everything is released on every
  /// path.
  [[nodiscard]] int Play(std::u16string_view path);

  /// Returns why there is no file after kFileNotCreated. Returns nothing otherwise.
  [[nodiscard]] std::optional<platform::FileError> GetFileError() const { return m_fileError; }

  /// Bytes of samples in the file that Record wrote last.
  [[nodiscard]] std::uint32_t GetRecordedBytes() const { return m_recordedBytes; }

 protected:
  platform::WaveFormat m_format;
  std::unique_ptr<platform::WaveHeader> m_header;
  std::unique_ptr<platform::WaveInDevice> m_waveIn;
  std::unique_ptr<platform::WaveOutDevice> m_waveOut;  ///< Of the player.
  /// Of the recorder. It has no name before the recording is whole.
  std::unique_ptr<platform::Replacement> m_file;
  std::vector<std::byte> m_view;  ///< Of the player: the whole file.

 private:
  [[nodiscard]] RecordCode RecordTo(std::u16string_view path, std::uint32_t milliseconds,
                                    platform::Durability durability);
  [[nodiscard]] RecordCode StartInput(std::uint32_t milliseconds);
  /// Sleeps for the length of the recording and fetches it. Returns false if the device was lost
  /// before its buffer was full.
  [[nodiscard]] bool AwaitRecording(std::uint32_t milliseconds);
  void ReleaseInput();
  [[nodiscard]] platform::Result<void, platform::FileError> OpenFile(std::u16string_view path);
  [[nodiscard]] platform::Result<void, platform::FileError> WriteRecording();
  [[nodiscard]] platform::Result<void, platform::FileError> PublishFile(
      platform::Durability durability);
  [[nodiscard]] RecordCode RefuseFile(std::u16string_view path, platform::FileError error);
  [[nodiscard]] PlayCode ReadSound(std::u16string_view path);
  /// Appends to the view until it is `length` bytes long. Returns false if the file or the memory
  /// does not go so far.
  [[nodiscard]] bool ReadUpTo(platform::File& file, std::uint64_t length);
  [[nodiscard]] PlayCode PlaySound();
  void ReleaseOutput();
  void ShowTopmost(std::u16string text);

  platform::Platform m_platform;
  std::unique_ptr<std::byte[]> m_samples;  ///< Memory of the header's buffer.
  std::uint32_t m_recordedBytes = 0;
  std::optional<platform::FileError> m_fileError;
};

}  // namespace audio
