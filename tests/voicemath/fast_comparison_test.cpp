// The fast comparisons of templates against the literal twins, bit for bit, in numbers.

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
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

/// Of how many pairs one is compared: VOXTREL_PAIRS_SKIPPED more than one. An emulated machine
/// without floating-point unit takes minutes for all.
int PairsForOne() {
  const char* const skipped = std::getenv("VOXTREL_PAIRS_SKIPPED");
  return skipped == nullptr ? 1 : 1 + std::atoi(skipped);
}

void ExpectSame(const Template& a, const Template& b) {
  static const int kPairsForOne = PairsForOne();
  static int pairs = 0;
  if (pairs++ % kPairsForOne != 0) {
    return;
  }
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

/// Many shifts at nearly the same distance: which of them is the best is decided beyond the margin.
/// Few shifts are not screened, and more are.
TEST(FastComparison, EqualsItsTwinIfShiftsAreNearlyAlike) {
  std::mt19937 random(22);
  for (int round = 0; round < 2000; ++round) {
    const std::size_t frames = 20 + support::Draw(random, 20);
    const std::size_t more = std::array{5U, 20U}[support::Draw(random, 2)];
    Template a{.frameCount = static_cast<std::uint16_t>(frames + more), .values = {}};
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
/// of them of the same length. Fewer if a transform is emulated.
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
TEST(FastComparison, EqualsItsTwinIfOneValueIsNearlyAll) {
  std::mt19937 random(29);
  const auto draw = [&random] {
    const std::size_t frames =
        1 + support::Draw(random, std::array{12U, 40U}[support::Draw(random, 2)]);
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

/// A template of so many frames whose values lie between `level` and `level` + `spread`.
Template DrawEven(std::mt19937& random, std::size_t frames, float level, float spread) {
  Template word{.frameCount = static_cast<std::uint16_t>(frames), .values = {}};
  for (std::size_t i = 0; i < frames * kBandCount; ++i) {
    word.values.push_back(level + spread * static_cast<float>(support::Draw(random, 1000)));
  }
  return word;
}

TEST(FastComparison, EqualsItsTwinOnTemplatesAThousandFramesLonger) {
  std::mt19937 random(31);
  for (const std::size_t frames : {2U, 3U, 7U, 20U, 61U, 150U}) {
    ExpectSame(DrawWord(random, frames, 1), DrawWord(random, frames + 1000, 1));
    ExpectSame(DrawWord(random, frames + 1013, 1), DrawWord(random, frames, 1));
    ExpectSame(DrawEven(random, frames, 0, 1), DrawEven(random, frames + 1000, 0, 1));
  }
}

/// Only the rounding of the tails decides which of a thousand shifts is the best.
TEST(FastComparison, EqualsItsTwinOnFarLongerTemplatesWithShiftsNearlyAlike) {
  std::mt19937 random(32);
  for (const float spread : {1e-2F, 1e-3F, 1e-4F, 0.0F}) {
    for (const float end : {0.0F, 1.0F, 30.0F}) {
      Template word = DrawEven(random, 12, 1000, spread);
      std::fill_n(word.values.end() - kBandCount, kBandCount, end);
      std::fill_n(word.values.begin(), kBandCount, end);
      ExpectSame(word, DrawEven(random, 1012 + support::Draw(random, 9), 1000, spread));
      ExpectSame(word, DrawEven(random, 1012 + support::Draw(random, 9), 0, spread));
    }
  }
}

/// One value of the word is not zero, and that band of the longer template is even: all shifts are
/// the same but for the rounding of their sums.
TEST(FastComparison, EqualsItsTwinOnFarLongerTemplatesIfRoundingAloneDecides) {
  std::mt19937 random(37);
  for (int round = 0; round < 12; ++round) {
    Template word{.frameCount = 9, .values = std::vector<float>(9 * kBandCount)};
    word.values[4 * kBandCount] = 1.0F;
    Template longer = DrawEven(random, 1009 + support::Draw(random, 20), 0, 1);
    for (std::size_t i = 0; i < longer.values.size(); i += kBandCount) {
      longer.values[i] = 700.0F;
    }
    ExpectSame(word, longer);
  }
}

/// The word itself stands somewhere in the longer one, at its ends as well, more than once.
TEST(FastComparison, EqualsItsTwinIfTheWordStandsInAFarLongerTemplate) {
  std::mt19937 random(33);
  for (const std::size_t at : {0U, 1U, 500U, 1187U, 1188U}) {
    Template word = DrawWord(random, 12, 3);
    std::fill_n(word.values.begin(), kBandCount, 0.0F);
    std::fill_n(word.values.end() - kBandCount, kBandCount, 0.0F);
    Template longer{.frameCount = 1200, .values = std::vector<float>(1200 * kBandCount)};
    for (const std::size_t place : {at, at / 2}) {
      std::ranges::copy(word.values, &longer.values[place * kBandCount]);
    }
    ExpectSame(word, longer);
  }
}

TEST(FastComparison, EqualsItsTwinOnFarLongerTemplatesThatAreOffTheGrid) {
  std::mt19937 random(34);
  for (const float odd : {-1.0F, 1e12F, 1e30F, HUGE_VALF, std::nanf("")}) {
    const Template word = DrawWord(random, 10, 1);
    Template longer = DrawWord(random, 1020, 2);
    ExpectSame(DrawEven(random, 10, 0, 1e-30F), longer);
    longer.values[4000] = odd;
    ExpectSame(word, longer);
    Template other = word;
    other.values.back() = odd;
    ExpectSame(other, longer);
    ExpectSame(other, DrawWord(random, 1020, 2));
  }
}

TEST(FastComparison, EqualsItsTwinOnNamesThatAreOffTheGrid) {
  std::mt19937 random(40);
  for (const float odd : {-1.0F, 1e12F, 1e30F, HUGE_VALF, std::nanf("")}) {
    for (const std::size_t place : {0U, 44U, 79U}) {
      Template word = DrawWord(random, 16, 1);
      word.values[place] = odd;
      for (const std::size_t frames : {11U, 16U, 27U, 28U}) {
        ExpectSame(word, DrawWord(random, frames, 2));
        ExpectSame(DrawWord(random, frames, 2), word);
      }
    }
  }
}

TEST(FastComparison, ReturnsTheBoundOfFarLongerTemplatesToo) {
  std::mt19937 random(35);
  Template word = DrawEven(random, 9, 0, 1);
  std::fill_n(word.values.begin(), kBandCount, 0.0F);
  std::fill_n(word.values.end() - kBandCount, kBandCount, 0.0F);
  const Template longer = DrawEven(random, 1100, 0, 1);
  const float distance = twins::CompareTemplates(word, longer);
  ASSERT_LT(distance, kMaxDistance);
  for (const float bound : {0.0F, distance / 2, distance, std::nextafter(distance, 2.0F)}) {
    EXPECT_EQ(TemplateDistance(Prepared(word), Prepared(longer), DistanceBound(bound)),
              std::min(bound, distance));
  }
}

TEST(FastComparison, ReturnsTheBoundIfTheDistanceIsNotBelowIt) {
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

/// Expects of each word what a search through all others finds.
void ExpectNearestAsRowByRow(const std::vector<Template>& words) {
  std::vector<PreparedTemplate> prepared;
  for (const Template& word : words) {
    prepared.push_back(Prepared(word));
  }
  std::vector<Neighbour> nearest(words.size());
  ASSERT_TRUE(FindNearest(prepared, nearest));
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

TEST(FindNearest, EqualsTheSearchRowByRow) {
  std::mt19937 random(25);
  std::vector<Template> words;
  for (std::uint32_t tag = 0; tag < 60; ++tag) {
    // Some twice, some of the same length, some without frames.
    words.push_back(tag % 9 == 8 ? words[tag / 2] : DrawWord(random, tag * 7 % 23, tag));
  }
  ExpectNearestAsRowByRow(words);
}

/// Of the same length each, so that it matters which of two slides.
TEST(FindNearest, EqualsTheSearchRowByRowOfEqualLengths) {
  std::mt19937 random(38);
  for (const std::size_t frames : {1U, 5U, 16U}) {
    std::vector<Template> words;
    for (std::uint32_t tag = 0; tag < 21; ++tag) {
      words.push_back(DrawWord(random, frames, tag % 4));
    }
    ExpectNearestAsRowByRow(words);
  }
}

/// A word whose frames have nothing in common, so that only the right shift is near.
Template DrawRestless(std::mt19937& random, std::size_t frames) {
  Template word{.frameCount = static_cast<std::uint16_t>(frames), .values = {}};
  for (std::size_t i = 0; i < frames * kBandCount; ++i) {
    word.values.push_back(static_cast<float>(support::Draw(random, 100000)));
  }
  return word;
}

Template SaidAgain(std::mt19937& random, Template word) {
  for (float& value : word.values) {
    value += static_cast<float>(support::Draw(random, 20000));
  }
  return word;
}

void CopyFrames(const Template& from, std::size_t first, std::size_t count, Template& to,
                std::size_t place) {
  std::copy_n(&from.values[first * kBandCount], count * kBandCount, &to.values[place * kBandCount]);
}

/// Repeats one frame in the `count` frames from `place` on, times `factor`.
void HoldFrame(const Template& from, std::size_t frame, Template& to, std::size_t place,
               std::size_t count, float factor) {
  for (std::size_t i = 0; i < count * kBandCount; ++i) {
    to.values[place * kBandCount + i] = factor * from.values[frame * kBandCount + i % kBandCount];
  }
}

/// The nearest one is the longer one that says the same five frames later, so that the shorter one
/// runs out at its end. A third one is nearer than that at any other shift.
TEST(FindNearest, HoldsTheShorterOneAgainstTheLongerOneFromTwoFramesOutToTwoFramesOut) {
  std::mt19937 random(41);
  std::vector<Template> words;
  for (int kind = 0; kind < 6; ++kind) {
    Template longer = DrawRestless(random, 20);
    HoldFrame(longer, 5, longer, 0, 5, 1.0F);
    Template shorter = DrawRestless(random, 17);
    CopyFrames(longer, 5, 15, shorter, 0);
    HoldFrame(longer, 5, shorter, 15, 2, std::sqrt(2.5F));  // The norms are the same.
    words.push_back(SaidAgain(random, longer));
    words.push_back(longer);
    words.push_back(shorter);
  }
  ExpectNearestAsRowByRow(words);
}

/// The nearest one is as long and says the same two frames earlier. If it slid instead, the first
/// two frames would find nothing that is like them. A third one is nearer than that.
TEST(FindNearest, SlidesEachOfTwoOfTheSameLength) {
  std::mt19937 random(42);
  std::vector<Template> words;
  for (int kind = 0; kind < 6; ++kind) {
    Template earlier = DrawRestless(random, 20);
    HoldFrame(earlier, 17, earlier, 18, 2, 1.0F);
    Template later = DrawRestless(random, 20);
    CopyFrames(earlier, 0, 18, later, 2);
    HoldFrame(earlier, 17, later, 0, 2, 1.0F);  // The norms are the same.
    words.push_back(SaidAgain(random, later));
    words.push_back(kind % 2 == 0 ? earlier : later);
    words.push_back(kind % 2 == 0 ? later : earlier);
  }
  ExpectNearestAsRowByRow(words);
}

/// Some are too long to be screened with the others, some have no sound, some no recording gives.
TEST(FindNearest, EqualsTheSearchRowByRowOfLengthsThatAreScreenedAndOthers) {
  std::mt19937 random(39);
  std::vector<Template> words;
  for (std::uint32_t tag = 0; tag < 26; ++tag) {
    words.push_back(
        DrawWord(random, std::array{9U, 24U, 30U, 63U, 64U, 65U, 80U}[tag % 7], tag % 5));
  }
  std::ranges::fill(words[3].values, 0.0F);
  words[8].values[7] = -1e6F;
  words[10].values[20] = std::nanf("");
  std::fill(words[11].values.begin() + kBandCount, words[11].values.end(), 0.0F);
  std::fill(words[12].values.begin(), words[12].values.end() - 1, 0.0F);
  ExpectNearestAsRowByRow(words);
}

/// Words and far longer templates, so that every kind of comparison takes part.
std::vector<PreparedTemplate> ManyKinds() {
  std::mt19937 random(36);
  std::vector<PreparedTemplate> prepared;
  for (std::uint32_t tag = 0; tag < 12; ++tag) {
    prepared.push_back(Prepared(DrawWord(random, tag % 4 == 3 ? 1200 : 20 + tag, tag)));
  }
  return prepared;
}

TEST(FindNearest, ReportsToItsWatchHowMuchIsDoneAndFindsTheSame) {
  const std::vector<PreparedTemplate> prepared = ManyKinds();
  std::vector<Neighbour> expected(prepared.size());
  ASSERT_TRUE(FindNearest(prepared, expected));
  std::vector<double> shares;
  std::vector<Neighbour> nearest(prepared.size());
  EXPECT_TRUE(FindNearest(prepared, nearest, [&](double share) {
    shares.push_back(share);
    return true;
  }));
  ASSERT_FALSE(shares.empty());
  EXPECT_EQ(shares.front(), 0.0);
  EXPECT_TRUE(std::ranges::is_sorted(shares));
  EXPECT_GT(shares.back(), 0.5);
  EXPECT_LE(shares.back(), 1.0);
  for (std::size_t i = 0; i < prepared.size(); ++i) {
    EXPECT_EQ(nearest[i].index, expected[i].index);
    EXPECT_EQ(nearest[i].distance, expected[i].distance);
  }
}

TEST(FindNearest, AsksNoMoreOnceItsWatchSaidStop) {
  const std::vector<PreparedTemplate> prepared = ManyKinds();
  std::vector<Neighbour> nearest(prepared.size());
  for (int most = 1; most < 60; ++most) {
    int asked = 0;
    EXPECT_FALSE(FindNearest(prepared, nearest, [&](double) { return ++asked < most; })) << most;
    EXPECT_EQ(asked, most);
  }
}

TEST(FindNearest, OneTemplateHasNoNeighbour) {
  std::mt19937 random(26);
  std::vector<PreparedTemplate> alone;
  alone.push_back(Prepared(DrawWord(random, 10, 1)));
  std::array<Neighbour, 1> nearest;
  ASSERT_TRUE(FindNearest(alone, nearest));
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
