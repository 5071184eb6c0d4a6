#pragma once

#include <cstdint>
#include <optional>

#include "platform/file_system.h"
#include "platform/wave_format.h"

namespace wave_file {

/// Where the samples of a wave file are. The whole range lies within the file.
struct WaveFileLayout {
  platform::WaveFormat format;
  std::uint64_t dataOffset = 0;
  std::uint64_t dataBytes = 0;  ///< Whole sample blocks only.
};

/// Walks the chunks of a RIFF wave file with PCM samples; they may come in any order. Nothing where
/// it is not such a file or a chunk does not lie within it.
///
/// The data chunk alone may claim more than the file has: a recording that was cut short holds what
/// it holds. The length in the RIFF header is not looked at, since writers disagree about it.
[[nodiscard]] std::optional<WaveFileLayout> ReadWaveFileLayout(platform::File& file);

}  // namespace wave_file
