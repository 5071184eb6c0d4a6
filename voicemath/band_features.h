#pragma once

#include <cstdint>
#include <span>

#include "voicemath/constants.h"

namespace voicemath {

/// Band magnitudes of one frame, written to `bands`: the sum over the bins of each band of
/// magnitude times bin number, the magnitude of the 1,024-point transform taken without a window.
/// Bins below kFirstUsedBin count as zero. The magnitude and its product are formed in double and
/// rounded to float once; the sum runs in float, bins ascending.
void BandFeatures(std::span<const std::int16_t, kFrameSamples> frame,
                  std::span<float, kBandCount> bands);

/// Subtracts from each band its minimum over all frames. `features` is frame-major, kBandCount
/// values a frame.
void SubtractBandMinima(std::span<float> features);

}  // namespace voicemath
