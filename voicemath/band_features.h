#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "voicemath/constants.h"

namespace voicemath {

/// Band magnitudes of frames, of which one begins every `hop` samples: the sum over the bins of
/// each band of magnitude times bin number, the magnitude of the 1,024-point transform taken
/// without a window. Bins below kFirstUsedBin count as zero. The magnitude and its product are
/// formed in double and rounded to float once; the sum runs in float, bins ascending.
///
/// `features` has kBandCount values for each frame, frame-major; `samples` reach to the end of the
/// last one. kFrameLanes frames take hardly longer than one.
void BandFeatures(std::span<const std::int16_t> samples, std::size_t hop,
                  std::span<float> features);

/// Subtracts from each band its minimum over all frames. `features` is frame-major, kBandCount
/// values a frame.
void SubtractBandMinima(std::span<float> features);

}  // namespace voicemath
