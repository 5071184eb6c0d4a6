// How much the comparison works, counted in the stretches of straight code that it runs through:
// the mathematics are built for this test so that each of them calls back.

#include <array>
#include <cstdint>
#include <random>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/signals.h"
#include "voicemath/nearest_neighbours.h"
#include "voicemath/template_distance.h"

namespace {

std::uint64_t stretches = 0;

}  // namespace

extern "C" void __sanitizer_cov_trace_pc() { ++stretches; }

namespace voicemath {
namespace {

constexpr std::size_t kMostFrames = 65535;  // Of a recording too short for a frame.

/// Sounds of some frames each, and a little noise.
PreparedTemplate Prepared(std::size_t frames, std::uint32_t seed) {
  constexpr std::size_t kFramesOfASound = 6;
  std::mt19937 random(seed);
  std::vector<float> values(frames * kBandCount);
  std::array<std::uint32_t, kBandCount> levels{};
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i % (kFramesOfASound * kBandCount) < kBandCount) {
      levels[i % kBandCount] = support::Draw(random, 20000);
    }
    values[i] = static_cast<float>(levels[i % kBandCount] + support::Draw(random, 1000));
  }
  PreparedTemplate prepared;
  EXPECT_TRUE(prepared.Prepare(values));
  return prepared;
}

/// Against it no shift is worse than another.
PreparedTemplate Silence(std::size_t frames) {
  PreparedTemplate prepared;
  EXPECT_TRUE(prepared.Prepare(std::vector<float>(frames * kBandCount)));
  return prepared;
}

/// With a value that no recording gives.
PreparedTemplate PreparedOffGrid(std::size_t frames) {
  std::vector<float> values(frames * kBandCount, 1.0F);
  values.back() = -1.0F;
  PreparedTemplate prepared;
  EXPECT_TRUE(prepared.Prepare(values));
  EXPECT_FALSE(prepared.IsOnGrid());
  return prepared;
}

std::uint64_t WorkOf(const PreparedTemplate& a, const PreparedTemplate& b) {
  stretches = 0;
  EXPECT_GE(TemplateDistance(a, b), 0.0F);
  return stretches;
}

TEST(Work, IsCounted) {
  const PreparedTemplate a = Prepared(20, 1);
  EXPECT_GT(WorkOf(a, Prepared(40, 2)), 100U);
  EXPECT_EQ(WorkOf(a, Prepared(40, 2)), WorkOf(a, Prepared(40, 2)));
}

TEST(Work, SilenceAgainstTheMostFramesGrowsWithTheFramesAndNotWithTheShifts) {
  for (const std::size_t frames : {1U, 20U}) {
    const PreparedTemplate silence = Silence(frames);
    const std::uint64_t hundredth = WorkOf(silence, Prepared(kMostFrames / 100, 2));
    EXPECT_LT(WorkOf(silence, Prepared(kMostFrames, 2)), 110 * hundredth);
  }
}

TEST(Work, SilenceAgainstTheMostFramesOffTheGridDoesSoToo) {
  const PreparedTemplate silence = Silence(1);
  const std::uint64_t hundredth = WorkOf(silence, PreparedOffGrid(kMostFrames / 100));
  EXPECT_LT(WorkOf(silence, PreparedOffGrid(kMostFrames)), 110 * hundredth);
}

TEST(Work, NoFramesAgainstTheMostFramesIsNextToNone) {
  EXPECT_LT(WorkOf(PreparedTemplate(), Prepared(kMostFrames, 1)), 20U);
}

TEST(Work, TwoOfTheMostFramesGrowsWithTheFrames) {
  const std::uint64_t hundredth =
      WorkOf(Prepared(kMostFrames / 100, 1), Prepared(kMostFrames / 100, 2));
  // How soon a sum is given up differs from word to word; with shifts in proportion to the frames
  // it would be ten thousand.
  EXPECT_LT(WorkOf(Prepared(kMostFrames, 1), Prepared(kMostFrames, 2)), 200 * hundredth);
}

/// As many shifts as frames. Each costs what the shorter one is long, and not the longer one.
TEST(Work, AWordAgainstTheMostFramesGrowsWithTheShiftsAndNotWithShiftsTimesFrames) {
  const PreparedTemplate word = Prepared(20, 1);
  const std::uint64_t sixteenth = WorkOf(word, Prepared(kMostFrames / 16, 2));
  EXPECT_LT(WorkOf(word, Prepared(kMostFrames, 2)), 20 * sixteenth);
}

/// Its ends are nearly silent, so that no shift is ruled out by them.
TEST(Work, ARandomTemplateOfTheMostFramesAgainstAWordDoesNotGrowWithShiftsTimesFrames) {
  const auto quietWord = [] {
    std::vector<float> values(20 * kBandCount, 0.0F);
    for (std::size_t i = kBandCount; i < values.size() - kBandCount; ++i) {
      values[i] = static_cast<float>(i % 7);
    }
    PreparedTemplate prepared;
    EXPECT_TRUE(prepared.Prepare(values));
    return prepared;
  };
  const PreparedTemplate word = quietWord();
  const std::uint64_t sixteenth = WorkOf(word, Prepared(kMostFrames / 16, 2));
  EXPECT_LT(WorkOf(word, Prepared(kMostFrames, 2)), 25 * sixteenth);
}

/// Thousands of shifts of thousands of frames each take most of a second.
TEST(Work, OfAPairWithThousandsOfLongShiftsEndsWhenItIsToStop) {
  const PreparedTemplate half = Prepared(kMostFrames / 2, 1);
  const PreparedTemplate longest = Prepared(kMostFrames, 2);
  std::array<std::uint64_t, 3> work{};
  for (int most = 1; most <= 3; ++most) {
    int asked = 0;
    stretches = 0;
    static_cast<void>(TemplateDistance(half, longest, {}, [&] { return ++asked < most; }));
    EXPECT_EQ(asked, most);
    work[static_cast<std::size_t>(most) - 1] = stretches;
  }
  // A hundred questions and more are asked before the end, after equal pieces of work.
  EXPECT_LT(work[2] - work[1], 2 * (work[1] - work[0]));
}

TEST(Work, OfADialogIsFarLessThanThatOfItsComparisonsOneByOne) {
  std::vector<PreparedTemplate> words;
  for (std::uint32_t tag = 0; tag < 30; ++tag) {
    words.push_back(Prepared(20 + tag * 29 % 43, tag));
  }
  std::uint64_t oneByOne = 0;
  for (const PreparedTemplate& a : words) {
    for (const PreparedTemplate& b : words) {
      oneByOne += &a == &b ? 0 : WorkOf(a, b);
    }
  }
  std::vector<Neighbour> nearest(words.size());
  stretches = 0;
  ASSERT_TRUE(FindNearest(words, nearest));
  EXPECT_LT(stretches, oneByOne / 3);
}

}  // namespace
}  // namespace voicemath
