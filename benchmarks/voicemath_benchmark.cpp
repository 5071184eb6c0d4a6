// The speech mathematics beside its literal twin, in one run.

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <vector>

#include "tests/support/signals.h"
#include "tests/voicemath/twins/fft.h"
#include "tests/voicemath/twins/matching.h"
#include "tests/voicemath/twins/processing.h"
#include "tests/voicemath/twins/speech_bounds.h"
#include "voicemath/band_features.h"
#include "voicemath/endpoint_detector.h"
#include "voicemath/fft.h"
#include "voicemath/template_distance.h"

namespace {

constexpr std::size_t kThreeSeconds = 33075;

std::vector<std::int16_t> Utterance(std::uint32_t seed) {
  return support::Mixed(support::Noise(kThreeSeconds, 30, seed), 9000,
                        support::SpeechLike(9000, 9000, seed + 1));
}

void Transform(benchmark::State& state) {
  const auto samples = Utterance(1);
  std::array<float, 1024> real{};
  std::array<float, 1024> imaginary{};
  for (auto _ : state) {
    std::copy_n(samples.begin() + 9000, 1024, real.begin());
    imaginary.fill(0.0F);
    voicemath::Fft(real, imaginary, 1);
    benchmark::DoNotOptimize(real);
  }
}
BENCHMARK(Transform);

void TransformTwin(benchmark::State& state) {
  const auto samples = Utterance(1);
  std::vector<float> real(1024);
  std::vector<float> imaginary(1024);
  for (auto _ : state) {
    std::copy_n(samples.begin() + 9000, 1024, real.begin());
    std::fill(imaginary.begin(), imaginary.end(), 0.0F);
    twins::Fft(real, imaginary, 1);
    benchmark::DoNotOptimize(real.data());
  }
}
BENCHMARK(TransformTwin);

std::vector<std::int16_t> Envelope(const std::vector<std::int16_t>& samples) {
  std::vector<std::int16_t> envelope(samples.size() / voicemath::kBlockStep);
  std::vector<std::int16_t> padded = samples;
  padded.resize(samples.size() + voicemath::kBlockSamples);
  for (std::size_t block = 0; block < envelope.size(); ++block) {
    envelope[block] = voicemath::BlockEnvelope(
        std::span(padded).subspan(block * voicemath::kBlockStep).first<voicemath::kBlockSamples>());
  }
  return envelope;
}

void EndpointDetection(benchmark::State& state) {
  const auto samples = Utterance(2);
  for (auto _ : state) {
    auto envelope = Envelope(samples);
    benchmark::DoNotOptimize(voicemath::LocateSpeech(envelope, kThreeSeconds));
  }
}
BENCHMARK(EndpointDetection);

void EndpointDetectionTwin(benchmark::State& state) {
  twins::ByteFile file(support::WaveFile(Utterance(2)));
  for (auto _ : state) {
    twins::Wave wave = twins::CheckHeader(file);
    twins::DetectSpeechBounds(file, wave);
    benchmark::DoNotOptimize(wave);
  }
}
BENCHMARK(EndpointDetectionTwin);

void UtteranceOfThreeSeconds(benchmark::State& state) {
  const auto samples = Utterance(3);
  for (auto _ : state) {
    auto envelope = Envelope(samples);
    benchmark::DoNotOptimize(voicemath::LocateSpeech(envelope, kThreeSeconds));
    std::array<float, 63 * voicemath::kBandCount> features{};
    for (std::size_t frame = 0; frame < 63; ++frame) {
      voicemath::BandFeatures(std::span(samples)
                                  .subspan(frame * voicemath::kFrameHop)
                                  .first<voicemath::kFrameSamples>(),
                              std::span(features)
                                  .subspan(frame * voicemath::kBandCount)
                                  .first<voicemath::kBandCount>());
    }
    voicemath::SubtractBandMinima(features);
    benchmark::DoNotOptimize(features);
  }
}
BENCHMARK(UtteranceOfThreeSeconds)->Unit(benchmark::kMicrosecond);

void UtteranceOfThreeSecondsTwin(benchmark::State& state) {
  twins::ByteFile file(support::WaveFile(Utterance(3)));
  for (auto _ : state) {
    twins::Wave wave = twins::CheckHeader(file);
    const twins::Wave whole = wave;
    twins::DetectSpeechBounds(file, wave);
    benchmark::DoNotOptimize(wave);
    benchmark::DoNotOptimize(twins::ComputeTemplate(file, whole));
  }
}
BENCHMARK(UtteranceOfThreeSecondsTwin)->Unit(benchmark::kMicrosecond);

/// Two templates of the length that spoken names have.
std::array<twins::Template, 2> Templates() {
  std::array<twins::Template, 2> templates;
  for (std::uint32_t i = 0; i < 2; ++i) {
    twins::ByteFile file(support::WaveFile(support::SpeechLike(17000 + 5000 * i, 9000, i)));
    templates[i] = twins::ComputeTemplate(file, twins::CheckHeader(file));
  }
  return templates;
}

void Comparison(benchmark::State& state) {
  const auto templates = Templates();
  for (auto _ : state) {
    benchmark::DoNotOptimize(voicemath::TemplateDistance(templates[0].values, templates[1].values));
  }
}
BENCHMARK(Comparison);

void ComparisonTwin(benchmark::State& state) {
  const auto templates = Templates();
  for (auto _ : state) {
    benchmark::DoNotOptimize(twins::CompareTemplates(templates[0], templates[1]));
  }
}
BENCHMARK(ComparisonTwin);

}  // namespace
