#include "voicemath/fft.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <numbers>
#include <utility>

namespace voicemath {
namespace {

/// One stage. A butterfly joins two points that are half a block apart: the first becomes their
/// sum, the second their difference, turned by the twiddle of its place in the block. Butterflies
/// of the same place share a twiddle, so they are done together and each twiddle is formed once.
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

/// The stages leave each bin at the place whose number has the bin's bits in reverse. This swaps
/// them into order. `j` is `i` with its bits reversed, counted up from the highest bit.
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

// Why the whole numbers give the same float.
//
// Let m be the magnitude, in units in which the larger of the two parts, which has 24 bits, begins
// at bit 30. So m < 2^32.
//
// (1) The smaller part is brought to the same units and loses less than one of them, so m loses
//     less than one. The root is rounded down and loses less than another one. So r <= m < r + 2,
//     and the weighed magnitude lies from r * weight to (r + 2) * weight.
// (2) Double errs by less than 2^-50 of the weighed magnitude. That is below 2^40, so double errs
//     by less than one unit.
// (3) If one less than the lower end and one more than the upper end round to the same float, what
//     double gives rounds to that float too. It lies strictly between them, so it is no tie either.
//
// In about one case of fifty the two ends round to different floats, and double decides.

constexpr int kFractionBits = 23;
constexpr std::uint32_t kHiddenBit = std::uint32_t{1} << kFractionBits;

/// A float taken apart: fraction * 2^(exponent - 150), without its sign.
struct Parts {
  int exponent;
  std::uint32_t fraction;
};

Parts TakeApart(float value) {
  const auto bits = std::bit_cast<std::uint32_t>(value);
  return {static_cast<int>(bits >> kFractionBits & 0xFFU), (bits & (kHiddenBit - 1)) | kHiddenBit};
}

/// Returns the square root, rounded down, of a number from 2^60 on and below 2^63. It tries one bit
/// after the other from the highest on, and keeps those with which the square is not too large.
std::uint32_t Root(std::uint64_t square) {
  std::uint32_t root = 0;
  std::uint64_t rest = square;
  for (std::uint32_t bit = std::uint32_t{1} << 31U; bit != 0; bit /= 2) {
    // (root + bit)^2 - root^2
    const std::uint64_t step = (std::uint64_t{2} * root + bit) * bit;
    if (step <= rest) {
      rest -= step;
      root += bit;
    }
  }
  return root;
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

float WeighMagnitudeInIntegers(float real, float imaginary, std::int32_t weight) {
  Parts large = TakeApart(real);
  Parts small = TakeApart(imaginary);
  if (large.exponent < small.exponent) {
    std::swap(large, small);
  }
  const int apart = large.exponent - small.exponent;
  // Leaves numbers to double that are zero, or so large or so small that what follows could fail.
  if (large.exponent < 64 || large.exponent > 190 || small.exponent == 0) {
    return WeighMagnitudeInDouble(real, imaginary, weight);
  }
  const std::uint64_t a = std::uint64_t{large.fraction} << 7U;
  const std::uint64_t b = (std::uint64_t{small.fraction} << 7U) >> std::min(apart, 40);
  const std::uint64_t root = Root(a * a + b * b);
  const std::uint64_t low = root * static_cast<std::uint32_t>(weight) - 1;
  const std::uint64_t high = (root + 2) * static_cast<std::uint32_t>(weight) + 1;
  // Both ends are rounded to the 24 bits of a float.
  const int cut = 40 - std::countl_zero(low);
  const std::uint64_t half = std::uint64_t{1} << static_cast<unsigned>(cut - 1);
  const std::uint64_t rounded = (low + half) >> static_cast<unsigned>(cut);
  if (rounded != (high + half) >> static_cast<unsigned>(cut)) {
    return WeighMagnitudeInDouble(real, imaginary, weight);
  }
  // The units are 2^(large.exponent - 150 - 7). A carry out of the 24 bits goes into the exponent.
  const auto exponent = static_cast<std::uint32_t>(large.exponent - 7 + cut - 1);
  return std::bit_cast<float>((exponent << static_cast<unsigned>(kFractionBits)) +
                              static_cast<std::uint32_t>(rounded));
}

}  // namespace voicemath
