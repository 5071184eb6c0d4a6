#include "voicemath/spectrum.h"

#include <cstddef>

#include "voicemath/magnitude.h"
#include "voicemath/twiddles.h"

// The ten stages of the 1,024-point transform in four passes, over several frames side by side: one
// in each lane, so that nothing ever moves from lane to lane. Each butterfly has the operands, the
// operations and the roundings that it has in Fft; only what no used bin depends on is left out.
//
// The samples are real, and their sums as whole numbers are exact like the floats that hold them,
// so either kind of number does. A factor of an imaginary part of 0 only decides the signs of
// zeros, which no magnitude shows.
//
// After the first pass every eighth of the points goes its own way to the end. Half of the eighths
// are made at a time, which keeps the work in the processor's nearest memory. Nothing is put into
// another order at the end: a table says which bin stands at which place.

namespace voicemath {
namespace {

/// The same point of all frames.
struct alignas(2 * sizeof(float) * kFrameLanes) Point {
  std::array<float, kFrameLanes> real;
  std::array<float, kFrameLanes> imaginary;

  [[nodiscard]] VOXTREL_INLINE Complex At(std::size_t lane) const {
    return {real[lane], imaginary[lane]};
  }
  VOXTREL_INLINE void Put(std::size_t lane, Complex value) {
    real[lane] = value.real;
    imaginary[lane] = value.imaginary;
  }
};

constexpr std::size_t kEighth = kFrameSamples / 8;
/// A little more, lest the points that a butterfly joins compete for the same places of a cache.
constexpr std::size_t kEighthApart = kEighth + 1;
using HalfOfPoints = std::array<Point, 4 * kEighthApart>;

using Row = std::array<LaneSample, kFrameLanes>;
using Rows = std::array<Row, kFrameSamples>;

struct AllTwiddles {
  Twiddles<512> stage1;
  Twiddles<256> stage2;
  Twiddles<128> stage3;
  Twiddles<64> stage4;
  Twiddles<32> stage5;
  Twiddles<16> stage6;
  Twiddles<8> stage7;
  Twiddles<4> stage8;
};

VOXTREL_INLINE float WeighMagnitude(Complex value, std::int32_t weight) {
  return voicemath::WeighMagnitude(value.real, value.imaginary, weight);
}
VOXTREL_INLINE Complex Sum(Complex a, Complex b) {
  return {a.real + b.real, a.imaginary + b.imaginary};
}
VOXTREL_INLINE Complex Turned(Complex a, Complex b, Complex w) {
  return Multiply({a.real - b.real, a.imaginary - b.imaginary}, w);
}
VOXTREL_INLINE Complex Turned(LaneSample a, LaneSample b, Complex w) {
  const auto difference = static_cast<float>(a - b);
  return {difference * w.real, difference * w.imaginary};
}

VOXTREL_INLINE void TakeSamples(const FrameStarts& frames, Rows& rows) {
  constexpr std::size_t kAtOnce = 64;
  for (std::size_t at = 0; at < kFrameSamples; at += kAtOnce) {
    // As 16 bits they are moved between lanes with the least effort.
    std::array<std::int16_t, kAtOnce * kFrameLanes> samples;
    for (std::size_t i = 0; i < kAtOnce; ++i) {
      for (std::size_t lane = 0; lane < kFrameLanes; ++lane) {
        samples[i * kFrameLanes + lane] = frames[lane][at + i];
      }
    }
    for (std::size_t i = 0; i < kAtOnce; ++i) {
      for (std::size_t lane = 0; lane < kFrameLanes; ++lane) {
        rows[at + i][lane] = samples[i * kFrameLanes + lane];
      }
    }
  }
}

/// Stages 1 to 3 for the half that begins with sums.
VOXTREL_INLINE void SplitSums(const Rows& rows, const AllTwiddles& w, HalfOfPoints& x) {
  for (std::size_t p = 0; p < kEighth; ++p) {
    const Complex w0 = w.stage2.At(p);
    const Complex w1 = w.stage2.At(p + kEighth);
    const Complex w2 = w.stage3.At(p);
    VOXTREL_LANES
    for (std::size_t lane = 0; lane < kFrameLanes; ++lane) {
      const auto sum = [&](std::size_t i) {
        return rows[p + i * kEighth][lane] + rows[p + (i + 4) * kEighth][lane];
      };
      const LaneSample sum0 = sum(0) + sum(2);
      const LaneSample sum1 = sum(1) + sum(3);
      const Complex turned0 = Turned(sum(0), sum(2), w0);
      const Complex turned1 = Turned(sum(1), sum(3), w1);
      x[p].Put(lane, {static_cast<float>(sum0 + sum1), 0.0F});
      x[p + kEighthApart].Put(lane, Turned(sum0, sum1, w2));
      x[p + 2 * kEighthApart].Put(lane, Sum(turned0, turned1));
      x[p + 3 * kEighthApart].Put(lane, Turned(turned0, turned1, w2));
    }
  }
}

/// The points of one lane that two stages join: four of them, a quarter of their blocks apart.
VOXTREL_INLINE void SplitIntoFour(Complex x0, Complex x1, Complex x2, Complex x3, Complex w0,
                                  Complex w1, Complex w2, Point* x, std::size_t apart,
                                  std::size_t lane) {
  const Complex sum0 = Sum(x0, x2);
  const Complex sum1 = Sum(x1, x3);
  const Complex turned0 = Turned(x0, x2, w0);
  const Complex turned1 = Turned(x1, x3, w1);
  x[0].Put(lane, Sum(sum0, sum1));
  x[apart].Put(lane, Turned(sum0, sum1, w2));
  x[2 * apart].Put(lane, Sum(turned0, turned1));
  x[3 * apart].Put(lane, Turned(turned0, turned1, w2));
}

/// Stages 1 to 3 for the half that begins with differences.
VOXTREL_INLINE void SplitDifferences(const Rows& rows, const AllTwiddles& w, HalfOfPoints& x) {
  for (std::size_t p = 0; p < kEighth; ++p) {
    VOXTREL_LANES
    for (std::size_t lane = 0; lane < kFrameLanes; ++lane) {
      const auto turned = [&](std::size_t i) {
        return Turned(rows[p + i * kEighth][lane], rows[p + (i + 4) * kEighth][lane],
                      w.stage1.At(p + i * kEighth));
      };
      SplitIntoFour(turned(0), turned(1), turned(2), turned(3), w.stage2.At(p),
                    w.stage2.At(p + kEighth), w.stage3.At(p), &x[p], kEighthApart, lane);
    }
  }
}

/// Two stages of the blocks of 4 * kQuarter points, of which `x` is one.
template <std::size_t kQuarter>
VOXTREL_INLINE void TwoStages(Point* x, const Twiddles<2 * kQuarter>& first,
                              const Twiddles<kQuarter>& second) {
  for (std::size_t p = 0; p < kQuarter; ++p, ++x) {
    const Complex w0 = first.At(p);
    const Complex w1 = first.At(p + kQuarter);
    const Complex w2 = second.At(p);
    VOXTREL_LANES
    for (std::size_t lane = 0; lane < kFrameLanes; ++lane) {
      SplitIntoFour(x[0].At(lane), x[kQuarter].At(lane), x[2 * kQuarter].At(lane),
                    x[3 * kQuarter].At(lane), w0, w1, w2, x, kQuarter, lane);
    }
  }
}

constexpr std::size_t kBlockPoints = 8;
constexpr std::size_t kBlocks = kFrameSamples / kBlockPoints;

/// A block of the last three stages holds every kBlocks-th bin; which one first, bit by bit
/// reversed from the block's number.
constexpr auto kFirstBins = [] {
  std::array<std::uint8_t, kBlocks> bins{};
  for (std::size_t block = 0; block < kBlocks; ++block) {
    for (std::size_t bit = 1, mirrored = kBlocks / 2; bit < kBlocks; bit *= 2, mirrored /= 2) {
      bins[block] = static_cast<std::uint8_t>(bins[block] + ((block & bit) != 0 ? mirrored : 0));
    }
  }
  return bins;
}();

/// Stages 8 to 10 of a block for its first two bins, of which the first is made of sums alone, the
/// second of the differences of stage 8 and sums. All others lie at 256 and above.
VOXTREL_INLINE void Finish(const Point* x, std::size_t bin, const Twiddles<4>& w,
                           Spectra& spectra) {
  if (bin >= kFirstUsedBin) {
    const auto weight = static_cast<std::int32_t>(bin);
    auto& out = spectra[bin - kFirstUsedBin];
    VOXTREL_LANES
    for (std::size_t lane = 0; lane < kFrameLanes; ++lane) {
      const auto even = [&](std::size_t i) { return Sum(x[i].At(lane), x[i + 4].At(lane)); };
      out[lane] = WeighMagnitude(Sum(Sum(even(0), even(2)), Sum(even(1), even(3))), weight);
    }
  }
  bin += kBlocks;
  if (bin < kUsedBins) {
    const auto weight = static_cast<std::int32_t>(bin);
    auto& out = spectra[bin - kFirstUsedBin];
    const Complex w1 = w.At(1);
    const Complex w2 = w.At(2);
    const Complex w3 = w.At(3);
    VOXTREL_LANES
    for (std::size_t lane = 0; lane < kFrameLanes; ++lane) {
      const auto odd = [&](std::size_t i, Complex wi) {
        return Turned(x[i].At(lane), x[i + 4].At(lane), wi);
      };
      const Complex odd0{x[0].real[lane] - x[4].real[lane],
                         x[0].imaginary[lane] - x[4].imaginary[lane]};  // Times 1.
      out[lane] = WeighMagnitude(Sum(Sum(odd0, odd(2, w2)), Sum(odd(1, w1), odd(3, w3))), weight);
    }
  }
}

/// Stages 4 to 10 of one half; `bins` are the first bins of its blocks.
VOXTREL_INLINE void FinishHalf(HalfOfPoints& x, const std::uint8_t* bins, const AllTwiddles& w,
                               Spectra& spectra) {
  for (std::size_t eighth = 0; eighth < 4; ++eighth) {
    Point* points = &x[eighth * kEighthApart];
    TwoStages(points, w.stage4, w.stage5);
    for (std::size_t quarter = 0; quarter < 4; ++quarter) {
      TwoStages(points, w.stage6, w.stage7);
      for (std::size_t block = 0; block < 4; ++block, points += kBlockPoints, ++bins) {
        Finish(points, *bins, w.stage8, spectra);
      }
    }
  }
}

const AllTwiddles& GetTwiddles() {
  static const AllTwiddles kTwiddles;
  return kTwiddles;
}

VOXTREL_VECTOR_CLONES
void Transform(const FrameStarts& frames, const AllTwiddles& w, Spectra& spectra) {
  Rows rows;
  HalfOfPoints x;
  TakeSamples(frames, rows);
  SplitSums(rows, w, x);
  FinishHalf(x, kFirstBins.data(), w, spectra);
  SplitDifferences(rows, w, x);
  FinishHalf(x, kFirstBins.data() + kBlocks / 2, w, spectra);
}

}  // namespace

void ComputeSpectra(const FrameStarts& frames, Spectra& spectra) {
  Transform(frames, GetTwiddles(), spectra);
}

}  // namespace voicemath
