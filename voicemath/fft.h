#pragma once

#include <span>

namespace voicemath {

/// In-place complex transform, radix 2, decimation in frequency.
///
/// `real` and `imaginary` have the same length, a power of two. `sign` 1 is the forward transform
/// with the kernel e^(-2 pi i k n / N), -1 the inverse without its scale. Every product, sum and
/// difference of the butterflies and of the recurrence of the twiddle factors is rounded to float
/// by itself; this rounding is part of the result.
void Fft(std::span<float> real, std::span<float> imaginary, int sign);

}  // namespace voicemath
