#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/wave_devices.h"

namespace e2e {

/// The format of every recording of the system.
inline constexpr platform::WaveFormat kRecordingFormat{.formatTag = platform::kFormatTagPcm,
                                                       .channels = 1,
                                                       .samplesPerSecond = 11025,
                                                       .averageBytesPerSecond = 22050,
                                                       .blockAlign = 2,
                                                       .bitsPerSample = 16,
                                                       .extraSize = 0};

/// A header with memory of its own, filled with a value that no recording has throughout.
class Recording {
 public:
  static constexpr std::byte kUntouched{0xA5};

  explicit Recording(std::size_t bytes) : m_memory(bytes, kUntouched) {
    header.data = m_memory.data();
    header.bufferLength = static_cast<std::uint32_t>(bytes);
  }
  Recording(const Recording&) = delete;
  Recording& operator=(const Recording&) = delete;
  ~Recording() = default;

  [[nodiscard]] std::span<const std::byte> Memory() const { return m_memory; }
  [[nodiscard]] std::span<const std::byte> Sound() const {
    return Memory().first(header.bytesRecorded);
  }

  platform::WaveHeader header;

 private:
  std::vector<std::byte> m_memory;
};

/// Prepares and queues the header and starts the device; the first result that is not kOk.
[[nodiscard]] platform::WaveResult StartRecording(platform::WaveInDevice& device,
                                                  Recording& recording);

/// Asks Unprepare again and again while it answers kStillPlaying, for a bounded time. The last
/// answer.
[[nodiscard]] platform::WaveResult UnprepareWhilePlaying(platform::WaveInDevice& device,
                                                         platform::WaveHeader& header);

/// Asks Unprepare until at least `bytes` of the recording are there, for a bounded time. Whether
/// they are.
[[nodiscard]] bool AwaitBytes(platform::WaveInDevice& device, platform::WaveHeader& header,
                              std::uint32_t bytes);

}  // namespace e2e
