#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "voicemath/constants.h"
#include "voicemath/vector_clones.h"

namespace voicemath {

/// Where the samples of kFrameLanes frames begin, kFrameSamples of each. Frames may overlap, and
/// may be the same.
using FrameStarts = std::array<const std::int16_t*, kFrameLanes>;

/// The bins kFirstUsedBin to kUsedBins - 1 of each frame's transform, each as its magnitude times
/// its number (WeighMagnitude). The magnitudes of speech fall as the frequency rises; the number
/// makes up for that, so that low bands do not decide alone.
using Spectra = std::array<std::array<float, kFrameLanes>, kUsedBins - kFirstUsedBin>;

/// Transforms frames, without a window. Gives bit for bit what Fft gives.
void ComputeSpectra(const FrameStarts& frames, Spectra& spectra);

/// Computes the bands of frames, one of which begins every `hop` samples. A band is the sum of its
/// bins of Spectra. Bins below kFirstUsedBin count as zero. The sum is formed in float, bins
/// ascending.
///
/// `features` gets kBandCount values for each frame, frame by frame. `samples` reach to the end of
/// the last frame. kFrameLanes frames take hardly longer than one.
void BandFeatures(std::span<const std::int16_t> samples, std::size_t hop,
                  std::span<float> features);

/// Subtracts from each band its minimum over all frames, which is what room and microphone always
/// put in. `features` has kBandCount values for each frame, frame by frame.
void SubtractBandMinima(std::span<float> features);

}  // namespace voicemath
