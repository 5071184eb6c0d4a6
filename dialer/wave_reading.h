#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/result.h"

namespace dialer {

/// Why a wave file gives no take.
enum class WaveError : std::uint8_t {
  kNoWave,       ///< It is no wave file, or its header contradicts itself.
  kOtherFormat,  ///< It is compressed, or has an unusual width of samples.
};

/// Returns the sound of a whole wave file as the recorder would have it: one channel, 16 bits,
/// voicemath::kSamplesPerSecond. Takes PCM of 8, 16, 24 and 32 bits and floats of 32 bits, of any
/// rate up to 384,000 and of up to 16 channels, which are averaged. A file that is shorter than its
/// header says holds what it holds. Only the first `mostSeconds` are read.
[[nodiscard]] platform::Result<std::vector<std::int16_t>, WaveError> DecodeWave(
    std::span<const std::byte> file, std::uint32_t mostSeconds);

}  // namespace dialer
