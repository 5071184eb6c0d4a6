#include "voicemath/band_features.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "voicemath/fft.h"

namespace voicemath {
namespace {

/// Magnitude of a bin times its number, in double until the one rounding at the end.
float WeightedMagnitude(float real, float imaginary, std::size_t bin) {
  const double re = real;
  const double im = imaginary;
  return static_cast<float>(std::sqrt(re * re + im * im) * static_cast<double>(bin));
}

}  // namespace

void BandFeatures(std::span<const std::int16_t, kFrameSamples> frame,
                  std::span<float, kBandCount> bands) {
  std::array<float, kFrameSamples> real;
  std::array<float, kFrameSamples> imaginary{};
  std::copy(frame.begin(), frame.end(), real.begin());
  Fft(real, imaginary, 1);

  std::fill(bands.begin(), bands.end(), 0.0F);
  for (std::size_t bin = kFirstUsedBin; bin < kUsedBins; ++bin) {
    bands[bin / kBandBins] += WeightedMagnitude(real[bin], imaginary[bin], bin);
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
