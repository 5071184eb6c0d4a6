#include "audio/samples.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "audio/wave_header.h"
#include "platform/file_system.h"

namespace audio {
namespace {

constexpr std::size_t kSampleBytes = kRecordingBits / 8;

}  // namespace

platform::WaveFormat RecordingFormat() { return MonoPcm(kRecordingBits, kRecordingRate); }

std::vector<std::byte> ToBytes(std::span<const std::int16_t> samples) {
  std::vector<std::byte> bytes(samples.size() * kSampleBytes);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    platform::StoreLittleEndian16(std::span(bytes).subspan(i * kSampleBytes).first<kSampleBytes>(),
                                  static_cast<std::uint16_t>(samples[i]));
  }
  return bytes;
}

std::vector<std::int16_t> ToSamples(std::span<const std::byte> bytes) {
  std::vector<std::int16_t> samples(bytes.size() / kSampleBytes);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    samples[i] = static_cast<std::int16_t>(
        platform::LoadLittleEndian16(bytes.subspan(i * kSampleBytes).first<kSampleBytes>()));
  }
  return samples;
}

std::vector<std::byte> ToWaveFile(std::span<const std::int16_t> samples) {
  const std::vector<std::byte> data = ToBytes(samples);
  const auto header = MakeWaveHeader(RecordingFormat(), static_cast<std::uint32_t>(data.size()));
  std::vector<std::byte> file(header.begin(), header.end());
  file.insert(file.end(), data.begin(), data.end());
  return file;
}

std::vector<std::int16_t> MakeTone() {
  // High enough for the loudspeaker of a telephone. A fifth of full scale, and a fifth of a second.
  constexpr double kFrequency = 880;
  constexpr double kAmplitude = 6500;
  constexpr std::size_t kLength = kRecordingRate / 5;
  constexpr std::size_t kEdge = kRecordingRate / 50;
  std::vector<std::int16_t> tone(kLength);
  for (std::size_t i = 0; i < kLength; ++i) {
    const auto fromEdge = static_cast<double>(std::min({i, kLength - i, kEdge}));
    const double fade = (1 - std::cos(std::numbers::pi * fromEdge / kEdge)) / 2;
    const double angle =
        2 * std::numbers::pi * kFrequency * static_cast<double>(i) / kRecordingRate;
    tone[i] = static_cast<std::int16_t>(kAmplitude * fade * std::sin(angle));
  }
  return tone;
}

}  // namespace audio
