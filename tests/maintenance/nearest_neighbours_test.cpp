#include "maintenance/nearest_neighbours.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

#include "platform/headless/headless_ui.h"
#include "platform/headless/memory_file_system.h"
#include "voicemath/constants.h"

namespace {

using maintenance::Neighbour;
using maintenance::NeighbourTable;

/// Distances from a table, the row of the one that is searched for.
template <std::size_t kCount>
maintenance::DistanceOf From(const std::array<std::array<float, kCount>, kCount>& table) {
  return [&table](std::int32_t a, std::int32_t b) {
    return table[static_cast<std::size_t>(a)][static_cast<std::size_t>(b)];
  };
}

std::vector<std::int32_t> Counting(std::size_t count) {
  std::vector<std::int32_t> tags(count);
  std::iota(tags.begin(), tags.end(), 0);
  return tags;
}

NeighbourTable Table(const std::vector<Neighbour>& nearest) {
  return ToTable(nearest, Counting(nearest.size()));
}

std::vector<std::int32_t> TagsOf(const NeighbourTable& table) {
  std::vector<std::int32_t> tags;
  for (const auto& [distance, row] : table) {
    tags.push_back(row.tag);
  }
  return tags;
}

TEST(FindNearest, OfTwoEachIsTheOthersNearest) {
  const std::array<std::array<float, 2>, 2> distances{{{0, 0.25F}, {0.25F, 0}}};
  const auto nearest = maintenance::FindNearest(2, From(distances));
  ASSERT_EQ(nearest.size(), 2U);
  EXPECT_EQ(nearest[0].index, 1);
  EXPECT_EQ(nearest[1].index, 0);
  EXPECT_EQ(nearest[0].distance, 0.25F);
  EXPECT_EQ(nearest[1].distance, 0.25F);
}

TEST(FindNearest, OfSeveralAtOneDistanceTheLowestIndexWins) {
  const std::array<std::array<float, 4>, 4> distances{
      {{0, .5F, .5F, .5F}, {.5F, 0, .5F, .5F}, {.5F, .5F, 0, .5F}, {.5F, .5F, .5F, 0}}};
  const auto nearest = maintenance::FindNearest(4, From(distances));
  EXPECT_EQ(nearest[0].index, 1);
  EXPECT_EQ(nearest[1].index, 0);
  EXPECT_EQ(nearest[2].index, 0);
  EXPECT_EQ(nearest[3].index, 0);
}

TEST(FindNearest, TheOneThatIsSearchedForStandsFirst) {
  // Not symmetric, as with templates of the same length.
  const std::array<std::array<float, 2>, 2> distances{{{0, 0.5F}, {0.75F, 0}}};
  const auto nearest = maintenance::FindNearest(2, From(distances));
  EXPECT_EQ(nearest[0].distance, 0.5F);
  EXPECT_EQ(nearest[1].distance, 0.75F);
}

TEST(FindNearest, NeverComparesATemplateWithItself) {
  std::int32_t calls = 0;
  const auto nearest = maintenance::FindNearest(100, [&](std::int32_t a, std::int32_t b) {
    ++calls;
    EXPECT_NE(a, b);
    return 1.0F;
  });
  EXPECT_EQ(nearest.size(), 100U);
  EXPECT_EQ(calls, 9900);
}

TEST(FindNearest, BeyondTheStartOfTheSearchThereIsNoNeighbour) {
  for (const float distance : {100.0F, 250.0F, std::numeric_limits<float>::quiet_NaN()}) {
    const auto nearest =
        maintenance::FindNearest(2, [&](std::int32_t, std::int32_t) { return distance; });
    EXPECT_EQ(nearest[0].index, -2);
    EXPECT_EQ(nearest[0].distance, 100.0F);
  }
  const auto below = maintenance::FindNearest(
      2, [](std::int32_t, std::int32_t) { return std::nextafter(100.0F, 0.0F); });
  EXPECT_EQ(below[0].index, 1);
}

TEST(FindNearest, OneTemplateHasNoNeighbour) {
  const auto nearest = maintenance::FindNearest(1, [](std::int32_t, std::int32_t) { return 0.0F; });
  ASSERT_EQ(nearest.size(), 1U);
  EXPECT_EQ(nearest[0].index, -2);
  EXPECT_TRUE(maintenance::FindNearest(0, maintenance::DistanceOf()).empty());
}

TEST(NeighbourTable, IsSortedByDistanceAndKeepsTheOrderOfTagsAtEqualOnes) {
  const auto table = Table({{1, 0.5F}, {2, 0.25F}, {1, 0.25F}, {0, 0.5F}, {0, 0.1F}});
  EXPECT_EQ(TagsOf(table), (std::vector<std::int32_t>{4, 1, 2, 0, 3}));
}

TEST(NeighbourTable, TwoCloseOnesComeFirstAndTheFarOneLast) {
  // P and Q are close, R is far and nearer to Q.
  const std::array<std::array<float, 3>, 3> distances{
      {{0, .1F, .9F}, {.1F, 0, .8F}, {.9F, .8F, 0}}};
  const auto table = Table(maintenance::FindNearest(3, From(distances)));
  EXPECT_EQ(TagsOf(table), (std::vector<std::int32_t>{0, 1, 2}));
  EXPECT_EQ(CountConfusions(table, 3), (std::vector<std::int32_t>{1, 2, 0}));
}

TEST(NeighbourTable, NamesTagsByTheirPlaceWhereSomeHaveNoTemplate) {
  const std::vector<Neighbour> nearest{{1, 0.5F}, {0, 0.5F}};
  const std::vector<std::int32_t> tags{3, 7};
  const auto table = maintenance::ToTable(nearest, tags);
  EXPECT_EQ(TagsOf(table), tags);
  EXPECT_EQ(table.begin()->second.neighbour, 7);
  const auto confusions = CountConfusions(table, 8);
  EXPECT_EQ(confusions[3], 1);
  EXPECT_EQ(confusions[7], 1);
  EXPECT_EQ(confusions[0], 0);
}

TEST(NeighbourTable, NoNeighbourIsNobodysConfusion) {
  const auto table = Table({{Neighbour::kNone, 100.0F}, {Neighbour::kNone, 100.0F}});
  EXPECT_EQ(CountConfusions(table, 2), (std::vector<std::int32_t>{0, 0}));
}

TEST(FindNearest, OverTheMathematicsFindsTheSameAsOneByOne) {
  headless::MemoryFileSystem files;
  headless::HeadlessUi ui;
  voicemath::CVoiceMathematics mathematics(files, ui);
  std::mt19937 random(7);
  constexpr std::int32_t kTags = 40;
  for (std::size_t slot = 0; slot < kTags; ++slot) {
    // Some of one length, some alike, one without frames.
    const auto frames = static_cast<std::uint16_t>(slot == 9 ? 0 : 20 + slot % 7);
    auto values = std::make_unique<float[]>(std::size_t{frames} * voicemath::kBandCount);
    for (std::size_t i = 0; i < std::size_t{frames} * voicemath::kBandCount; ++i) {
      values[i] = static_cast<float>(random() % (slot % 5 == 0 ? 3U : 100'000U));
    }
    ASSERT_TRUE(mathematics.SetTemplate(slot, std::move(values), frames));
  }
  const auto found = maintenance::FindNearest(mathematics, kTags);
  const auto expected = maintenance::FindNearest(
      kTags, [&](std::int32_t a, std::int32_t b) { return mathematics.CompareTemplates(a, b); });
  ASSERT_EQ(found.size(), expected.size());
  for (std::size_t i = 0; i < found.size(); ++i) {
    EXPECT_EQ(found[i].index, expected[i].index) << i;
    EXPECT_EQ(found[i].distance, expected[i].distance) << i;
  }
}

TEST(ToScore, TruncatesTowardsZero) {
  EXPECT_EQ(maintenance::ToScore(0.0F), 100);
  EXPECT_EQ(maintenance::ToScore(0.125F), 87);
  EXPECT_EQ(maintenance::ToScore(0.1284F), 87);
  EXPECT_EQ(maintenance::ToScore(0.5F), 50);
  EXPECT_EQ(maintenance::ToScore(0.9911F), 0);
}

TEST(ToScore, IsNeverNegative) {
  for (const float distance : {1.0F, std::nextafter(1.0F, 2.0F), 1.005F, 1.5F, 2.0F, 100.0F}) {
    EXPECT_EQ(maintenance::ToScore(distance), 0) << distance;
  }
}

TEST(ToScore, RoundsToAFloatAfterEachStep) {
  // In wider arithmetic each of them would be one less.
  EXPECT_EQ(maintenance::ToScore(0.09F), 91);
  EXPECT_EQ(maintenance::ToScore(0.3F), 70);
  EXPECT_EQ(maintenance::ToScore(0.93F), 7);
}

}  // namespace
