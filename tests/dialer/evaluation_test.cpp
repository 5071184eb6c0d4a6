#include "dialer/evaluation.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/dialer/taught_store.h"

namespace {

using dialer::Count;
using dialer::Evaluation;
using dialer::EvaluationFigures;
using dialer::ParseTakeName;
using dialer::SpokenLabels;
using dialer::ToShare;

TEST(ParseTakeName, ANameHasALabelASpeakerAndANumber) {
  const auto name = ParseTakeName("Zoë_Müller_012.wav");
  ASSERT_TRUE(name);
  EXPECT_EQ(name->label, "Zoë");
  EXPECT_EQ(name->speaker, "Müller");
  EXPECT_EQ(name->take, 12U);
}

TEST(ParseTakeName, ALabelMayHaveUnderscores) {
  const auto name = ParseTakeName("Anna_Maria_x_0.wav");
  ASSERT_TRUE(name);
  EXPECT_EQ(name->label, "Anna_Maria");
  EXPECT_EQ(name->speaker, "x");
}

TEST(ParseTakeName, TheEndingMayHaveCapitals) {
  const auto name = ParseTakeName("one_x_3.WAV");
  ASSERT_TRUE(name);
  EXPECT_EQ(name->take, 3U);
}

TEST(ParseTakeName, OtherNamesAreNone) {
  for (const char* name :
       {"", ".wav", "a_b.wav", "_b_1.wav", "a__1.wav", "a_b_.wav", "a_b_x.wav", "a_b_-1.wav",
        "a_b_1x.wav", "a_b_1.mp3", "a_b_99999999999.wav", "__1.wav"}) {
    EXPECT_FALSE(ParseTakeName(name)) << name;
  }
}

/// Newcombe (1998), "Two-sided confidence intervals for the single proportion", table I, method 3.
TEST(ToShare, GivesTheScoreInterval) {
  EXPECT_NEAR(ToShare({81, 263}).low, 0.2553, 0.0001);
  EXPECT_NEAR(ToShare({81, 263}).high, 0.3662, 0.0001);
  EXPECT_NEAR(ToShare({15, 148}).low, 0.0624, 0.0001);
  EXPECT_NEAR(ToShare({15, 148}).high, 0.1605, 0.0001);
  EXPECT_NEAR(ToShare({0, 20}).high, 0.1611, 0.0001);
  EXPECT_EQ(ToShare({0, 20}).low, 0);
  EXPECT_NEAR(ToShare({1, 29}).low, 0.0061, 0.0001);
  EXPECT_NEAR(ToShare({1, 29}).high, 0.1718, 0.0001);
}

TEST(ToShare, OfNothingNothingIsKnown) {
  EXPECT_TRUE(std::isnan(ToShare({0, 0}).rate));
  EXPECT_EQ(ToShare({0, 0}).low, 0);
  EXPECT_EQ(ToShare({0, 0}).high, 1);
}

class EvaluationTest : public testing::Test {
 protected:
  /// One voice that says each of `labels` words `takes` times, in as many rooms.
  static SpokenLabels Speak(std::size_t labels, std::size_t takes) {
    SpokenLabels spoken;
    for (std::uint32_t label = 0; label < labels; ++label) {
      for (std::uint32_t take = 0; take < takes; ++take) {
        const support::Samples samples =
            support::Mixed(support::Noise(14000, 30, 100 * label + take), 3000 + 300 * take,
                           support::SpeechLike(5000, 9000, label + 1));
        spoken[std::to_string(label)][take] = std::make_shared<dialer::Utterance>(samples);
      }
    }
    return spoken;
  }
  static EvaluationFigures Run(const Evaluation& evaluation) {
    EvaluationFigures figures;
    for (std::size_t round = 0; round < evaluation.CountRounds(); ++round) {
      figures += evaluation.RunRound(round);
    }
    return figures;
  }
};

TEST_F(EvaluationTest, EachTakeIsAskedOnceAndOnceMoreUntaught) {
  for (const std::size_t taught : {1U, 2U}) {
    const EvaluationFigures figures = Run(Evaluation(Speak(4, 3), taught));
    EXPECT_EQ(figures.forced.whole, 12U) << taught;
    EXPECT_EQ(figures.sure.whole, 12U) << taught;
    EXPECT_EQ(figures.unknownSure.whole, 12U) << taught;
    EXPECT_EQ(figures.wrong.whole, figures.sure.part) << taught;
  }
}

/// If the take that is asked were among those that teach, the distance would be 0.
TEST_F(EvaluationTest, NoTakeIsAskedThatTeaches) {
  SpokenLabels spoken = Speak(2, 3);
  // The takes of the first label are so unlike each other that only their own tag would know them.
  for (std::uint32_t take = 0; take < 3; ++take) {
    spoken["0"][take] = std::make_shared<dialer::Utterance>(
        support::Mixed(support::Noise(14000, 30, take), 3000,
                       support::SpeechLike(6000 - 1500 * take, 9000, 20 + take)));
  }
  for (const std::size_t taught : {1U, 2U}) {
    EXPECT_LT(Run(Evaluation(spoken, taught)).sure.part, 6U);
  }
}

TEST_F(EvaluationTest, WordsThatAreSaidAlikeAreAllKnownAndAreUnknownIfTheyAreNotTaught) {
  const EvaluationFigures figures = Run(Evaluation(Speak(6, 2), 1));
  EXPECT_EQ(figures.forced, (Count{12, 12}));
  EXPECT_EQ(figures.wrong.part, 0U);
  EXPECT_GE(figures.sure.part, 10U);
  EXPECT_LT(figures.unknownSure.part, figures.sure.part / 2);
}

TEST_F(EvaluationTest, LabelsWithTooFewTakesAreLeftOut) {
  SpokenLabels spoken = Speak(3, 3);
  spoken["0"].erase(2);
  EXPECT_EQ(Run(Evaluation(spoken, 2)).forced.whole, 6U);
  EXPECT_EQ(Run(Evaluation(spoken, 1)).forced.whole, 8U);
  EXPECT_EQ(Evaluation(spoken, 3).CountRounds(), 0U);
}

TEST_F(EvaluationTest, OneLabelAloneCanBeAskedAndNothingCanBeLeftOut) {
  const EvaluationFigures figures = Run(Evaluation(Speak(1, 3), 1));
  EXPECT_EQ(figures.forced, (Count{3, 3}));
  EXPECT_EQ(figures.unknownSure.whole, 0U);
}

}  // namespace
