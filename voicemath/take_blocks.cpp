#include "voicemath/take_blocks.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "voicemath/constants.h"

namespace voicemath {
namespace {

constexpr std::uint32_t kBlocksPerSecond = 100;
constexpr std::uint32_t kLowestRate = 4000;
constexpr std::uint32_t kHighestRate = 192'000;

constexpr float kOffsetHertz = 20;  ///< What is slower is no sound: an offset and its drift.

struct BandEdges {
  float low;
  float high;
};
/// The lowest begins above the hum and the thumps of a room.
constexpr std::array<BandEdges, kTakeBands> kTakeBandEdges{
    {{200, 600}, {600, 1400}, {1400, 2800}, {2800, 4800}}};

constexpr BandEdges kPitchBand{180, 1200};  ///< The first harmonics of every voice.
constexpr float kPitchRate = 3600;          ///< At least so many samples a second show them.
constexpr float kLowestPitch = 48;          ///< A creaking voice.
constexpr float kHighestPitch = 430;
constexpr float kPitchWindow = 0.05F;  ///< Seconds.

/// A filter of second order (Butterworth), which keeps what is above or below an edge. Its factors
/// are those of the bilinear transform (R. Bristow-Johnson, "Cookbook formulae for audio EQ biquad
/// filter coefficients"), in the transposed direct form II.
class Filter {
 public:
  enum class Keeps : std::uint8_t { kAbove, kBelow };

  Filter(Keeps keeps, float edge, float rate) {
    constexpr float kHighestEdge = 0.45F;  // Of the rate; beyond it there is nothing to keep apart.
    const float turn = 2 * std::numbers::pi_v<float> * std::min(edge / rate, kHighestEdge);
    const float alpha = std::sin(turn) / std::numbers::sqrt2_v<float>;
    const float cosine = std::cos(turn);
    const float sign = keeps == Keeps::kAbove ? -1.0F : 1.0F;
    m_outer = (1 - sign * cosine) / 2 / (1 + alpha);
    m_inner = sign * 2 * m_outer;
    m_first = -2 * cosine / (1 + alpha);
    m_second = (1 - alpha) / (1 + alpha);
  }

  [[nodiscard]] float Next(float in) {
    const float out = m_outer * in + m_stateFirst;
    m_stateFirst = m_inner * in - m_first * out + m_stateSecond;
    m_stateSecond = m_outer * in - m_second * out;
    return out;
  }

 private:
  float m_outer;
  float m_inner;
  float m_first;
  float m_second;
  float m_stateFirst = 0;
  float m_stateSecond = 0;
};

/// Twice as steep below as above, since what is below (hum) is far louder than what is above.
class BandFilter {
 public:
  BandFilter(BandEdges edges, float rate)
      : m_low(Filter::Keeps::kAbove, edges.low, rate),
        m_lowAgain(m_low),
        m_high(Filter::Keeps::kBelow, edges.high, rate) {}

  [[nodiscard]] float Next(float in) { return m_high.Next(m_lowAgain.Next(m_low.Next(in))); }

 private:
  Filter m_low;
  Filter m_lowAgain;
  Filter m_high;
};

std::vector<float> WithoutOffset(std::span<const std::int16_t> samples, std::size_t block,
                                 float rate) {
  const float keep = std::exp(-2 * std::numbers::pi_v<float> * kOffsetHertz / rate);
  float offset = 0;
  for (const std::int16_t sample : samples.first(std::min(block, samples.size()))) {
    offset += static_cast<float>(sample) / static_cast<float>(block);
  }
  std::vector<float> sound(samples.size());
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const float sample = samples[i];
    offset = keep * offset + (1 - keep) * sample;
    sound[i] = sample - offset;
  }
  return sound;
}

/// The sound in the pitch band, of which every `step`th sample is left.
std::vector<float> PitchSound(std::span<const float> sound, float rate, std::size_t step) {
  BandFilter filter(kPitchBand, rate);
  Filter again(Filter::Keeps::kBelow, kPitchBand.high, rate);
  std::vector<float> pitch;
  pitch.reserve(sound.size() / step + 1);
  for (std::size_t i = 0; i < sound.size(); ++i) {
    const float filtered = again.Next(filter.Next(sound[i]));
    if (i % step == 0) {
      pitch.push_back(filtered);
    }
  }
  return pitch;
}

void MeasureWhole(std::span<const float> sound, TakeBlock& block) {
  float before = 0;
  for (const float value : sound) {
    block.power += value * value;
    block.slope += value * before;
    block.peak = std::max(block.peak, std::abs(value));
    before = value;
  }
  block.power /= static_cast<float>(sound.size());
  block.slope /= static_cast<float>(sound.size());
}

}  // namespace

