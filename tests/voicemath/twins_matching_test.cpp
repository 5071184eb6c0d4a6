#include <array>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "tests/voicemath/twins/matching.h"

namespace {

using testing::Each;
using twins::AcceptanceDistances;
using twins::CompareTemplates;
using twins::Template;

/// Frames that have only their first band.
Template Frames(const std::vector<float>& firstBand) {
  Template frames{.frameCount = static_cast<std::uint16_t>(firstBand.size()), .values = {}};
  for (const float value : firstBand) {
    frames.values.insert(frames.values.end(), {value, 0.0F, 0.0F, 0.0F, 0.0F});
  }
  return frames;
}

Template OneFrame(const std::array<float, 5>& bands) {
  return {.frameCount = 1, .values = {bands.begin(), bands.end()}};
}

const Template kNoFrames;

TEST(MatchingTwin, IdenticalTemplatesHaveNoDistance) {
  const Template word = Frames({3.0F, 0.25F, 17.0F, 0.0F, 5.5F});
  EXPECT_EQ(CompareTemplates(word, word), 0.0F);
}

TEST(MatchingTwin, LoudnessDoesNotCount) {
  EXPECT_EQ(CompareTemplates(Frames({1.0F, 2.0F, 3.0F}), Frames({4.0F, 8.0F, 12.0F})), 0.0F);
}

TEST(MatchingTwin, TwoTemplatesWithoutFramesHaveNoDistance) {
  EXPECT_EQ(CompareTemplates(kNoFrames, kNoFrames), 0.0F);
}

TEST(MatchingTwin, NoFramesAgainstSomeIsFarthest) {
  EXPECT_EQ(CompareTemplates(kNoFrames, Frames({1.0F})), 2.0F);
  EXPECT_EQ(CompareTemplates(Frames({0.0F, 0.0F}), kNoFrames), 2.0F);
}

TEST(MatchingTwin, SilentTemplateKeepsItsZeros) {
  EXPECT_EQ(CompareTemplates(Frames({0.0F, 0.0F}), Frames({0.0F, 0.0F})), 0.0F);
  EXPECT_EQ(CompareTemplates(Frames({0.0F}), Frames({7.0F})), 1.0F);
}

TEST(MatchingTwin, OneFrameIsHeldAlongAllOfTheLongerOne) {
  // 1 against 1/2, four times.
  EXPECT_EQ(CompareTemplates(Frames({5.0F}), Frames({3.0F, 3.0F, 3.0F, 3.0F})), 1.0F);
  EXPECT_EQ(CompareTemplates(Frames({3.0F, 3.0F, 3.0F, 3.0F}), Frames({5.0F})), 1.0F);
}

TEST(MatchingTwin, DistanceIsNeverAboveTwo) {
  // 1 against 1/3, nine times, is 4.
  EXPECT_EQ(CompareTemplates(Frames({1.0F}), Frames(std::vector<float>(9, 1.0F))), 2.0F);
}

TEST(MatchingTwin, ShapesWithNothingInCommonAreExactlyTwoApart) {
  EXPECT_EQ(CompareTemplates(OneFrame({4, 0, 0, 0, 0}), OneFrame({0, 0, 0, 8, 0})), 2.0F);
}

TEST(MatchingTwin, LeadOfTwoFramesIsFoundButNotOfThree) {
  EXPECT_EQ(CompareTemplates(Frames({0.0F, 0.0F, 1.0F, 0.0F, 2.0F, 0.0F}),
                             Frames({1.0F, 0.0F, 2.0F, 0.0F, 0.0F, 0.0F})),
            0.0F);
  EXPECT_GT(CompareTemplates(Frames({0.0F, 0.0F, 0.0F, 1.0F, 0.0F, 2.0F, 0.0F}),
                             Frames({1.0F, 0.0F, 2.0F, 0.0F, 0.0F, 0.0F, 0.0F})),
            0.0F);
}

TEST(MatchingTwin, LagOfTwoFramesBeyondTheOverlapIsFoundButNotOfThree) {
  const Template word = Frames({0.0F, 1.0F, 0.0F, 0.0F, 0.0F});
  EXPECT_EQ(CompareTemplates(word, Frames({0.0F, 0.0F, 0.0F, 1.0F, 0.0F})), 0.0F);
  EXPECT_GT(CompareTemplates(word, Frames({0.0F, 0.0F, 0.0F, 0.0F, 1.0F})), 0.0F);
  // One frame longer, one frame more.
  EXPECT_EQ(CompareTemplates(word, Frames({0.0F, 0.0F, 0.0F, 0.0F, 1.0F, 0.0F})), 0.0F);
  EXPECT_GT(CompareTemplates(word, Frames({0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 1.0F})), 0.0F);
}

TEST(MatchingTwin, FirstOneCountsAsTheShorterOfTwoEquallyLong) {
  const Template onset = Frames({1.0F, 0.0F});
  const Template even = Frames({1.0F, 1.0F});
  // The onset held at shift -1: twice (1 - 0.7071) squared.
  EXPECT_NEAR(CompareTemplates(onset, even), 0.171573F, 1e-6F);
  // The even one is the same at every shift: (1 - 0.7071) squared and 0.7071 squared.
  EXPECT_NEAR(CompareTemplates(even, onset), 0.585786F, 1e-6F);
}

TEST(MatchingTwin, OrderDoesNotMatterIfOneIsShorter) {
  const Template shorter = Frames({1.0F, 0.5F});
  const Template longer = Frames({1.0F, 0.0F, 2.0F});
  EXPECT_EQ(CompareTemplates(shorter, longer), CompareTemplates(longer, shorter));
}

TEST(AcceptanceTwin, NoneOrOneStoredLeavesTwo) {
  EXPECT_THAT(AcceptanceDistances({}, 0), Each(2.0F));
  EXPECT_THAT(AcceptanceDistances({}, -5), Each(2.0F));
  EXPECT_THAT(AcceptanceDistances({Frames({1.0F})}, 1), Each(2.0F));
}

TEST(AcceptanceTwin, OfTwoStoredEachGetsHalfItsOwnDistance) {
  const auto distances = AcceptanceDistances({Frames({1.0F, 0.0F}), Frames({1.0F, 1.0F})}, 2);
  EXPECT_NEAR(distances[0], 0.085786F, 1e-6F);
  EXPECT_NEAR(distances[1], 0.292893F, 1e-6F);
  EXPECT_EQ(distances[2], 2.0F);
}

TEST(AcceptanceTwin, NearestCountsAndTheShareShrinksWithTheNumber) {
  const Template silent = Frames({0.0F});  // One away from each of the others.
  const auto distances = AcceptanceDistances(
      {silent, OneFrame({1, 0, 0, 0, 0}), OneFrame({0, 1, 0, 0, 0}), OneFrame({0, 0, 3, 0, 0})}, 4);
  EXPECT_EQ(distances[0], 0.75F);
  EXPECT_EQ(distances[1], 0.75F);
  EXPECT_EQ(distances[3], 0.75F);
  EXPECT_EQ(distances[4], 2.0F);
}

TEST(AcceptanceTwin, CountBeyondTheSlotsOnlyDivides) {
  std::vector<Template> stored(100, OneFrame({0, 1, 0, 0, 0}));
  stored[0] = OneFrame({1, 0, 0, 0, 0});
  const auto distances = AcceptanceDistances(stored, 150);
  EXPECT_EQ(distances[0], 2.0F - 2.0F / 150.0F);
  EXPECT_EQ(distances[99], 0.0F);
}

}  // namespace
