#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/wave_devices.h"

namespace audio {

inline constexpr std::size_t kWaveHeaderBytes = 44;

/// What every recording of the system is: PCM, mono, 16 bits, 11,025 samples per second.
inline constexpr std::uint16_t kRecordingBits = 16;
inline constexpr std::uint32_t kRecordingRate = 11025;

/// Returns the format of mono PCM with `bits` bits and `samplesPerSecond`.
[[nodiscard]] platform::WaveFormat MonoPcm(std::uint16_t bits, std::uint32_t samplesPerSecond);

/// Returns the header of every wave file that the system writes, for `dataBytes` bytes of samples.
///
/// The RIFF size field holds the length of the whole file, `dataBytes` + 44, and not that length
/// less 8 as is usual. The recorder and the trimmer have always written it so and the companion
/// dialer reads such files; keep it.
[[nodiscard]] std::array<std::byte, kWaveHeaderBytes> MakeWaveHeader(
    const platform::WaveFormat& format, std::uint32_t dataBytes);

}  // namespace audio
