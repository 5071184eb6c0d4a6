#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "voicemath/constants.h"

namespace voicemath {

/// The bins kFirstUsedBin to kUsedBins - 1 of one frame's transform, each as its magnitude times
/// its number: squares, sum, root and product in double, then rounded to float once. Bit for bit
/// what Fft gives, whose butterflies these are.
using Spectrum = std::array<float, kUsedBins - kFirstUsedBin>;

void ComputeSpectrum(std::span<const std::int16_t, kFrameSamples> frame, Spectrum& spectrum);

}  // namespace voicemath
