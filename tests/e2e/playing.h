#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "platform/wave_devices.h"

namespace e2e {

/// A header with a sound of its own.
class Sound {
 public:
  explicit Sound(std::vector<std::byte> bytes) : m_bytes(std::move(bytes)) {
    header.data = m_bytes.data();
    header.bufferLength = static_cast<std::uint32_t>(m_bytes.size());
  }
  Sound(const Sound&) = delete;
  Sound& operator=(const Sound&) = delete;
  ~Sound() = default;

  [[nodiscard]] std::span<const std::byte> Bytes() const { return m_bytes; }

  platform::WaveHeader header;

 private:
  std::vector<std::byte> m_bytes;
};

/// `count` bytes of noise, no two stretches of which are alike, nor those of two seeds.
[[nodiscard]] std::vector<std::byte> Noise(std::size_t count, std::uint32_t seed);

/// Prepares the header and writes it; the first result that is not kOk.
[[nodiscard]] platform::WaveResult StartPlaying(platform::WaveOutDevice& device, Sound& sound);

/// Asks Unprepare again and again while it answers kStillPlaying, for a bounded time. The last
/// answer.
[[nodiscard]] platform::WaveResult UnprepareWhilePlaying(platform::WaveOutDevice& device,
                                                         Sound& sound);

}  // namespace e2e
