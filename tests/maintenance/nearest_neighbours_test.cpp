#include "maintenance/test_results.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

#include "backends/headless/headless_ui.h"
#include "tests/machine/memory_file_system.h"
#include "voicemath/constants.h"

namespace {

using maintenance::Neighbour;
using maintenance::NeighbourTable;

/// The literal twin: every slot is compared with every other one, the one that is searched for
/// first, from a distance that is beyond all.
std::vector<Neighbour> FindNearestLiterally(const voicemath::CVoiceMathematics& mathematics,
                                            std::int32_t count) {
  std::vector<Neighbour> nearest;
  for (std::int32_t i = 0; i < count; ++i) {
    Neighbour best{-2, 100.0F};
    for (std::int32_t other = 0; other < count; ++other) {
      if (other == i) {
        continue;
      }
      const float distance = mathematics.CompareTemplates(i, other);
      if (distance < best.distance) {
        best = {other, distance};
      }
    }
    nearest.push_back(best);
  }
  return nearest;
}

/// The mathematics with templates of whole numbers in its slots.
class FindNearest : public testing::Test {
 protected:
  void Put(std::size_t slot, const std::vector<std::uint32_t>& numbers) {
    auto values = std::make_unique<float[]>(numbers.size());
    std::transform(numbers.begin(), numbers.end(), values.get(),
                   [](std::uint32_t number) { return static_cast<float>(number); });
    const auto frames = static_cast<std::uint16_t>(numbers.size() / voicemath::kBandCount);
    ASSERT_TRUE(m_mathematics.SetTemplate(slot, std::move(values), frames));
  }
  void PutDrawn(std::size_t slot, std::size_t frames, std::uint32_t below) {
    std::vector<std::uint32_t> numbers(frames * voicemath::kBandCount);
    for (std::uint32_t& number : numbers) {
      number = static_cast<std::uint32_t>(m_random()) % below;
    }
    Put(slot, numbers);
  }
  /// What the product finds, which is expected to be what its twin does.
  [[nodiscard]] std::vector<Neighbour> Find(std::int32_t count) const {
    const auto found =
        maintenance::FindNearest(m_mathematics, count).value_or(std::vector<Neighbour>());
    const auto expected = FindNearestLiterally(m_mathematics, count);
    EXPECT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < std::min(found.size(), expected.size()); ++i) {
      EXPECT_EQ(found[i].index, expected[i].index) << i;
      EXPECT_EQ(found[i].distance, expected[i].distance) << i;
    }
    return found;
  }

  machine::MemoryFileSystem m_files;
  headless::HeadlessUi m_ui;
  voicemath::CVoiceMathematics m_mathematics{m_files, m_ui};
  std::mt19937 m_random{7};
};

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

TEST_F(FindNearest, OfTwoEachIsTheOthersNearest) {
  Put(0, {1, 2, 3, 4, 5});
  Put(1, {5, 4, 3, 2, 1});
  const auto nearest = Find(2);
  ASSERT_EQ(nearest.size(), 2U);
  EXPECT_EQ(nearest[0].index, 1);
  EXPECT_EQ(nearest[1].index, 0);
  EXPECT_EQ(nearest[0].distance, nearest[1].distance);
  EXPECT_GT(nearest[0].distance, 0.0F);
}

TEST_F(FindNearest, OfSeveralAtOneDistanceTheLowestIndexWins) {
  for (std::size_t slot = 0; slot < 4; ++slot) {
    Put(slot, {1, 2, 3, 4, 5});
  }
  const auto nearest = Find(4);
  EXPECT_EQ(nearest[0].index, 1);
  EXPECT_EQ(nearest[1].index, 0);
  EXPECT_EQ(nearest[2].index, 0);
  EXPECT_EQ(nearest[3].index, 0);
}

