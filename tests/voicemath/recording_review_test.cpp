#include "voicemath/recording_review.h"

#include "tests/support/results.h"
#include "tests/voicemath/mathematics_fixture.h"

namespace {

using support::ErrorOf;
using voicemath::RecordingReview;
using voicemath::ReviewError;
using voicemath::Verdict;

class RecordingReviewTest : public MathematicsFixture {
 protected:
  /// What is said of `samples`, which are left as they are.
  [[nodiscard]] RecordingReview Review(const support::Samples& samples, bool findsSpeech = true) {
    PutWave(samples);
    return ReviewFile(findsSpeech);
  }

  [[nodiscard]] RecordingReview ReviewFile(bool findsSpeech = true) {
    const support::Bytes before = GetWave();
    const auto review = voicemath::ReviewRecording(m_mathematics, findsSpeech);
    EXPECT_TRUE(review);
    EXPECT_EQ(GetWave(), before);
    EXPECT_FALSE(m_mathematics.m_file.IsOpen());
    EXPECT_EQ(m_files.CountOpenHandles(), 0U);
    EXPECT_EQ(m_mathematics.m_count, 0);
    return review.value_or(RecordingReview());
  }

  static void ExpectNothingOdd(const RecordingReview& review) {
    EXPECT_FALSE(review.isEmpty);
    EXPECT_FALSE(review.hasNoFrame);
    EXPECT_FALSE(review.isConstant);
    EXPECT_FALSE(review.isLong);
    EXPECT_FALSE(review.isSpeechTooLate);
  }

  static support::Samples SpeechAt(std::size_t at, std::size_t count) {
    return support::Mixed(support::Noise(count, 20, 1), at, support::SpeechLike(6000, 9000, 2));
  }
};

TEST_F(RecordingReviewTest, FindsNothingOddInASpokenNameAndSaysWhatWillBeTaken) {
  const RecordingReview review = Review(SpeechAt(12000, 33075));
  ExpectNothingOdd(review);
  EXPECT_TRUE(review.quality.verdicts.empty());
  EXPECT_EQ(review.rate, 11025U);
  EXPECT_EQ(review.samples, 33075U);
  ASSERT_EQ(m_mathematics.LearnFile(0), voicemath::kLearned);
  EXPECT_EQ(review.segment, m_mathematics.m_detected);
  EXPECT_GT(review.segment.first, 0U);
}

TEST_F(RecordingReviewTest, WithoutTheSearchForSpeechAllIsTaken) {
  EXPECT_EQ(Review(SpeechAt(12000, 33075), false).segment, (voicemath::Segment{0, 33074}));
}

TEST_F(RecordingReviewTest, LessThanAHopIsEmptyAndLessThanAFrameHasNone) {
  for (const std::size_t count : {0U, 1U, 511U}) {
    EXPECT_TRUE(Review(support::Noise(count, 9000, 1)).isEmpty) << count;
    EXPECT_TRUE(Review(support::Noise(count, 9000, 1), false).isEmpty) << count;
  }
  for (const std::size_t count : {512U, 1023U}) {
    const RecordingReview review = Review(support::Noise(count, 9000, 1));
    EXPECT_FALSE(review.isEmpty) << count;
    EXPECT_TRUE(review.hasNoFrame) << count;
  }
  ExpectNothingOdd(Review(support::Noise(1024, 9000, 1)));
}

TEST_F(RecordingReviewTest, AnotherRateIsNamed) {
  support::Bytes file = support::WaveFile(SpeechAt(12000, 33075));
  file[24] = std::byte{0x44};  // 44,100.
  file[25] = std::byte{0xAC};
  PutWaveBytes(file);
  const RecordingReview review = ReviewFile();
  EXPECT_EQ(review.quality.verdicts.front(), Verdict::kRate);
  EXPECT_EQ(review.rate, 44100U);
}

TEST_F(RecordingReviewTest, OnlySamplesThatAreAllAlikeAreConstant) {
  EXPECT_TRUE(Review(support::Constant(33075, 0)).isConstant);
  EXPECT_TRUE(Review(support::Constant(33075, -77)).isConstant);
  support::Samples samples = support::Constant(33075, 0);
  samples.back() = 1;
  EXPECT_FALSE(Review(samples).isConstant);
}

TEST_F(RecordingReviewTest, AFewStepsOfNoiseAreSilentAndNotConstant) {
  const RecordingReview review = Review(support::Noise(33075, 1, 1));
  EXPECT_EQ(review.quality.verdicts, std::vector{Verdict::kSilent});
  EXPECT_FALSE(review.isConstant);
}

TEST_F(RecordingReviewTest, ARecordingThatTheHeaderRulesOutIsJudgedByWhatItLacks) {
  support::Bytes file = support::WaveFile(SpeechAt(12000, 33075));
  const auto judge = [&](const support::Bytes& bytes) {
    PutWaveBytes(bytes);
    return voicemath::JudgeRecording(m_mathematics).value().verdicts;
  };
  EXPECT_TRUE(judge(file).empty());
  support::Bytes stereo = file;
  stereo[22] = std::byte{2};
  EXPECT_EQ(judge(stereo), std::vector{Verdict::kRate});
  const support::Bytes torn(file.begin(), file.begin() + 20000);
  EXPECT_EQ(judge(torn), std::vector{Verdict::kInterrupted});
  EXPECT_EQ(judge({}), std::vector{Verdict::kInterrupted});
  m_mathematics.m_wavePath = u"/missing.wav";
  EXPECT_EQ(ErrorOf(voicemath::JudgeRecording(m_mathematics)), ReviewError::kNotOpened);
  EXPECT_EQ(m_files.CountOpenHandles(), 0U);
}

TEST_F(RecordingReviewTest, MoreThanAMinuteIsLong) {
  EXPECT_FALSE(Review(SpeechAt(12000, 661'500)).isLong);
  EXPECT_TRUE(Review(SpeechAt(12000, 661'501)).isLong);
}

TEST_F(RecordingReviewTest, SpeechAfterTheSixteenBitBlockNumbersIsTooLate) {
  const support::Samples late = SpeechAt(1'810'000, 1'850'000);
  EXPECT_TRUE(Review(late).isSpeechTooLate);
  EXPECT_FALSE(Review(late, false).isSpeechTooLate) << "Nobody looks for it.";
  const RecordingReview early = Review(SpeechAt(1'700'000, 1'850'000));
  EXPECT_FALSE(early.isSpeechTooLate);
  EXPECT_GT(early.segment.first, 1'690'000U);
}

TEST_F(RecordingReviewTest, WhatIsNoRecordingHasNoReview) {
  m_mathematics.m_wavePath = u"/missing.wav";
  EXPECT_EQ(ErrorOf(voicemath::ReviewRecording(m_mathematics, true)), ReviewError::kNotOpened);
  support::Bytes file = support::WaveFile(SpeechAt(12000, 33075));
  file[0] = std::byte{'r'};
  PutWaveBytes(file);
  EXPECT_EQ(ErrorOf(voicemath::ReviewRecording(m_mathematics, true)), ReviewError::kHeaderRefused);
  EXPECT_EQ(m_files.CountOpenHandles(), 0U);
  EXPECT_TRUE(m_ui.GetMessages().empty());
}

}  // namespace
