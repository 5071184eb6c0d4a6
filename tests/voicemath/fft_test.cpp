#include "voicemath/fft.h"

#include <cstdint>
#include <random>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/signals.h"
#include "tests/voicemath/bits.h"
#include "tests/voicemath/signal_catalogue.h"
#include "tests/voicemath/twins/fft.h"

namespace voicemath {
namespace {

void ExpectSameAsTwin(std::vector<float> real, std::vector<float> imaginary, int sign,
                      const std::string& name) {
  std::vector<float> twinReal = real;
  std::vector<float> twinImaginary = imaginary;
  Fft(real, imaginary, sign);
  twins::Fft(twinReal, twinImaginary, sign);
  EXPECT_EQ(BitsOf(real), BitsOf(twinReal)) << name << ", real, sign " << sign;
  EXPECT_EQ(BitsOf(imaginary), BitsOf(twinImaginary)) << name << ", imaginary, sign " << sign;
}

std::vector<float> DrawFloats(std::mt19937& random, std::size_t count, std::uint32_t lowest,
                              std::uint32_t range) {
  std::vector<float> values(count);
  for (float& value : values) {
    value = DrawFloat(random, lowest, range);
  }
  return values;
}

TEST(Fft, EqualsItsTwinForEveryLengthAndBothSigns) {
  std::mt19937 random(20031);
  for (std::size_t n = 1; n <= 8192; n *= 2) {
    for (const int sign : {1, -1}) {
      const std::vector<float> real = DrawFloats(random, n, 120, 20);
      const std::vector<float> imaginary = DrawFloats(random, n, 120, 20);
      ExpectSameAsTwin(real, imaginary, sign, "length " + std::to_string(n));
      ExpectSameAsTwin(real, std::vector<float>(n), sign, "real, length " + std::to_string(n));
    }
  }
}

TEST(Fft, EqualsItsTwinOnValuesOfVeryDifferentSize) {
  std::mt19937 random(7);
  for (int round = 0; round < 20; ++round) {
    ExpectSameAsTwin(DrawFloats(random, 1024, 40, 170), DrawFloats(random, 1024, 40, 170), 1,
                     "wide");
    // Numbers so small that they lose digits, and zeros of both signs.
    ExpectSameAsTwin(DrawFloats(random, 256, 0, 12), DrawFloats(random, 256, 0, 2), -1, "tiny");
  }
}

TEST(Fft, EqualsItsTwinOnZerosOfBothSigns) {
  for (std::uint32_t pattern = 0; pattern < 256; ++pattern) {
    std::vector<float> real(4);
    std::vector<float> imaginary(4);
    for (std::size_t i = 0; i < 4; ++i) {
      real[i] = (pattern >> i & 1U) != 0 ? -0.0F : 0.0F;
      imaginary[i] = (pattern >> (i + 4) & 1U) != 0 ? -0.0F : 0.0F;
    }
    ExpectSameAsTwin(real, imaginary, 1, "zeros " + std::to_string(pattern));
  }
}

TEST(Fft, EqualsItsTwinOnSoundFrames) {
  for (const NamedSignal& signal : CatalogueOfFrames()) {
    ExpectSameAsTwin({signal.samples.begin(), signal.samples.end()}, std::vector<float>(1024), 1,
                     signal.name);
  }
}

}  // namespace
}  // namespace voicemath
