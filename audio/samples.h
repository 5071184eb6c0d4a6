#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/wave_devices.h"

namespace audio {

// Sound in memory, as the recorder has it: mono, 16 bits, 11,025 samples per second.

/// Returns the format of every recording of the system.
[[nodiscard]] platform::WaveFormat RecordingFormat();

/// Returns the bytes of samples, as wave devices take them.
[[nodiscard]] std::vector<std::byte> ToBytes(std::span<const std::int16_t> samples);

/// Returns the whole samples in `bytes`. A byte that is left over is no sample.
[[nodiscard]] std::vector<std::int16_t> ToSamples(std::span<const std::byte> bytes);

/// Returns the bytes of a wave file with these samples.
[[nodiscard]] std::vector<std::byte> ToWaveFile(std::span<const std::int16_t> samples);

/// Returns the tone that says "now". It is soft, and its edges are faded, so nothing clicks.
[[nodiscard]] std::vector<std::int16_t> MakeTone();

}  // namespace audio
