#include "voicemath/spectrum.h"

#include <cmath>
#include <cstddef>

#include "voicemath/twiddles.h"
#include "voicemath/vector_clones.h"

// The ten stages of the 1,024-point transform in four passes. Each butterfly has the operands, the
// operations and the roundings that it has in Fft; only what no used bin depends on is left out.
//
// The passes do not work in place. With a distance d between the points of a stage's butterflies,
// point p of block q stands at p * (512 / d) + q before it, and a stage puts the sums of block q
// into block q, the differences into block q + 512 / d. So the innermost loops run over blocks,
// which share their twiddle, the blocks come out in the order of their bins, and there is nothing
// to reverse at the end.
//
// The samples are real, and so is block 0 to the end: its values are sums of samples, which as
// whole numbers are exact like the floats that hold them. A factor of an imaginary part of 0 only
// decides the signs of zeros, which no magnitude tells.

namespace voicemath {
namespace {

template <std::size_t kCount>
struct Points {
  std::array<float, kCount> real;
  std::array<float, kCount> imaginary;

  [[nodiscard]] VOXTREL_INLINE Complex At(std::size_t i) const { return {real[i], imaginary[i]}; }
  VOXTREL_INLINE void Put(std::size_t i, Complex value) {
    real[i] = value.real;
    imaginary[i] = value.imaginary;
  }
};
using Frame = Points<kFrameSamples>;

VOXTREL_INLINE Complex Sum(Complex a, Complex b) {
  return {a.real + b.real, a.imaginary + b.imaginary};
}
VOXTREL_INLINE Complex Turned(Complex a, Complex b, Complex w) {
  const Complex difference{a.real - b.real, a.imaginary - b.imaginary};
  const float rr = difference.real * w.real;
  const float ii = difference.imaginary * w.imaginary;
  const float ri = difference.real * w.imaginary;
  const float ir = difference.imaginary * w.real;
  return {rr - ii, ri + ir};
}
VOXTREL_INLINE Complex Turned(std::int32_t a, std::int32_t b, Complex w) {
  const auto difference = static_cast<float>(a - b);
  return {difference * w.real, difference * w.imaginary};
}

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

/// Stages 1 to 3, from the samples to eight blocks.
VOXTREL_INLINE void SplitIntoEight(const std::int16_t* samples, const AllTwiddles& w, Frame& out) {
  constexpr std::size_t kEighth = kFrameSamples / 8;
  for (std::size_t p = 0; p < kEighth; ++p) {
    std::int32_t x[8];
    for (std::size_t i = 0; i < 8; ++i) {
      x[i] = samples[p + i * kEighth];
    }
    std::int32_t sums[4];
    Complex turned[4];
    for (std::size_t i = 0; i < 4; ++i) {
      sums[i] = x[i] + x[i + 4];
      turned[i] = Turned(x[i], x[i + 4], w.stage1.At(p + i * kEighth));
    }
    const Complex w0 = w.stage2.At(p);
    const Complex w1 = w.stage2.At(p + kEighth);
    const std::int32_t real0 = sums[0] + sums[2];
    const std::int32_t real1 = sums[1] + sums[3];
    const Complex block2[] = {Turned(sums[0], sums[2], w0), Turned(sums[1], sums[3], w1)};
    const Complex block1[] = {Sum(turned[0], turned[2]), Sum(turned[1], turned[3])};
    const Complex block3[] = {Turned(turned[0], turned[2], w0), Turned(turned[1], turned[3], w1)};

    const Complex last = w.stage3.At(p);
    out.Put(8 * p, {static_cast<float>(real0 + real1), 0.0F});
    out.Put(8 * p + 1, Sum(block1[0], block1[1]));
    out.Put(8 * p + 2, Sum(block2[0], block2[1]));
    out.Put(8 * p + 3, Sum(block3[0], block3[1]));
    out.Put(8 * p + 4, Turned(real0, real1, last));
    out.Put(8 * p + 5, Turned(block1[0], block1[1], last));
    out.Put(8 * p + 6, Turned(block2[0], block2[1], last));
    out.Put(8 * p + 7, Turned(block3[0], block3[1], last));
  }
}

/// Two stages, from kBlocks blocks to four times as many.
template <std::size_t kBlocks>
VOXTREL_INLINE void SplitEachIntoFour(const Frame& in, const Twiddles<512 / kBlocks>& first,
                                      const Twiddles<256 / kBlocks>& second, Frame& out) {
  constexpr std::size_t kQuarter = kFrameSamples / 4;
  for (std::size_t p = 0; p < kQuarter / kBlocks; ++p) {
    const Complex w0 = first.At(p);
    const Complex w1 = first.At(p + kQuarter / kBlocks);
    const Complex w2 = second.At(p);
    for (std::size_t q = 0; q < kBlocks; ++q) {
      const std::size_t at = p * kBlocks + q;
      const Complex x0 = in.At(at);
      const Complex x1 = in.At(at + kQuarter);
      const Complex x2 = in.At(at + 2 * kQuarter);
      const Complex x3 = in.At(at + 3 * kQuarter);
      const Complex sum0 = Sum(x0, x2);
      const Complex sum1 = Sum(x1, x3);
      const Complex turned0 = Turned(x0, x2, w0);
      const Complex turned1 = Turned(x1, x3, w1);
      const std::size_t to = 4 * p * kBlocks + q;
      out.Put(to, Sum(sum0, sum1));
      out.Put(to + kBlocks, Sum(turned0, turned1));
      out.Put(to + 2 * kBlocks, Turned(sum0, sum1, w2));
      out.Put(to + 3 * kBlocks, Turned(turned0, turned1, w2));
    }
  }
}

/// Stages 8 to 10 for the bins below kUsedBins, which are no sums of differences but those of stage
/// 8: the others would lie at 256 and above.
VOXTREL_INLINE void Finish(const Frame& in, const Twiddles<4>& w, Points<256>& out) {
  constexpr std::size_t kBlocks = 128;
  const Complex w1 = w.At(1);
  const Complex w2 = w.At(2);
  const Complex w3 = w.At(3);
  for (std::size_t q = 0; q < kBlocks; ++q) {
    const auto at = [&](std::size_t p) { return in.At(p * kBlocks + q); };
    const Complex even0 = Sum(at(0), at(4));
    const Complex even1 = Sum(at(1), at(5));
    const Complex even2 = Sum(at(2), at(6));
    const Complex even3 = Sum(at(3), at(7));
    out.Put(q, Sum(Sum(even0, even2), Sum(even1, even3)));
  }
  constexpr std::size_t kVector = 8;  // Whole vectors: a few bins too many are less work.
  for (std::size_t q = 0; q < (kUsedBins - kBlocks + kVector - 1) / kVector * kVector; ++q) {
    const auto at = [&](std::size_t p) { return in.At(p * kBlocks + q); };
    const Complex x0 = at(0);
    const Complex x4 = at(4);
    const Complex odd0{x0.real - x4.real, x0.imaginary - x4.imaginary};  // Times 1.
    const Complex odd1 = Turned(at(1), at(5), w1);
    const Complex odd2 = Turned(at(2), at(6), w2);
    const Complex odd3 = Turned(at(3), at(7), w3);
    out.Put(q + kBlocks, Sum(Sum(odd0, odd2), Sum(odd1, odd3)));
  }
}

VOXTREL_INLINE void WeighMagnitudes(const Points<256>& bins, Spectrum& spectrum) {
  for (std::size_t i = 0; i < spectrum.size(); ++i) {
    const std::size_t bin = kFirstUsedBin + i;
    const double re = bins.real[bin];
    const double im = bins.imaginary[bin];
    const auto weight = static_cast<double>(static_cast<std::int32_t>(bin));
    spectrum[i] = static_cast<float>(std::sqrt(re * re + im * im) * weight);
  }
}

const AllTwiddles& GetTwiddles() {
  static const AllTwiddles kTwiddles;
  return kTwiddles;
}

VOXTREL_VECTOR_CLONES
void Transform(const std::int16_t* samples, const AllTwiddles& w, Spectrum& spectrum) {
  Frame a;
  Frame b;
  SplitIntoEight(samples, w, a);
  SplitEachIntoFour<8>(a, w.stage4, w.stage5, b);
  SplitEachIntoFour<32>(b, w.stage6, w.stage7, a);
  Points<256> bins;
  Finish(a, w.stage8, bins);
  WeighMagnitudes(bins, spectrum);
}

}  // namespace

void ComputeSpectrum(std::span<const std::int16_t, kFrameSamples> frame, Spectrum& spectrum) {
  Transform(frame.data(), GetTwiddles(), spectrum);
}

}  // namespace voicemath
