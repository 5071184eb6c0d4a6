#pragma once

#include "tests/voicemath/twins/wave_header.h"

namespace twins {

/// Rewrites the file in place so that it holds only the segment of `wave`, and `wave` with it.
void TrimWaveFile(ByteFile& file, Wave& wave);

}  // namespace twins