TakeBlocks::TakeBlocks(std::span<const std::int16_t> samples, std::uint32_t rate) {
  const bool isUsual = rate >= kLowestRate && rate <= kHighestRate;
  const std::uint32_t used = isUsual ? rate : kSamplesPerSecond;
  const auto hertz = static_cast<float>(used);
  m_length = used / kBlocksPerSecond;
  m_blocks.resize(samples.size() / m_length);
  m_pitchStep = std::max<std::size_t>(1, static_cast<std::size_t>(hertz / kPitchRate));
  const std::vector<float> sound = WithoutOffset(samples, m_length, hertz);
  for (std::size_t band = 0; band < kTakeBands; ++band) {
    BandFilter filter(kTakeBandEdges[band], hertz);
    for (std::size_t i = 0; i < m_blocks.size() * m_length; ++i) {
      const float value = filter.Next(sound[i]);
      m_blocks[i / m_length].bands[band] += value * value / static_cast<float>(m_length);
    }
  }
  for (std::size_t i = 0; i < m_blocks.size(); ++i) {
    MeasureWhole(std::span(sound).subspan(i * m_length, m_length), m_blocks[i]);
  }
  m_pitch = PitchSound(sound, hertz, m_pitchStep);
}

// The largest autocorrelation at a lag that can be a pitch period. It is a share of the energy of
// the whole window: what dies away, as a knock does, has little left to repeat. A parabola through
// the largest value and those next to it separates periods that differ by less than a sample.
Voicing TakeBlocks::VoicingAt(std::size_t block) const {
  const float rate =
      static_cast<float>(m_length * kBlocksPerSecond) / static_cast<float>(m_pitchStep);
  const auto size = std::min(static_cast<std::size_t>(rate * kPitchWindow), m_pitch.size());
  const std::size_t middle = (2 * block + 1) * m_length / 2 / m_pitchStep;
  const std::size_t first = std::min(middle - std::min(middle, size / 2), m_pitch.size() - size);
  const std::span window = std::span(m_pitch).subspan(first, size);
  float energy = 0;
  for (const float value : window) {
    energy += value * value;
  }
  const auto longest = std::min(static_cast<std::size_t>(rate / kLowestPitch), size);
  const auto shortest = std::min(static_cast<std::size_t>(rate / kHighestPitch), longest);
  std::vector<float> likeness(longest);
  for (std::size_t lag = shortest; lag < longest; ++lag) {
    float sum = 0;
    for (std::size_t i = lag; i < size; ++i) {
      sum += window[i] * window[i - lag];
    }
    // A longer lag leaves fewer products, so the sum is scaled as if there were as many.
    likeness[lag] = sum * static_cast<float>(size) / static_cast<float>(size - lag);
  }
  const auto best =
      std::max_element(likeness.begin() + static_cast<std::ptrdiff_t>(shortest), likeness.end());
  if (best == likeness.end() || energy <= 0 || *best <= 0) {
    return {};
  }
  const auto lag = static_cast<std::size_t>(best - likeness.begin());
  if (lag == shortest || lag + 1 == longest) {
    return {.share = *best / energy};
  }
  const float bend = best[-1] - 2 * best[0] + best[1];
  const float shift = bend < 0 ? (best[-1] - best[1]) / (2 * bend) : 0;
  return {.share = *best / energy, .period = static_cast<float>(lag) + shift};
}

}  // namespace voicemath
