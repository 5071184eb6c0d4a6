// The fast comparisons of templates against the literal twins, bit for bit, in numbers.

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/signals.h"
#include "tests/voicemath/sample_recordings.h"
#include "tests/voicemath/twins/features.h"
#include "tests/voicemath/twins/matching.h"
#include "voicemath/band_features.h"
#include "voicemath/nearest_neighbours.h"
#include "voicemath/template_distance.h"

namespace voicemath {
namespace {

using twins::Template;

/// Syllables: values that swell and fade, alike in words with the same `kind`.
Template DrawWord(std::mt19937& random, std::size_t frames, std::uint32_t kind) {
  Template word{.frameCount = static_cast<std::uint16_t>(frames), .values = {}};
  for (std::size_t i = 0; i < frames * kBandCount; ++i) {
    const auto phase = static_cast<std::uint32_t>(i / kBandCount * (3 + i % kBandCount) + 7 * kind);
    const auto level = static_cast<float>(phase % 31 < 16 ? phase % 31 : 31 - phase % 31);
    word.values.push_back(level * level * 4000.0F +
                          static_cast<float>(support::Draw(random, 120000)));
  }
  twins::SubtractMinima(word);
  return word;
}

PreparedTemplate Prepared(const Template& word) {
  PreparedTemplate prepared;
  EXPECT_TRUE(prepared.Prepare(word.values));
  return prepared;
}

void ExpectSame(const Template& a, const Template& b) {
  ASSERT_EQ(std::bit_cast<std::uint32_t>(TemplateDistance(Prepared(a), Prepared(b))),
            std::bit_cast<std::uint32_t>(twins::CompareTemplates(a, b)))
      << a.frameCount << " and " << b.frameCount;
}

TEST(FastComparison, EqualsItsTwinForAllFrameCountsUpTo63) {
  std::mt19937 random(21);
  for (std::uint32_t round = 0; round < 3; ++round) {
    for (std::size_t a = 0; a <= 63; ++a) {
      for (std::size_t b = 0; b <= 63; ++b) {
        ExpectSame(DrawWord(random, a, round), DrawWord(random, b, round * round));
      }
    }
  }
}

/// Many shifts at nearly the same distance: which of them is the best is decided behind the margin.
TEST(FastComparison, EqualsItsTwinWhereShiftsAreNearlyAlike) {
  std::mt19937 random(22);
  for (int round = 0; round < 2000; ++round) {
    const std::size_t frames = 20 + support::Draw(random, 20);
    Template a{.frameCount = static_cast<std::uint16_t>(frames + 5), .values = {}};
    Template b{.frameCount = static_cast<std::uint16_t>(frames), .values = {}};
    // Differences of several steps of the grid, of about one, and of much less than one.
    const float spread = std::array{1e-2F, 1e-3F, 3e-4F, 1e-4F}[support::Draw(random, 4)];
    for (Template* word : {&a, &b}) {
      for (std::size_t i = 0; i < word->frameCount * kBandCount; ++i) {
        word->values.push_back(1000.0F + spread * static_cast<float>(support::Draw(random, 1000)));
      }
    }
    ExpectSame(a, b);
  }
}

/// Templates of spoken names, some said several times: those of like and of unlike words, some
/// of them of the same length. Fewer where a transform is emulated.
std::vector<Template> SpokenWords() {
  const std::vector<support::Samples>& recordings = SampleRecordings();
  std::vector<Template> words;
  for (std::size_t i = 0; i < recordings.size(); i += kFrameLanes == 1 ? 2 : 1) {
    constexpr std::size_t kFirstFrame = 8;
    const std::size_t frames = 20 + i * 5 % 31;
    Template word{.frameCount = static_cast<std::uint16_t>(frames), .values = {}};
    word.values.resize(frames * kBandCount);
    BandFeatures(std::span(recordings[i]).subspan(kFirstFrame * kFrameHop), kFrameHop, word.values);
    twins::SubtractMinima(word);
    words.push_back(std::move(word));
  }
  return words;
}

TEST(FastComparison, EqualsItsTwinOnSpokenWords) {
  const std::vector<Template> words = SpokenWords();
  for (const Template& a : words) {
    for (const Template& b : words) {
      ExpectSame(a, b);
    }
  }
  // The same name said twice, and another one.
  EXPECT_LT(twins::CompareTemplates(words[0], words[1]),
            twins::CompareTemplates(words[0], words.back()));
}

/// Shapes that are nearly or wholly in one value, or in two: a grid value is then the largest there
/// is, and held ends repeat it.
TEST(FastComparison, EqualsItsTwinWhereOneValueIsNearlyAll) {
  std::mt19937 random(29);
  const auto draw = [&random] {
    const std::size_t frames = 1 + support::Draw(random, 12);
    Template word{.frameCount = static_cast<std::uint16_t>(frames),
                  .values = std::vector<float>(frames * kBandCount)};
    const std::uint32_t peaks = 1 + support::Draw(random, 4);
    for (std::uint32_t peak = 0; peak < peaks; ++peak) {
      const float level = std::array{1.0F, 1.0F, 1e-2F, 3e-3F, 1e-5F}[support::Draw(random, 5)];
      const std::size_t frame = support::Draw(random, 2) == 0 ? 0 : support::Draw(random, 12);
      word.values[frame % frames * kBandCount + support::Draw(random, 2)] = level;
    }
    if (support::Draw(random, 4) == 0) {  // The same in all frames.
      for (std::size_t i = kBandCount; i < word.values.size(); ++i) {
        word.values[i] = word.values[i - kBandCount];
      }
    }
    return word;
  };
  for (int round = 0; round < 2000; ++round) {
    ExpectSame(draw(), draw());
  }
}

TEST(FastComparison, EqualsItsTwinOnLongTemplates) {
  std::mt19937 random(23);
  for (const std::size_t frames : {64U, 65U, 127U, 128U, 200U, 333U}) {
    for (const std::size_t other : {1U, 2U, 3U, 20U, 63U, 64U, 150U, 300U}) {
      ExpectSame(DrawWord(random, frames, 1), DrawWord(random, other, 1));
    }
  }
}

TEST(FastComparison, TellsTheBoundWhereTheDistanceIsNotBelowIt) {
  std::mt19937 random(24);
  int below = 0;
  for (int round = 0; round < 500; ++round) {
    const Template a = DrawWord(random, 20 + support::Draw(random, 40), 1);
    const Template b = DrawWord(random, 20 + support::Draw(random, 40), 1);
    const float bound = 0.004F * static_cast<float>(support::Draw(random, 500));
    const float expected = std::min(bound, twins::CompareTemplates(a, b));
    ASSERT_EQ(TemplateDistance(Prepared(a), Prepared(b), DistanceBound(bound)), expected);
    below += expected < bound ? 1 : 0;
  }
  EXPECT_GT(below, 50);
  EXPECT_LT(below, 450);
}

TEST(FindNearest, EqualsTheSearchRowByRow) {
  std::mt19937 random(25);
  std::vector<Template> words;
  for (std::uint32_t tag = 0; tag < 60; ++tag) {
    // Some twice, some of the same length, some without frames.
    words.push_back(tag % 9 == 8 ? words[tag / 2] : DrawWord(random, tag * 7 % 23, tag));
  }
  std::vector<PreparedTemplate> prepared;
  for (const Template& word : words) {
    prepared.push_back(Prepared(word));
  }
  std::vector<Neighbour> nearest(words.size());
  FindNearest(prepared, nearest);
  for (std::size_t i = 0; i < words.size(); ++i) {
    float best = 100.0F;
    std::int32_t index = -1;
    for (std::size_t j = 0; j < words.size(); ++j) {
      const float distance = i == j ? 100.0F : twins::CompareTemplates(words[i], words[j]);
      if (distance < best) {
        best = distance;
        index = static_cast<std::int32_t>(j);
      }
    }
    EXPECT_EQ(nearest[i].index, index) << i;
    EXPECT_EQ(nearest[i].distance, best) << i;
  }
}

TEST(FindNearest, OneTemplateHasNoNeighbour) {
  std::mt19937 random(26);
  std::vector<PreparedTemplate> alone;
  alone.push_back(Prepared(DrawWord(random, 10, 1)));
  std::array<Neighbour, 1> nearest;
  FindNearest(alone, nearest);
  EXPECT_EQ(nearest[0].index, -1);
}

TEST(PreparedTemplate, LeavesTheGridToShapesThatARecordingGives) {
  EXPECT_TRUE(Prepared({.frameCount = 1, .values = {0, 1, 2, 3, 4}}).IsOnGrid());
  EXPECT_TRUE(Prepared({.frameCount = 1, .values = {0, 0, 0, 0, 0}}).IsOnGrid());
  EXPECT_TRUE(Prepared({.frameCount = 1, .values = {0, 0, 0, 1, 100}}).IsOnGrid());
  EXPECT_FALSE(Prepared({.frameCount = 1, .values = {0, 0, 0, 0, 4}}).IsOnGrid());
  EXPECT_FALSE(Prepared({.frameCount = 1, .values = {0, 1, -2, 3, 4}}).IsOnGrid());
  EXPECT_FALSE(Prepared({.frameCount = 1, .values = {HUGE_VALF, 0, 0, 0, 0}}).IsOnGrid());
}

TEST(FastComparison, OneFrameAgainstTheMostFramesEndsSoon) {
  std::mt19937 random(27);
  const PreparedTemplate one = Prepared(DrawWord(random, 1, 1));
  Template longest{.frameCount = 65535, .values = std::vector<float>(65535 * kBandCount)};
  longest.values[77] = -1.0F;  // Not on the grid.
  longest.values[78] = 2.0F;
  EXPECT_GT(TemplateDistance(one, Prepared(longest)), 0.9F);
}

}  // namespace
}  // namespace voicemath
