#include "voicemath/band_features.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "voicemath/fft.h"

// How the transform is made fast and gives the same bits. It has ten stages, as 1,024 points need.
//
// - Several frames are transformed side by side, one in each lane of the vectors. So nothing ever
//   moves from lane to lane, and each lane is the transform of a frame by itself.
// - Each butterfly has the operands, the operations and the roundings that it has in Fft. What no
//   used bin depends on is left out: of the last three stages only the bins below 230 are formed.
// - The samples are real, so the first stages leave out the imaginary parts, which are 0. A product
//   with 0 only decides the sign of a zero, which no magnitude shows. The sums of samples are whole
//   numbers that a float holds exactly, so they may be formed as integers or as floats.
// - The ten stages are done in four passes over the points. After the first pass every eighth of
//   the points goes its own way to the end. Half of the eighths are made at a time, which keeps the
//   work in the processor's nearest memory.
// - Nothing is put into another order at the end: a table says which bin stands at which place.

namespace voicemath {
namespace {

/// One point of all frames.
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
/// A little more than an eighth. Otherwise the points that a butterfly joins would compete for the
/// same places of a cache.
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
    // Samples of 16 bits are moved between lanes with the least effort.
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

/// Does stages 1 to 3 for the half of the points that stage 1 makes by sums.
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

/// Does two stages for the four points that they join in one lane, a quarter of a block apart.
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

/// Does stages 1 to 3 for the half of the points that stage 1 makes by differences.
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

/// Does two stages of one block, which is 4 * kQuarter points from `x` on.
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

/// The first bin of each block of the last three stages. A block holds every kBlocks-th bin, and
/// the first one is the block's number with its bits reversed.
constexpr auto kFirstBins = [] {
  std::array<std::uint8_t, kBlocks> bins{};
  for (std::size_t block = 0; block < kBlocks; ++block) {
    for (std::size_t bit = 1, mirrored = kBlocks / 2; bit < kBlocks; bit *= 2, mirrored /= 2) {
      bins[block] = static_cast<std::uint8_t>(bins[block] + ((block & bit) != 0 ? mirrored : 0));
    }
  }
  return bins;
}();

/// Does stages 8 to 10 of a block for its first two bins. The first is made of sums alone, the
/// second of the differences of stage 8 and of sums. The other six lie at 256 and above, and nobody
/// uses them.
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

/// Does stages 4 to 10 of one half. `bins` are the first bins of its blocks.
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

using Bands = std::array<std::array<float, kFrameLanes>, kBandCount>;

/// Adds up the bins of each band in their order, several frames side by side.
Bands SumBands(const Spectra& spectra) {
  Bands bands{};
  for (std::size_t bin = kFirstUsedBin; bin < kUsedBins; ++bin) {
    for (std::size_t lane = 0; lane < kFrameLanes; ++lane) {
      bands[bin / kBandBins][lane] += spectra[bin - kFirstUsedBin][lane];
    }
  }
  return bands;
}

}  // namespace

void ComputeSpectra(const FrameStarts& frames, Spectra& spectra) {
  Transform(frames, GetTwiddles(), spectra);
}

void BandFeatures(std::span<const std::int16_t> samples, std::size_t hop,
                  std::span<float> features) {
  const std::size_t frames = features.size() / kBandCount;
  Spectra spectra;
  for (std::size_t begin = 0; begin < frames; begin += kFrameLanes) {
    FrameStarts starts;
    for (std::size_t lane = 0; lane < kFrameLanes; ++lane) {
      // The last frame stands in each lane that is left over, too.
      starts[lane] = &samples[std::min(begin + lane, frames - 1) * hop];
    }
    ComputeSpectra(starts, spectra);
    const Bands bands = SumBands(spectra);
    for (std::size_t frame = begin; frame < std::min(begin + kFrameLanes, frames); ++frame) {
      for (std::size_t band = 0; band < kBandCount; ++band) {
        features[frame * kBandCount + band] = bands[band][frame - begin];
      }
    }
  }
}

void SubtractBandMinima(std::span<float> features) {
  for (std::size_t band = 0; band < kBandCount && band < features.size(); ++band) {
    float minimum = features[band];
    for (std::size_t i = band; i < features.size(); i += kBandCount) {
      minimum = std::min(minimum, features[i]);
    }
    for (std::size_t i = band; i < features.size(); i += kBandCount) {
      features[i] -= minimum;
    }
  }
}

}  // namespace voicemath
