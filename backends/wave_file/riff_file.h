#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "platform/file_system.h"
#include "platform/wave_format.h"

namespace wave_file {

/// The place of the samples in a wave file. The whole range lies within the file.
struct WaveFileLayout {
  platform::WaveFormat format;
  std::uint64_t dataOffset = 0;
  std::uint64_t dataBytes = 0;  ///< Whole sample blocks only.
};

/// Walks the chunks of a RIFF wave file with PCM samples, which may come in any order. Returns
/// nothing if it is no such file, or if a chunk does not lie within it.
///
/// Only the data chunk may claim more than the file has: a recording that was cut short holds what
/// it holds. The length in the RIFF header is not looked at, since writers disagree about it.
[[nodiscard]] std::optional<WaveFileLayout> ReadWaveFileLayout(platform::File& file);

/// Writes a whole RIFF wave file of PCM samples at the position of `file`. The lengths are those
/// that other programs go by: the one in the RIFF header counts what follows it. (The recordings of
/// the system itself hold another value there.) Returns false if a write fails, or if the samples
/// are longer than such a file can say.
[[nodiscard]] bool WriteWaveFile(platform::File& file, const platform::WaveFormat& format,
                                 std::span<const std::byte> samples);

}  // namespace wave_file