TEST_F(FindNearest, TheOneThatIsSearchedForStandsFirst) {
  // Of two of the same length the first one slides, with its ends held: not symmetric if they
  // are most alike a frame apart.
  Put(0, {1, 0, 0, 0, 0, 50, 0, 0, 0, 0, 9, 0, 0, 0, 0, 2, 0, 0, 0, 0});
  Put(1, {7, 0, 0, 0, 0, 1, 0, 0, 0, 0, 50, 0, 0, 0, 0, 9, 0, 0, 0, 0});
  const auto nearest = Find(2);
  EXPECT_EQ(nearest[0].distance, m_mathematics.CompareTemplates(0, 1));
  EXPECT_EQ(nearest[1].distance, m_mathematics.CompareTemplates(1, 0));
  EXPECT_NE(nearest[0].distance, nearest[1].distance);
}

TEST_F(FindNearest, ATemplateIsNeverItsOwnNeighbour) {
  // Its distance from itself would be the lowest of all.
  for (std::size_t slot = 0; slot < 100; ++slot) {
    PutDrawn(slot, 5, 1000);
  }
  const auto nearest = Find(100);
  for (std::size_t slot = 0; slot < nearest.size(); ++slot) {
    EXPECT_NE(nearest[slot].index, static_cast<std::int32_t>(slot));
    EXPECT_GT(nearest[slot].distance, 0.0F);
  }
}

TEST_F(FindNearest, TheLargestDistanceStillMakesANeighbour) {
  Put(0, {1, 2, 3, 4, 5});
  Put(1, {});
  const auto nearest = Find(2);
  EXPECT_EQ(nearest[0].index, 1);
  EXPECT_EQ(nearest[0].distance, 2.0F);
  EXPECT_EQ(nearest[1].index, 0);
}

TEST_F(FindNearest, OneTemplateHasNoNeighbour) {
  Put(0, {1, 2, 3, 4, 5});
  const auto nearest = Find(1);
  ASSERT_EQ(nearest.size(), 1U);
  EXPECT_EQ(nearest[0].index, -2);
  EXPECT_EQ(nearest[0].distance, 100.0F);
  EXPECT_TRUE(Find(0).empty());
}

TEST_F(FindNearest, EqualsItsTwinOnTemplatesOfManyKinds) {
  for (std::size_t slot = 0; slot < 40; ++slot) {
    // Some of one length, some alike, one without frames.
    PutDrawn(slot, slot == 9 ? 0 : 20 + slot % 7, slot % 5 == 0 ? 3U : 100'000U);
  }
  EXPECT_EQ(Find(40).size(), 40U);
}

TEST(NeighbourTable, IsSortedByDistanceAndKeepsTheOrderOfTagsAtEqualOnes) {
  const auto table = Table({{1, 0.5F}, {2, 0.25F}, {1, 0.25F}, {0, 0.5F}, {0, 0.1F}});
  EXPECT_EQ(TagsOf(table), (std::vector<std::int32_t>{4, 1, 2, 0, 3}));
}

TEST_F(FindNearest, InTheTableTwoCloseOnesComeFirstAndTheFarOneLast) {
  Put(0, {100, 0, 0, 0, 0});
  Put(1, {100, 10, 0, 0, 0});
  Put(2, {0, 100, 0, 0, 0});  // Nearer to the second.
  const auto table = Table(Find(3));
  EXPECT_EQ(TagsOf(table), (std::vector<std::int32_t>{0, 1, 2}));
  EXPECT_EQ(CountConfusions(table, 3), (std::vector<std::int32_t>{1, 2, 0}));
}

TEST(NeighbourTable, NamesTagsByTheirPlaceIfSomeHaveNoTemplate) {
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

TEST(ToScore, TruncatesTowardsZero) {
  EXPECT_EQ(maintenance::ToScore(0.0F), 100);
  EXPECT_EQ(maintenance::ToScore(0.125F), 87);
  EXPECT_EQ(maintenance::ToScore(0.1284F), 87);
  EXPECT_EQ(maintenance::ToScore(0.5F), 50);
  EXPECT_EQ(maintenance::ToScore(0.99F), 1);
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
