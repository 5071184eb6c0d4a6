#include "benchmarks/voicemath_material.h"

#include "tests/voicemath/twins/processing.h"

namespace benchmarks {

support::Samples Utterance() {
  return support::Mixed(support::Noise(kThreeSeconds, 30, 3), 9000,
                        support::SpeechLike(9000, 9000, 4));
}

twins::Template Word(std::size_t frames, std::uint32_t seed) {
  constexpr std::size_t kHop = 512;
  const auto file = support::WaveFile(support::SpeechLike((frames + 1) * kHop, 9000, seed));
  return twins::ProcessFile(0, file).computed;
}

std::vector<twins::Template> Vocabulary() {
  std::vector<twins::Template> words;
  for (std::uint32_t tag = 0; tag < kTags; ++tag) {
    words.push_back(Word(20 + tag * 29 % 43, tag));
  }
  return words;
}

}  // namespace benchmarks
