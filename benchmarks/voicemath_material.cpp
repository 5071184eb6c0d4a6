#include "benchmarks/voicemath_material.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>

#include "voicemath/take_template.h"

namespace benchmarks {
namespace {

constexpr std::size_t kBands = 5;

/// Returns the templates that the names of a file get if they are learned in a room that is not
/// quite silent. Ends the program if the file is not whole.
std::vector<twins::Template> Learn(const char* path) {
  std::vector<twins::Template> names;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path, "rb"), std::fclose);
  support::Samples spoken(kThreeSeconds);
  while (file && names.size() < kTags &&
         std::fread(spoken.data(), sizeof spoken[0], spoken.size(), file.get()) == spoken.size()) {
    const auto seed = static_cast<std::uint32_t>(names.size());
    const std::vector<float> values = voicemath::ComputeLearnedTemplate(
        support::Mixed(support::Noise(kThreeSeconds, 90, seed), 0, spoken));
    names.push_back(
        {.frameCount = static_cast<std::uint16_t>(values.size() / kBands), .values = values});
  }
  if (names.size() != kTags) {
    std::fprintf(stderr, "%s: not %zu names\n", path, kTags);
    std::exit(1);
  }
  return names;
}

}  // namespace

support::Samples Utterance() {
  support::Samples word = support::Tone(9000, 40.3, 8000.0);
  for (std::size_t i = 0; i < word.size(); ++i) {
    const auto syllable = static_cast<int>(i % 3000);
    word[i] = static_cast<std::int16_t>(word[i] * (1500 - std::abs(syllable - 1500)) / 1500);
  }
  return support::Mixed(support::Noise(kThreeSeconds, 90, 3), 9000, word);
}

twins::Template Word(std::size_t frames, std::uint32_t seed) {
  std::mt19937 random(seed);
  twins::Template word{.frameCount = static_cast<std::uint16_t>(frames), .values = {}};
  word.values.resize(frames * kBands);
  const std::uint32_t syllables = 1 + support::Draw(random, 4);
  for (std::uint32_t syllable = 0; syllable < syllables; ++syllable) {
    const auto middle = static_cast<int>(support::Draw(random, word.frameCount));
    const int reach = 4 + static_cast<int>(support::Draw(random, 8));
    for (std::size_t band = 0; band < kBands; ++band) {
      const float level = 1000.0F * static_cast<float>(support::Draw(random, 20000));
      for (std::size_t frame = 0; frame < frames; ++frame) {
        const int rise = reach - std::abs(static_cast<int>(frame) - middle);
        word.values[frame * kBands + band] +=
            level * static_cast<float>(std::max(rise, 0)) / static_cast<float>(reach);
      }
    }
  }
  for (float& value : word.values) {
    value *= 0.8F + 0.0004F * static_cast<float>(support::Draw(random, 1000));
    value += static_cast<float>(support::Draw(random, 600000));
  }
  twins::SubtractMinima(word);
  return word;
}

std::vector<twins::Template> Vocabulary() {
  std::vector<twins::Template> words;
  for (std::uint32_t tag = 0; tag < kTags; ++tag) {
    words.push_back(Word(20 + tag * 29 % 43, tag));
  }
  return words;
}

const std::vector<twins::Template>& FullNames() {
  static const std::vector<twins::Template> names = Learn(VOXTREL_FULL_NAMES);
  return names;
}

const std::vector<twins::Template>& FirstNames() {
  static const std::vector<twins::Template> names = Learn(VOXTREL_FIRST_NAMES);
  return names;
}

}  // namespace benchmarks
