#pragma once

#include <cstddef>
#include <span>

#include "platform/file_system.h"
#include "platform/wave_format.h"

namespace wave_file {

/// Writes a whole RIFF wave file of PCM samples at the position of `file`, with the lengths that
/// other programs go by: the one in the RIFF header counts what follows it. (The recordings of the
/// system itself hold another value there.) False where a write failed, or the samples are longer
/// than such a file can tell.
[[nodiscard]] bool WriteWaveFile(platform::File& file, const platform::WaveFormat& format,
                                 std::span<const std::byte> samples);

}  // namespace wave_file
