#include "voicemath/magnitude.h"

#include <algorithm>
#include <bit>
#include <utility>

// Why the whole numbers give the same float.
//
// Let m be the magnitude in units of 2^-e, where the larger part, which has 24 bits, begins at bit
// 30: m < 2^32. The smaller part loses less than a unit when it is brought to the same units, and
// so m loses less than one; its root, rounded down, less than another. So r <= m < r + 2, and the
// weighed magnitude lies from r * weight to (r + 2) * weight. What double makes of it errs by less
// than 2^-50 of it, that is by less than one unit, as it is below 2^40. Where one less than the
// lower end and one more than the upper end round to the same float, it does as well; strictly
// between them it is no tie either. Elsewhere, about once in fifty times, double decides.

namespace voicemath {
namespace {

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

/// The square root, rounded down, of a number from 2^60 on and below 2^63.
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

float WeighMagnitudeInIntegers(float real, float imaginary, std::int32_t weight) {
  Parts large = TakeApart(real);
  Parts small = TakeApart(imaginary);
  if (large.exponent < small.exponent) {
    std::swap(large, small);
  }
  // Far from where numbers get too large or too small, zero included, for what follows.
  const int apart = large.exponent - small.exponent;
  if (large.exponent < 64 || large.exponent > 190 || small.exponent == 0) {
    return WeighMagnitudeInDouble(real, imaginary, weight);
  }
  const std::uint64_t a = std::uint64_t{large.fraction} << 7U;
  const std::uint64_t b = (std::uint64_t{small.fraction} << 7U) >> std::min(apart, 40);
  const std::uint64_t root = Root(a * a + b * b);
  const std::uint64_t low = root * static_cast<std::uint32_t>(weight) - 1;
  const std::uint64_t high = (root + 2) * static_cast<std::uint32_t>(weight) + 1;
  // To 24 bits.
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
