#pragma once

#include <cstddef>
#include <vector>

namespace twins {

struct Complex {
  float real = 0.0F;
  float imaginary = 0.0F;
};

/// Factor from one twiddle to the next in the stage whose butterflies are `half` points apart.
[[nodiscard]] Complex TwiddleStep(std::size_t half, int sign);

/// In-place complex transform, radix 2, decimation in frequency, with the reordering pass written
/// out. Both arrays have the same length, a power of two.
void Fft(std::vector<float>& real, std::vector<float>& imaginary, int sign);

}  // namespace twins
