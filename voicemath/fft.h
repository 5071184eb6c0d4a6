#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include "voicemath/vector_clones.h"

// The discrete transform, and what it is made of. Fft transforms one frame, as literally as it is
// defined. ComputeSpectra (band_features.h) transforms several frames side by side with the same
// factors and the same magnitudes, and has to give the same bits.

namespace voicemath {

/// Transforms in place: complex, radix 2, decimation in frequency (Gentleman and Sande 1966).
///
/// `real` and `imaginary` have the same length, a power of two. `sign` 1 is the forward transform
/// with the kernel e^(-2 pi i k n / N). `sign` -1 is the inverse without its scale. Every product,
/// sum and difference of the butterflies and of the recurrence of the twiddle factors is rounded to
/// float by itself. This rounding is part of the result.
void Fft(std::span<float> real, std::span<float> imaginary, int sign);

struct Complex {
  float real;
  float imaginary;
};

/// Each product is stored before it is added, so that it is rounded to float by itself.
VOXTREL_INLINE Complex Multiply(Complex a, Complex b) {
  const float rr = a.real * b.real;
  const float ii = a.imaginary * b.imaginary;
  const float ri = a.real * b.imaginary;
  const float ir = a.imaginary * b.real;
  return {rr - ii, ri + ir};
}

/// Returns the factor between the twiddles of two neighbouring butterflies of the stage whose
/// points are `half` apart. The angle is a float. Its cosine and sine are formed in double and then
/// rounded to float.
[[nodiscard]] Complex TwiddleStep(std::size_t half, int sign);

/// The twiddles of the forward stage whose points are kHalf apart. They come from the recurrence by
/// which the transform is defined, since its rounding is part of the result.
template <std::size_t kHalf>
struct Twiddles {
  Twiddles() {
    const Complex step = TwiddleStep(kHalf, 1);
    Complex w{1.0F, 0.0F};
    for (std::size_t j = 0; j < kHalf; ++j) {
      real[j] = w.real;
      imaginary[j] = w.imaginary;
      w = Multiply(w, step);
    }
  }

  [[nodiscard]] VOXTREL_INLINE Complex At(std::size_t j) const { return {real[j], imaginary[j]}; }

  std::array<float, kHalf> real;
  std::array<float, kHalf> imaginary;
};

/// Returns the magnitude times `weight`. Squares, sum, root and product are formed in double; the
/// result is rounded to float once.
[[nodiscard]] VOXTREL_INLINE float WeighMagnitudeInDouble(float real, float imaginary,
                                                          std::int32_t weight) {
  const double re = real;
  const double im = imaginary;
  return static_cast<float>(std::sqrt(re * re + im * im) * static_cast<double>(weight));
}

/// Returns the same bits, but calculates in whole numbers, for machines that need many instructions
/// for each double. `weight` is from 1 to 255.
[[nodiscard]] float WeighMagnitudeInIntegers(float real, float imaginary, std::int32_t weight);

/// Does it in the way that is faster on this processor.
[[nodiscard]] VOXTREL_INLINE float WeighMagnitude(float real, float imaginary,
                                                  std::int32_t weight) {
  if constexpr (kRootsFast) {
    return WeighMagnitudeInDouble(real, imaginary, weight);
  } else {
    return WeighMagnitudeInIntegers(real, imaginary, weight);
  }
}

}  // namespace voicemath
