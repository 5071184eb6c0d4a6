#include "voicemath/band_features.h"

#include <algorithm>
#include <cstddef>

#include "voicemath/spectrum.h"

namespace voicemath {

void BandFeatures(std::span<const std::int16_t, kFrameSamples> frame,
                  std::span<float, kBandCount> bands) {
  Spectrum spectrum;
  ComputeSpectrum(frame, spectrum);
  std::fill(bands.begin(), bands.end(), 0.0F);
  // Bin by bin within a band; the bands, which have nothing to do with each other, side by side.
  for (std::size_t step = 0; step < kBandBins; ++step) {
    for (std::size_t band = 0; band < kBandCount; ++band) {
      const std::size_t bin = band * kBandBins + step;
      if (bin >= kFirstUsedBin) {
        bands[band] += spectrum[bin - kFirstUsedBin];
      }
    }
  }
}

void SubtractBandMinima(std::span<float> features) {
  for (std::size_t band = 0; band < kBandCount && band < features.size(); ++band) {
    float minimum = features[band];
    for (std::size_t i = band; i < features.size(); i += kBandCount) {
      minimum = std::min(minimum, features[i]);
    }
    for (std::size_t i = band; i < features.size(); i += kBandCount) {
      features[i] -= minimum;
    }
  }
}

}  // namespace voicemath
