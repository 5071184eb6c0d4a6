#include "benchmarks/voicemath_jobs.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <utility>

#include "benchmarks/voicemath_material.h"
#include "tests/voicemath/twins/matching.h"
#include "tests/voicemath/twins/speech_bounds.h"
#include "voicemath/band_features.h"
#include "voicemath/endpoint_detector.h"
#include "voicemath/nearest_neighbours.h"
#include "voicemath/template_distance.h"

namespace benchmarks {
namespace {

using voicemath::PreparedTemplate;

void Prepare(const std::vector<twins::Template>& words, std::vector<PreparedTemplate>& prepared) {
  prepared.resize(words.size());
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (!prepared[i].Prepare(words[i].values)) {
      std::abort();
    }
  }
}

std::vector<PreparedTemplate> Prepare(const std::vector<twins::Template>& words) {
  std::vector<PreparedTemplate> prepared;
  Prepare(words, prepared);
  return prepared;
}

/// What the product's way of a job works on, kept by the job.
template <typename Material>
std::shared_ptr<Material> Shared(Material material) {
  return std::make_shared<Material>(std::move(material));
}

std::vector<Way> Comparison() {
  const auto words = Shared(std::vector{Word(42, 1), Word(52, 2)});
  const auto prepared = Shared(Prepare(*words));
  return {{"product",
           [prepared] { Keep(voicemath::TemplateDistance((*prepared)[0], (*prepared)[1])); }},
          {"literal", [words] { Keep(twins::CompareTemplates((*words)[0], (*words)[1])); }}};
}

/// Compares each name with the next one, the last with the first.
std::vector<Way> ComparisonOf(const std::vector<twins::Template>& names) {
  const auto words = Shared(names);
  const auto prepared = Shared(Prepare(*words));
  const auto each = [](const auto& all, auto compare) {
    for (std::size_t i = 0; i < kTags; ++i) {
      Keep(compare(all[i], all[(i + 1) % kTags]));
    }
  };
  return {{"product",
           [prepared, each] {
             each(*prepared, [](const PreparedTemplate& a, const PreparedTemplate& b) {
               return voicemath::TemplateDistance(a, b);
             });
           }},
          {"literal", [words, each] { each(*words, twins::CompareTemplates); }}};
}

std::vector<Way> ComparisonOfFullNames() { return ComparisonOf(FullNames()); }
std::vector<Way> ComparisonOfFirstNames() { return ComparisonOf(FirstNames()); }

std::vector<Way> PreparationOf(const std::vector<twins::Template>& names) {
  const auto words = Shared(names);
  const auto slots = Shared(std::vector<PreparedTemplate>());
  return {{"product", [words, slots] {
             Prepare(*words, *slots);
             Keep(*slots);
           }}};
}

std::vector<Way> Preparation() { return PreparationOf({kTags, Word(42, 1)}); }
std::vector<Way> PreparationOfFullNames() { return PreparationOf(FullNames()); }

void MeasureEnvelopeLiterally(const support::Samples& samples, std::span<std::int16_t> envelope) {
  for (std::size_t block = 0; block < envelope.size(); ++block) {
    envelope[block] = twins::BlockEnvelope(
        std::span(samples).subspan(block * voicemath::kBlockStep, voicemath::kBlockSamples));
  }
}

// Buffers of both ways are kept from one time to the next: what is measured is the mathematics.

void FindEnds(const support::Samples& samples) {
  static std::vector<std::int16_t> envelope(samples.size() / voicemath::kBlockStep - 1);
  voicemath::MeasureEnvelope(samples, envelope);
  Keep(voicemath::LocateSpeech(envelope, kThreeSeconds));
}

void FindEndsLiterally(const support::Samples& samples) {
  static std::vector<std::int16_t> envelope(samples.size() / voicemath::kBlockStep - 1);
  MeasureEnvelopeLiterally(samples, envelope);
  Keep(twins::LocateSpeech(envelope, 2 * kThreeSeconds));
}

std::vector<Way> EndpointDetection() {
  const auto samples = Shared(Utterance());
  return {{"product", [samples] { FindEnds(*samples); }},
          {"literal", [samples] { FindEndsLiterally(*samples); }}};
}

/// Frames of the utterance, as many as are transformed side by side.
template <typename OfOne>
void ForSomeFrames(const support::Samples& samples, OfOne transform) {
  for (std::size_t frame = 0; frame < kFramesTogether; ++frame) {
    transform(std::span(samples).subspan(kLoudSample + frame * voicemath::kFrameHop,
                                         voicemath::kFrameSamples));
  }
}

void TransformFrames(const support::Samples& samples) {
  voicemath::FrameStarts starts;
  std::size_t lane = 0;
  ForSomeFrames(samples, [&](auto frame) { starts[lane++] = frame.data(); });
  voicemath::Spectra spectra;
  voicemath::ComputeSpectra(starts, spectra);
  Keep(spectra);
}

std::vector<Way> Transform() {
  const auto samples = Shared(Utterance());
  return {{"product", [samples] { TransformFrames(*samples); }},
          {"literal", [samples] {
             static twins::FrameBuffers buffers;
             ForSomeFrames(*samples,
                           [](auto frame) { Keep(twins::FrameMagnitudes(frame, buffers)); });
           }}};
}

void MakeTemplate(const support::Samples& samples) {
  FindEnds(samples);
  std::array<float, kFrames * voicemath::kBandCount> features;
  voicemath::BandFeatures(samples, voicemath::kFrameHop, features);
  voicemath::SubtractBandMinima(features);
  Keep(features);
}

void MakeTemplateLiterally(const support::Samples& samples) {
  static twins::FrameBuffers buffers;
  static twins::Template made{.frameCount = kFrames, .values = {}};
  FindEndsLiterally(samples);
  made.values.clear();
  for (std::size_t frame = 0; frame < kFrames; ++frame) {
    const auto bands = twins::FrameBands(
        std::span(samples).subspan(frame * voicemath::kFrameHop, voicemath::kFrameSamples),
        buffers);
    made.values.insert(made.values.end(), bands.begin(), bands.end());
  }
  twins::SubtractMinima(made);
  Keep(made);
}

std::vector<Way> WholeUtterance() {
  const auto samples = Shared(Utterance());
  return {{"product", [samples] { MakeTemplate(*samples); }},
          {"literal", [samples] { MakeTemplateLiterally(*samples); }}};
}

float SearchEveryRow(const std::vector<twins::Template>& words) {
  float sum = 0.0F;
  for (std::size_t i = 0; i < words.size(); ++i) {
    float best = 100.0F;
    for (std::size_t j = 0; j < words.size(); ++j) {
      if (j != i) {
        best = std::min(best, twins::CompareTemplates(words[i], words[j]));
      }
    }
    sum += best;
  }
  return sum;
}

void FindEachNearest(const std::vector<PreparedTemplate>& prepared) {
  std::array<voicemath::Neighbour, kTags> nearest;
  static_cast<void>(voicemath::FindNearest(prepared, nearest));
  Keep(nearest);
}

std::vector<Way> TestDialog() {
  const auto words = Shared(Vocabulary());
  const auto prepared = Shared(Prepare(*words));
  return {{"product", [prepared] { FindEachNearest(*prepared); }},
          {"literal", [words] { Keep(SearchEveryRow(*words)); }}};
}

/// The preparation is in it.
std::vector<Way> TestDialogOfFullNames() {
  const auto words = Shared(FullNames());
  const auto slots = Shared(std::vector<PreparedTemplate>());
  return {{"product",
           [words, slots] {
             Prepare(*words, *slots);
             FindEachNearest(*slots);
           }},
          {"literal", [words] { Keep(SearchEveryRow(*words)); }}};
}

}  // namespace

std::vector<Job> AllJobs() {
  return {{"transform", Transform, kFramesTogether},
          {"endpoint detection", EndpointDetection},
          {"utterance", WholeUtterance},
          {"preparation", Preparation, kTags},
          {"preparation, full names", PreparationOfFullNames, kTags},
          {"comparison", Comparison},
          {"comparison, full names", ComparisonOfFullNames, kTags},
          {"comparison, first names", ComparisonOfFirstNames, kTags},
          {"test dialog", TestDialog},
          {"test dialog, full names", TestDialogOfFullNames}};
}

}  // namespace benchmarks
