#include "tests/support/signals.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <utility>

namespace support {
namespace {

constexpr double kTwoPi = 2.0 * std::numbers::pi;
constexpr double kTransformPoints = 1024.0;

std::int16_t Limited(double value) {
  return static_cast<std::int16_t>(std::lround(std::clamp(value, -32768.0, 32767.0)));
}

void PutText(Bytes& bytes, std::size_t at, const char* text) {
  std::memcpy(bytes.data() + at, text, std::strlen(text));
}

void Put(Bytes& bytes, std::size_t at, std::uint32_t value, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    bytes[at + i] = static_cast<std::byte>((value >> (8 * i)) & 0xFFU);
  }
}

}  // namespace

Samples Constant(std::size_t count, std::int16_t value) { return Samples(count, value); }

Samples Square(std::size_t count, std::size_t halfPeriod, std::int16_t high, std::int16_t low) {
  Samples samples(count);
  for (std::size_t i = 0; i < count; ++i) {
    samples[i] = (i / halfPeriod) % 2 == 0 ? high : low;
  }
  return samples;
}

Samples Impulses(std::size_t count, std::size_t start, std::size_t period, std::int16_t height) {
  Samples samples(count);
  for (std::size_t i = start; i < count; i += period) {
    samples[i] = height;
  }
  return samples;
}

Samples Tone(std::size_t count, double bin, double amplitude) {
  return Sweep(count, bin, bin, amplitude);
}

Samples Sweep(std::size_t count, double fromBin, double toBin, double amplitude) {
  Samples samples(count);
  double cycles = 0.0;
  for (std::size_t i = 0; i < count; ++i) {
    samples[i] = Limited(amplitude * std::sin(kTwoPi * cycles));
    const double part = static_cast<double>(i) / static_cast<double>(count);
    cycles += (fromBin + (toBin - fromBin) * part) / kTransformPoints;
  }
  return samples;
}

Samples Noise(std::size_t count, int amplitude, std::uint32_t seed) {
  std::mt19937 random(seed);
  Samples samples(count);
  for (std::int16_t& sample : samples) {
    const auto drawn =
        static_cast<int>(Draw(random, static_cast<std::uint32_t>(2 * amplitude + 1)));
    sample = static_cast<std::int16_t>(drawn - amplitude);
  }
  return samples;
}

Samples SpeechLike(std::size_t count, double amplitude, std::uint32_t seed) {
  std::mt19937 random(seed);
  const double pitchBin = 9.0 + Draw(random, 12);       // 97 to 215 Hz
  const double syllable = 1400.0 + Draw(random, 1600);  // samples
  const double formantBin = 30.0 + Draw(random, 120);   // 323 to 1,600 Hz
  const double glide = 1.0 + 0.01 * Draw(random, 30);
  const Samples noise = Noise(count, 60, seed + 1);
  Samples samples(count);
  double cycles = 0.0;
  for (std::size_t i = 0; i < count; ++i) {
    const double part = static_cast<double>(i) / static_cast<double>(count);
    const double bin = pitchBin * (1.0 + (glide - 1.0) * part);
    cycles += bin / kTransformPoints;
    double sum = 0.0;
    for (int harmonic = 1; harmonic <= 12; ++harmonic) {
      const double away = (bin * harmonic - formantBin) / 40.0;
      sum += std::sin(kTwoPi * cycles * harmonic) / (1.0 + away * away);
    }
    const double swell = std::sin(std::numbers::pi * static_cast<double>(i) / syllable);
    samples[i] = Limited(amplitude / 4.0 * swell * swell * sum + noise[i]);
  }
  return samples;
}

Samples Extremes(std::size_t count, std::uint32_t seed) {
  std::mt19937 random(seed);
  Samples samples;
  std::int16_t value = -32768;
  while (samples.size() < count) {
    const std::size_t run = 1 + Draw(random, value < 0 ? 220 : 6);
    samples.insert(samples.end(), std::min(run, count - samples.size()), value);
    value = value == 32767 ? std::int16_t{-32768} : std::int16_t{32767};
    if (Draw(random, 8) == 0 && samples.size() < count) {
      samples.push_back(static_cast<std::int16_t>(Draw(random, 65536)));
    }
  }
  return samples;
}

Samples Mixed(Samples base, std::size_t at, const Samples& what) {
  for (std::size_t i = 0; i < what.size() && at + i < base.size(); ++i) {
    const int sum = base[at + i] + what[i];
    base[at + i] = static_cast<std::int16_t>(std::clamp(sum, -32768, 32767));
  }
  return base;
}

std::uint32_t Draw(std::mt19937& random, std::uint32_t below) {
  return static_cast<std::uint32_t>(random()) % below;
}

Bytes BytesOf(std::span<const std::int16_t> samples) {
  Bytes bytes(samples.size() * 2);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    Put(bytes, 2 * i, static_cast<std::uint16_t>(samples[i]), 2);
  }
  return bytes;
}

Bytes WaveFile(std::span<const std::int16_t> samples) {
  return WaveFileWithDataAt(36, static_cast<std::uint32_t>(samples.size() * 2), BytesOf(samples));
}

Bytes WaveFileWithDataAt(std::size_t idOffset, std::uint32_t dataBytes, const Bytes& content) {
  Bytes bytes(std::max<std::size_t>(idOffset + 8, 36));
  PutText(bytes, 0, "RIFF");
  Put(bytes, 4, static_cast<std::uint32_t>(idOffset + 8 + content.size()), 4);
  PutText(bytes, 8, "WAVEfmt ");
  Put(bytes, 16, 16, 4);
  Put(bytes, 20, 1, 2);
  Put(bytes, 22, 1, 2);
  Put(bytes, 24, 11025, 4);
  Put(bytes, 28, 22050, 4);
  Put(bytes, 32, 2, 2);
  Put(bytes, 34, 16, 2);
  PutText(bytes, idOffset, "data");
  Put(bytes, idOffset + 4, dataBytes, 4);
  // A chunk whose samples begin inside the fixed fields shares those bytes with them.
  const std::size_t shared = bytes.size() - (idOffset + 8);
  if (content.size() > shared) {
    bytes.insert(bytes.end(), content.begin() + static_cast<std::ptrdiff_t>(shared), content.end());
  }
  return bytes;
}

}  // namespace support
