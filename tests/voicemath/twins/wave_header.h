#pragma once

#include <cstdint>

#include "tests/voicemath/twins/byte_file.h"

namespace twins {

/// What is known of a wave file that was opened. `code` 0 is accepted; else the other fields say
/// nothing.
struct Wave {
  int code = 0;
  std::uint8_t dataOffset = 0;
  std::uint32_t dataBytes = 0;
  std::uint32_t firstSample = 0;
  std::uint32_t lastSample = 0;
};

/// 1 shorter than 44 bytes, 2 no "RIFF", 3 no "WAVE", 4 format tag not 1, 5 not one channel, 6 not
/// 16 bits, 7 no "data" at a multiple of four below 100, or more data than the file is long.
[[nodiscard]] Wave CheckHeader(ByteFile& file);

/// The 44 bytes in front of `dataBytes` bytes of samples. The size after "RIFF" is that of the
/// whole file.
[[nodiscard]] Bytes HeaderFor(std::uint32_t dataBytes);

}  // namespace twins
