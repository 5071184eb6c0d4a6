#include "dialer/utterance.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "voicemath/constants.h"
#include "voicemath/take_template.h"

namespace dialer {
namespace {

constexpr std::size_t kMostTakeSamples = std::size_t{kMostSeconds} * voicemath::kSamplesPerSecond;

Take LimitTake(Take take) { return take.first(std::min(take.size(), kMostTakeSamples)); }

/// Returns the part of a take that the applet would keep of a recording.
Take KeepSpeech(Take take) {
  if (take.empty()) {
    return take;
  }
  const voicemath::Segment kept = voicemath::FindKeptPart(take);
  return take.subspan(kept.first, kept.last - kept.first + 1);
}

std::vector<float> LearnedTemplate(Take take) {
  return take.empty() ? std::vector<float>() : voicemath::ComputeLearnedTemplate(take);
}

}  // namespace

Utterance::Utterance(Take take, Steps steps)
    : Utterance(LearnedTemplate(LimitTake(take)),
                steps == Steps::kBoth ? KeepSpeech(LimitTake(take)) : Take()) {}

// The applet has cut the recording of a tag already, and has computed its template.
Utterance::Utterance(const TaughtTag& tag, Steps steps)
    : Utterance(tag.features, steps == Steps::kBoth ? LimitTake(tag.samples) : Take()) {}

Utterance::Utterance(std::span<const float> features, Take kept) : m_features(kept) {
  // Without memory it has no frames, and is as far from everything as it can be.
  static_cast<void>(m_shape.Prepare(features));
}

voicemath::PreparedTemplate Utterance::ShapeOf(Nonsense nonsense) const {
  const std::int32_t frames = m_shape.Frames();
  std::vector<float> values;
  values.reserve(static_cast<std::size_t>(frames) * voicemath::kBandCount);
  for (std::int32_t i = 0; i < frames; ++i) {
    const std::int32_t from =
        nonsense == Nonsense::kBackwards ? frames - 1 - i : (i + frames / 2) % frames;
    const float* const bands = m_shape.ShapeByFrame(from);
    values.insert(values.end(), bands, bands + voicemath::kBandCount);
  }
  voicemath::PreparedTemplate shape;
  static_cast<void>(shape.Prepare(values));
  return shape;
}

}  // namespace dialer
