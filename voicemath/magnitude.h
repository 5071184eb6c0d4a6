#pragma once

#include <cmath>
#include <cstdint>

#include "voicemath/vector_clones.h"

namespace voicemath {

/// The magnitude times `weight`: squares, sum, root and product in double, then rounded to float
/// once.
[[nodiscard]] VOXTREL_INLINE float WeighMagnitudeInDouble(float real, float imaginary,
                                                          std::int32_t weight) {
  const double re = real;
  const double im = imaginary;
  return static_cast<float>(std::sqrt(re * re + im * im) * static_cast<double>(weight));
}

/// The same in whole numbers, for machines whose doubles are made by many instructions. `weight` is
/// from 1 to 255.
[[nodiscard]] float WeighMagnitudeInIntegers(float real, float imaginary, std::int32_t weight);

/// Whichever is faster.
[[nodiscard]] VOXTREL_INLINE float WeighMagnitude(float real, float imaginary,
                                                  std::int32_t weight) {
  if constexpr (kRootsFast) {
    return WeighMagnitudeInDouble(real, imaginary, weight);
  } else {
    return WeighMagnitudeInIntegers(real, imaginary, weight);
  }
}

}  // namespace voicemath
