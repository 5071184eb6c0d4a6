#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/file_system.h"
#include "platform/result.h"
#include "platform/wave_devices.h"

namespace wave_file {

/// The place of the samples in a wave file. The whole range lies within the file.
struct WaveFileLayout {
  platform::WaveFormat format;
  std::uint64_t dataOffset = 0;
  std::uint64_t dataBytes = 0;  ///< Whole sample blocks only.
};

/// Walks the chunks of a RIFF wave file with PCM samples, which may come in any order. Fails with
/// kBadFormat if it is no such file, if a chunk does not lie within it, or if it cannot be read.
///
/// Only the data chunk may claim more than the file has: a recording that was cut short holds what
/// it holds. The length in the RIFF header is not looked at, since writers disagree about it.
[[nodiscard]] platform::Result<WaveFileLayout, platform::WaveResult> ReadWaveFileLayout(
    platform::File& file);

/// Writes a whole RIFF wave file of PCM samples at the position of `file`. The lengths are those
/// that other programs go by: the one in the RIFF header counts what follows it. (The recordings of
/// the system itself hold another value there.) Fails with kFailed if a write fails, or if the
/// samples are longer than such a file can say.
[[nodiscard]] platform::Result<void, platform::WaveResult> WriteWaveFile(
    platform::File& file, const platform::WaveFormat& format, std::span<const std::byte> samples);

}  // namespace wave_file
