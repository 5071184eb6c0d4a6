#include "voicemath/fft.h"

#include <cmath>
#include <cstddef>
#include <numbers>
#include <utility>

#include "voicemath/twiddles.h"

namespace voicemath {
namespace {

void Butterflies(std::span<float> real, std::span<float> imaginary, std::size_t span, int sign) {
  const std::size_t half = span / 2;
  const Complex step = TwiddleStep(half, sign);
  Complex w{1.0F, 0.0F};
  for (std::size_t j = 0; j < half; ++j) {
    for (std::size_t i = j; i < real.size(); i += span) {
      const Complex difference{real[i] - real[i + half], imaginary[i] - imaginary[i + half]};
      real[i] += real[i + half];
      imaginary[i] += imaginary[i + half];
      const Complex turned = Multiply(difference, w);
      real[i + half] = turned.real;
      imaginary[i + half] = turned.imaginary;
    }
    w = Multiply(w, step);
  }
}

void ReverseBits(std::span<float> real, std::span<float> imaginary) {
  std::size_t j = 0;
  for (std::size_t i = 0; i + 1 < real.size(); ++i) {
    if (i > j) {
      std::swap(real[i], real[j]);
      std::swap(imaginary[i], imaginary[j]);
    }
    std::size_t k = real.size() / 2;
    while (j >= k) {
      j -= k;
      k /= 2;
    }
    j += k;
  }
}

}  // namespace

Complex TwiddleStep(std::size_t half, int sign) {
  const float theta = std::numbers::pi_v<float> / static_cast<float>(half);
  const double angle = theta;
  return {static_cast<float>(std::cos(angle)), static_cast<float>(-sign * std::sin(angle))};
}

void Fft(std::span<float> real, std::span<float> imaginary, int sign) {
  for (std::size_t span = real.size(); span >= 2; span /= 2) {
    Butterflies(real, imaginary, span, sign);
  }
  ReverseBits(real, imaginary);
}

}  // namespace voicemath
