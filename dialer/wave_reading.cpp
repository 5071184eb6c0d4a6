#include "dialer/wave_reading.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <numeric>
#include <optional>
#include <string_view>

#include "platform/file_system.h"
#include "voicemath/constants.h"

// Wave files of other programs, for a user who tries the recognizer on recordings. The applet
// itself writes one form only.
namespace dialer {
namespace {

using platform::Failure;
using platform::LoadLittleEndian16;
using platform::LoadLittleEndian32;
using platform::Result;

using Bytes = std::span<const std::byte>;

constexpr std::uint16_t kPcm = 1;
constexpr std::uint16_t kFloats = 3;
constexpr std::uint16_t kExtensible = 0xFFFE;  ///< The true format stands further on.

constexpr std::uint32_t kHighestRate = 384000;
constexpr std::uint16_t kMostChannels = 16;

struct WaveFormat {
  std::uint16_t tag = 0;
  std::uint16_t channels = 0;
  std::uint32_t rate = 0;
  std::uint16_t bits = 0;

  [[nodiscard]] std::size_t SampleBytes() const { return bits / 8U; }
  [[nodiscard]] std::size_t BlockBytes() const { return SampleBytes() * channels; }
};

bool HasName(Bytes bytes, std::string_view name) {
  return bytes.size() >= name.size() && std::memcmp(bytes.data(), name.data(), name.size()) == 0;
}

Result<WaveFormat, WaveError> ParseFormat(Bytes body) {
  constexpr std::size_t kFormatBytes = 16;
  constexpr std::size_t kSubFormat = 24;
  if (body.size() < kFormatBytes) {
    return Failure(WaveError::kNoWave);
  }
  WaveFormat format{
      LoadLittleEndian16(body.subspan<0, 2>()), LoadLittleEndian16(body.subspan<2, 2>()),
      LoadLittleEndian32(body.subspan<4, 4>()), LoadLittleEndian16(body.subspan<14, 2>())};
  if (format.tag == kExtensible && body.size() >= kSubFormat + 2) {
    format.tag = LoadLittleEndian16(body.subspan<kSubFormat, 2>());
  }
  if (format.channels == 0 || format.channels > kMostChannels || format.rate == 0 ||
      format.rate > kHighestRate) {
    return Failure(WaveError::kNoWave);
  }
  const bool isPcm = format.tag == kPcm && (format.bits == 8 || format.bits == 16 ||
                                            format.bits == 24 || format.bits == 32);
  if (!isPcm && !(format.tag == kFloats && (format.bits == 32 || format.bits == 64))) {
    return Failure(WaveError::kOtherFormat);
  }
  return format;
}

struct WaveParts {
  WaveFormat format;
  Bytes samples;
  bool isWhole;
};

/// Walks the chunks up to the samples. Only they may be shorter than they claim.
Result<WaveParts, WaveError> FindParts(Bytes file) {
  constexpr std::size_t kRiffBytes = 12;
  constexpr std::size_t kChunkBytes = 8;
  // Who writes into a pipe cannot know the length, and claims about as much as the field holds,
  // with or without its sign.
  constexpr std::size_t kUnknownLength = 0x7FFF0000;
  if (file.size() < kRiffBytes || !HasName(file, "RIFF") || !HasName(file.subspan(8), "WAVE")) {
    return Failure(WaveError::kNoWave);
  }
  std::optional<WaveFormat> format;
  Bytes rest = file.subspan(kRiffBytes);
  while (rest.size() >= kChunkBytes) {
    const std::size_t claimed = LoadLittleEndian32(rest.subspan<4, 4>());
    const bool isData = HasName(rest, "data");
    const bool isFormat = HasName(rest, "fmt ");
    rest = rest.subspan(kChunkBytes);
    const Bytes body = rest.first(std::min(claimed, rest.size()));
    if (isData && format) {
      return WaveParts{*format, body, claimed == body.size() || claimed >= kUnknownLength};
    }
    if (isFormat) {
      const auto parsed = ParseFormat(body);
      if (!parsed) {
        return Failure(parsed.error());
      }
      format = *parsed;
    }
    // A chunk of odd size is followed by a byte that belongs to none.
    rest = rest.subspan(std::min(claimed + claimed % 2, rest.size()));
  }
  return Failure(WaveError::kNoWave);
}

/// Returns one sample in steps of 16 bits.
float DecodeSample(const WaveFormat& format, const std::byte* at) {
  const auto byte = [at](std::size_t i) { return std::to_integer<std::uint32_t>(at[i]); };
  if (format.bits == 8) {
    return (static_cast<float>(byte(0)) - 128.0F) * 256.0F;
  }
  // The bytes there are become the upper ones of 64 bits.
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < format.SampleBytes(); ++i) {
    number = number >> 8U | std::uint64_t{byte(i)} << 56U;
  }
  if (format.tag == kFloats) {
    const double value = format.bits == 64
                             ? std::bit_cast<double>(number)
                             : std::bit_cast<float>(static_cast<std::uint32_t>(number >> 32U));
    constexpr double kMost = 1e6;  // Far above full scale. Sums of such samples stay numbers.
    return std::isfinite(value) ? static_cast<float>(std::clamp(value, -kMost, kMost) * 32768) : 0;
  }
  return static_cast<float>(static_cast<std::int32_t>(number >> 32U)) / 65536.0F;
}

std::vector<float> Mix(const WaveParts& parts, std::uint32_t mostSeconds) {
  const std::size_t block = parts.format.BlockBytes();
  const std::size_t count = std::min<std::size_t>(parts.samples.size() / block,
                                                  std::size_t{parts.format.rate} * mostSeconds);
  std::vector<float> mixed(count);
  for (std::size_t i = 0; i < count; ++i) {
    float sum = 0;
    for (std::size_t channel = 0; channel < parts.format.channels; ++channel) {
      sum += DecodeSample(parts.format,
                          parts.samples.data() + i * block + channel * parts.format.SampleBytes());
    }
    mixed[i] = sum / static_cast<float>(parts.format.channels);
  }
  return mixed;
}

std::int16_t ToSample(float value) {
  constexpr float kLowest = std::numeric_limits<std::int16_t>::min();
  constexpr float kHighest = std::numeric_limits<std::int16_t>::max();
  return static_cast<std::int16_t>(std::lround(std::clamp(value, kLowest, kHighest)));
}

/// Band-limited interpolation: each new sample is the sum of the old ones around its moment,
/// weighed by a sinc under a Hann window (J. O. Smith, "Digital Audio Resampling"). The sinc ends
/// where the lower of both rates has no more room, so nothing is folded back.
class Resampler {
 public:
  explicit Resampler(std::uint32_t from)
      : m_from(from / std::gcd(from, voicemath::kSamplesPerSecond)),
        m_to(voicemath::kSamplesPerSecond / std::gcd(from, voicemath::kSamplesPerSecond)) {
    constexpr double kRoom = 0.95;
    constexpr double kZeroCrossings = 24;
    m_cutoff = kRoom * std::min(1.0, static_cast<double>(m_to) / static_cast<double>(m_from));
    m_reach = static_cast<std::int64_t>(std::ceil(kZeroCrossings / m_cutoff));
  }

