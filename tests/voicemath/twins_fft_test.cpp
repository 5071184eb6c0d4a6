#include <array>
#include <bit>
#include <cmath>
#include <complex>
#include <cstdint>
#include <numbers>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "tests/voicemath/twins/fft.h"

namespace {

using testing::Each;
using testing::ElementsAre;

struct Spectrum {
  std::vector<float> real;
  std::vector<float> imaginary;
};

Spectrum Transformed(std::vector<float> real, int sign = 1) {
  Spectrum spectrum{real, std::vector<float>(real.size())};
  twins::Fft(spectrum.real, spectrum.imaginary, sign);
  return spectrum;
}

std::complex<double> NaiveBin(const std::vector<float>& signal, std::size_t bin) {
  std::complex<double> sum = 0.0;
  const double points = static_cast<double>(signal.size());
  for (std::size_t i = 0; i < signal.size(); ++i) {
    const double turns = static_cast<double>(i * bin % signal.size()) / points;
    // The length of a polar number is never negative, and the signal is.
    sum += static_cast<double>(signal[i]) * std::polar(1.0, -2.0 * std::numbers::pi * turns);
  }
  return sum;
}

std::vector<float> ThreeTones(std::size_t n) {
  std::vector<float> signal(n);
  for (std::size_t i = 0; i < n; ++i) {
    const double t = 2.0 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(n);
    signal[i] = static_cast<float>(
        std::round(9000.0 * std::cos(20.0 * t) + 500.0 * std::sin(100.3 * t) + 40.0 * std::cos(t)));
  }
  return signal;
}

TEST(FftTwin, OnePointStaysAsItIs) {
  const Spectrum spectrum = Transformed({7.0F});
  EXPECT_THAT(spectrum.real, ElementsAre(7.0F));
  EXPECT_THAT(spectrum.imaginary, ElementsAre(0.0F));
}

TEST(FftTwin, TwoPointsBecomeSumAndDifference) {
  EXPECT_THAT(Transformed({5.0F, 3.0F}).real, ElementsAre(8.0F, 2.0F));
}

TEST(FftTwin, ImpulseAtTheStartIsFlat) {
  std::vector<float> impulse(1024);
  impulse[0] = 1.0F;
  const Spectrum spectrum = Transformed(impulse);
  EXPECT_THAT(spectrum.real, Each(1.0F));
  EXPECT_THAT(spectrum.imaginary, Each(0.0F));
}

TEST(FftTwin, ConstantHasOnlyItsFirstBin) {
  const Spectrum spectrum = Transformed(std::vector<float>(8, 3.0F));
  EXPECT_THAT(spectrum.real, ElementsAre(24.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F));
  EXPECT_THAT(spectrum.imaginary, Each(0.0F));
}

TEST(FftTwin, QuarterTurnKeepsTheErrorOfTheFloatAngle) {
  const Spectrum spectrum = Transformed({0.0F, 1.0F, 0.0F, 0.0F});
  EXPECT_EQ(spectrum.real[0], 1.0F);
  // The cosine of the float nearest to a quarter turn is not zero.
  EXPECT_EQ(std::bit_cast<std::uint32_t>(spectrum.real[1]), 0xB33BBD2EU);
  EXPECT_EQ(spectrum.imaginary[1], -1.0F);
  EXPECT_EQ(spectrum.real[2], -1.0F);
}

TEST(FftTwin, DelayedImpulseTurnsClockwiseForward) {
  std::vector<float> impulse(16);
  impulse[1] = 1.0F;
  const Spectrum forward = Transformed(impulse, 1);
  const Spectrum inverse = Transformed(impulse, -1);
  for (std::size_t k = 0; k < 16; ++k) {
    const double angle = 2.0 * std::numbers::pi * static_cast<double>(k) / 16.0;
    EXPECT_NEAR(forward.real[k], std::cos(angle), 1e-6);
    EXPECT_NEAR(forward.imaginary[k], -std::sin(angle), 1e-6);
    EXPECT_NEAR(inverse.imaginary[k], std::sin(angle), 1e-6);
  }
}

TEST(FftTwin, EveryBinAgreesWithTheSumItStandsFor) {
  for (const std::size_t n : {4U, 8U, 64U, 1024U}) {
    const std::vector<float> signal = ThreeTones(n);
    const Spectrum spectrum = Transformed(signal);
    for (std::size_t k = 0; k < n; ++k) {
      const std::complex<double> expected = NaiveBin(signal, k);
      ASSERT_NEAR(spectrum.real[k], expected.real(), 0.05 * static_cast<double>(n))
          << n << ' ' << k;
      ASSERT_NEAR(spectrum.imaginary[k], expected.imag(), 0.05 * static_cast<double>(n))
          << n << ' ' << k;
    }
  }
}

TEST(FftTwin, ThereAndBackIsTheSignalTimesItsLength) {
  const std::vector<float> signal = ThreeTones(256);
  Spectrum spectrum = Transformed(signal, 1);
  twins::Fft(spectrum.real, spectrum.imaginary, -1);
  for (std::size_t i = 0; i < signal.size(); ++i) {
    ASSERT_NEAR(spectrum.real[i] / 256.0F, signal[i], 0.05F);
    ASSERT_NEAR(spectrum.imaginary[i] / 256.0F, 0.0F, 0.05F);
  }
}

// The bits of cosine and sine of the float angle, from series with exact fractions.
TEST(FftTwin, TheTenTwiddleStepsOfAFrameAreThese) {
  struct Step {
    std::size_t half;
    std::uint32_t real;
    std::uint32_t imaginary;
  };
  constexpr std::array<Step, 10> kSteps{{{512, 0x3F7FFEC4U, 0xBBC90F88U},
                                         {256, 0x3F7FFB11U, 0xBC490E90U},
                                         {128, 0x3F7FEC43U, 0xBCC90AB0U},
                                         {64, 0x3F7FB10FU, 0xBD48FB30U},
                                         {32, 0x3F7EC46DU, 0xBDC8BD36U},
                                         {16, 0x3F7B14BEU, 0xBE47C5C2U},
                                         {8, 0x3F6C835EU, 0xBEC3EF16U},
                                         {4, 0x3F3504F3U, 0xBF3504F3U},
                                         {2, 0xB33BBD2EU, 0xBF800000U},
                                         {1, 0xBF800000U, 0x33BBBD2EU}}};
  for (const Step& expected : kSteps) {
    const twins::Complex step = twins::TwiddleStep(expected.half, 1);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(step.real), expected.real) << expected.half;
    EXPECT_EQ(std::bit_cast<std::uint32_t>(step.imaginary), expected.imaginary) << expected.half;
    EXPECT_EQ(twins::TwiddleStep(expected.half, -1).imaginary, -step.imaginary);
  }
}

}  // namespace
