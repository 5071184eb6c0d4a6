#include "voicemath/band_features.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "voicemath/spectrum.h"

namespace voicemath {
namespace {

using Bands = std::array<std::array<float, kFrameLanes>, kBandCount>;

/// Bin by bin; the frames, which have nothing to do with each other, side by side.
Bands SumBands(const Spectra& spectra) {
  Bands bands{};
  for (std::size_t bin = kFirstUsedBin; bin < kUsedBins; ++bin) {
    for (std::size_t lane = 0; lane < kFrameLanes; ++lane) {
      bands[bin / kBandBins][lane] += spectra[bin - kFirstUsedBin][lane];
    }
  }
  return bands;
}

}  // namespace

void BandFeatures(std::span<const std::int16_t> samples, std::size_t hop,
                  std::span<float> features) {
  const std::size_t frames = features.size() / kBandCount;
  Spectra spectra;
  for (std::size_t begin = 0; begin < frames; begin += kFrameLanes) {
    FrameStarts starts;
    for (std::size_t lane = 0; lane < kFrameLanes; ++lane) {
      // The last frame in each lane that is left over.
      starts[lane] = &samples[std::min(begin + lane, frames - 1) * hop];
    }
    ComputeSpectra(starts, spectra);
    const Bands bands = SumBands(spectra);
    for (std::size_t frame = begin; frame < std::min(begin + kFrameLanes, frames); ++frame) {
      for (std::size_t band = 0; band < kBandCount; ++band) {
        features[frame * kBandCount + band] = bands[band][frame - begin];
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