  /// The moments of the new samples between the old ones repeat themselves, so that each set of
  /// weights is made once.
  [[nodiscard]] std::vector<std::int16_t> Run(std::span<const float> samples) const {
    const std::uint64_t count = samples.size() * m_to / m_from;
    std::vector<std::int16_t> resampled(static_cast<std::size_t>(count));
    for (std::uint64_t phase = 0; phase < std::min(m_to, count); ++phase) {
      const std::vector<float> weights =
          Weights(static_cast<double>(phase * m_from % m_to) / static_cast<double>(m_to));
      for (std::uint64_t i = phase; i < count; i += m_to) {
        resampled[static_cast<std::size_t>(i)] = ToSample(Sum(samples, weights, i * m_from / m_to));
      }
    }
    return resampled;
  }

 private:
  [[nodiscard]] std::vector<float> Weights(double fraction) const {
    constexpr double kPi = std::numbers::pi;
    std::vector<float> weights;
    for (std::int64_t k = -m_reach; k <= m_reach + 1; ++k) {
      const double at = static_cast<double>(k) - fraction;
      const double angle = kPi * at * m_cutoff;
      const double sinc = at == 0 ? 1 : std::sin(angle) / angle;
      const double place = at / static_cast<double>(m_reach + 1);
      const double window = std::abs(place) < 1 ? 0.5 + 0.5 * std::cos(kPi * place) : 0;
      weights.push_back(static_cast<float>(m_cutoff * sinc * window));
    }
    return weights;
  }

  [[nodiscard]] float Sum(std::span<const float> samples, std::span<const float> weights,
                          std::uint64_t middle) const {
    const std::int64_t first = static_cast<std::int64_t>(middle) - m_reach;
    const auto begin = static_cast<std::size_t>(std::max<std::int64_t>(-first, 0));
    const auto end =
        std::min(weights.size(),
                 static_cast<std::size_t>(static_cast<std::int64_t>(samples.size()) - first));
    float sum = 0;
    for (std::size_t k = begin; k < end; ++k) {
      sum += weights[k] * samples[static_cast<std::size_t>(first + static_cast<std::int64_t>(k))];
    }
    return sum;
  }

  std::uint64_t m_from;
  std::uint64_t m_to;
  double m_cutoff = 1;
  std::int64_t m_reach = 0;
};

}  // namespace

std::vector<std::int16_t> ToSamples(std::span<const float> sound) {
  std::vector<std::int16_t> samples(sound.size());
  std::ranges::transform(sound, samples.begin(), ToSample);
  return samples;
}

Result<WaveSound, WaveError> ReadSound(Bytes file, std::uint32_t mostSeconds) {
  return FindParts(file).map([&](const WaveParts& parts) {
    const WaveFormat& format = parts.format;
    return WaveSound{.samples = Mix(parts, mostSeconds),
                     .rate = format.rate,
                     .isRecorders = format.tag == kPcm && format.channels == 1 &&
                                    format.bits == 16 &&
                                    format.rate == voicemath::kSamplesPerSecond,
                     .isWhole = parts.isWhole};
  });
}

Result<std::vector<std::int16_t>, WaveError> DecodeWave(Bytes file, std::uint32_t mostSeconds) {
  return ReadSound(file, mostSeconds).map([](const WaveSound& sound) {
    return sound.rate == voicemath::kSamplesPerSecond ? ToSamples(sound.samples)
                                                      : Resampler(sound.rate).Run(sound.samples);
  });
}

}  // namespace dialer
