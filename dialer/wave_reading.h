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

/// The sound of a wave file at its own rate.
struct WaveSound {
  std::vector<float> samples;  ///< In steps of 16 bits. Channels are averaged.
  std::uint32_t rate = 0;
  bool isRecorders = false;  ///< It has the recorder's form: one channel, 16 bits, its rate.
  bool isWhole = true;       ///< The file is as long as its header says, or that does not say it.
};

/// Reads PCM of 8, 16, 24 and 32 bits and floats of 32 and 64 bits, of any rate up to 384,000 and
/// of up to 16 channels. A file that is shorter than its header says holds what it holds. Only the
/// first `mostSeconds` are read.
[[nodiscard]] platform::Result<WaveSound, WaveError> ReadSound(std::span<const std::byte> file,
                                                               std::uint32_t mostSeconds);

/// Returns the sound that ReadSound reads as the recorder would have it: one channel, 16 bits,
/// voicemath::kSamplesPerSecond.
[[nodiscard]] platform::Result<std::vector<std::int16_t>, WaveError> DecodeWave(
    std::span<const std::byte> file, std::uint32_t mostSeconds);

/// Returns samples in steps of 16 bits. What is louder than full scale is clipped.
[[nodiscard]] std::vector<std::int16_t> ToSamples(std::span<const float> sound);

}  // namespace dialer
