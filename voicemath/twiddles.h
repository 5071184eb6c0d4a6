#pragma once

#include <array>
#include <cstddef>

#include "voicemath/vector_clones.h"

namespace voicemath {

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

/// The factor between the twiddles of two neighbouring butterflies of one stage, whose two points
/// are `half` apart. The angle is in float; its cosine and sine in double, then rounded to float.
[[nodiscard]] Complex TwiddleStep(std::size_t half, int sign);

/// The twiddles of the forward stage whose points are kHalf apart, by the recurrence that the
/// transform is defined with: its rounding is part of the result.
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

}  // namespace voicemath
