#pragma once

#include <bit>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

#include "tests/support/signals.h"

namespace voicemath {

/// Floats as integers, for comparisons in which -0 is not 0 and nothing is nearly equal.
[[nodiscard]] inline std::vector<std::uint32_t> BitsOf(std::span<const float> values) {
  std::vector<std::uint32_t> bits;
  bits.reserve(values.size());
  for (const float value : values) {
    bits.push_back(std::bit_cast<std::uint32_t>(value));
  }
  return bits;
}

/// A float of either sign whose biased exponent is `lowest` or one of the `range` - 1 above it.
[[nodiscard]] inline float DrawFloat(std::mt19937& random, std::uint32_t lowest,
                                     std::uint32_t range) {
  const std::uint32_t exponent = lowest + support::Draw(random, range);
  const auto rest = static_cast<std::uint32_t>(random()) & 0x807FFFFFU;
  return std::bit_cast<float>(rest | (exponent << 23U));
}

}  // namespace voicemath
