#pragma once

#include <array>
#include <cstdint>

#include "voicemath/constants.h"
#include "voicemath/vector_clones.h"

namespace voicemath {

/// The places at which the samples of kFrameLanes frames begin, kFrameSamples of each. They may
/// overlap, and be the same.
using FrameStarts = std::array<const std::int16_t*, kFrameLanes>;

/// The bins kFirstUsedBin to kUsedBins - 1 of each frame's transform, each as its magnitude times
/// its number: squares, sum, root and product in double, then rounded to float once. Bit for bit
/// what Fft gives, whose butterflies these are.
using Spectra = std::array<std::array<float, kFrameLanes>, kUsedBins - kFirstUsedBin>;

void ComputeSpectra(const FrameStarts& frames, Spectra& spectra);

}  // namespace voicemath
