#include "voicemath/voice_mathematics.h"

#include <bit>

#include "tests/voicemath/mathematics_fixture.h"

namespace {

using voicemath::CVoiceMathematics;

class CVoiceMathematicsTest : public MathematicsFixture {};

TEST_F(CVoiceMathematicsTest, BeginsEmpty) {
  EXPECT_EQ(m_mathematics.GetRuntimeClass().name, "CVoiceMathematics");
  EXPECT_EQ(m_mathematics.m_bandCount, 5);
  EXPECT_EQ(m_mathematics.m_hopsPerFrame, 2);
  EXPECT_EQ(m_mathematics.m_count, 0);
  EXPECT_EQ(m_mathematics.m_loadSlot, 0);
  EXPECT_EQ(m_mathematics.m_elementCount, 0);
  for (std::size_t slot = 0; slot < CVoiceMathematics::kSlotCount; ++slot) {
    EXPECT_EQ(m_mathematics.m_templates[slot], nullptr);
    EXPECT_EQ(m_mathematics.m_frameCounts[slot], 0);
  }
  for (const float threshold : m_mathematics.m_thresholds) {
    EXPECT_EQ(threshold, 2.0F);
  }
}

TEST_F(CVoiceMathematicsTest, AStoredSlotGetsItsPathAndLabelAndIsCounted) {
  PutWave(support::SpeechLike(33075, 8000, 1));
  m_mathematics.m_label = u"Ann";
  EXPECT_EQ(m_mathematics.ProcessFile(99), voicemath::kLearned);
  EXPECT_EQ(m_mathematics.m_wavePaths[99], kWave);
  EXPECT_EQ(m_mathematics.m_labels[99], u"Ann");
  EXPECT_EQ(m_mathematics.m_count, 1);
  EXPECT_EQ(m_mathematics.m_frameCounts[99], 63);
  EXPECT_EQ(m_mathematics.m_elementCount, 315);
  EXPECT_FALSE(m_mathematics.m_file.IsOpen());
}

TEST_F(CVoiceMathematicsTest, TheCountRisesAlsoWhenASlotIsUsedAgain) {
  PutWave(support::SpeechLike(2048, 8000, 1));
  for (int i = 0; i < 150; ++i) {
    ASSERT_EQ(m_mathematics.ProcessFile(0), voicemath::kLearned);
  }
  EXPECT_EQ(m_mathematics.m_count, 150);
}

TEST_F(CVoiceMathematicsTest, TheScratchSlotIsComputedButNeverCounted) {
  PutWave(support::SpeechLike(2048, 8000, 1));
  EXPECT_EQ(m_mathematics.LearnFile(100), voicemath::kLearned);
  EXPECT_NE(m_mathematics.m_templates[100], nullptr);
  EXPECT_EQ(m_mathematics.m_count, 0);
}

TEST_F(CVoiceMathematicsTest, NoSuchSlotIsRefusedBeforeTheFileIsOpened) {
  m_mathematics.m_wavePath = u"/missing.wav";
  for (const std::int32_t slot : {101, 1000, -1, INT32_MIN}) {
    EXPECT_EQ(m_mathematics.LearnFile(slot), voicemath::kNoSuchSlot);
    EXPECT_EQ(m_mathematics.ProcessFile(slot), voicemath::kNoSuchSlot);
  }
  EXPECT_TRUE(m_ui.GetMessages().empty());
}

TEST_F(CVoiceMathematicsTest, AFileThatCannotBeProcessedLeavesSlotCountAndCopies) {
  PutWave(support::SpeechLike(2048, 8000, 1));
  ASSERT_EQ(m_mathematics.ProcessFile(0), voicemath::kLearned);
  const auto before = GetTemplate(0);

  for (const std::u16string_view path : {u"/missing.wav", u"/text.wav"}) {
    ASSERT_TRUE(m_files.PutFile(u"/text.wav", support::Bytes(60)));
    m_mathematics.m_wavePath = path;
    m_mathematics.m_label = u"other";
    EXPECT_EQ(m_mathematics.LearnFile(0), voicemath::kNotProcessed);
    EXPECT_EQ(m_mathematics.ProcessFile(0), voicemath::kNotProcessed);
  }
  EXPECT_EQ(GetTemplate(0), before);
  EXPECT_EQ(m_mathematics.m_count, 1);
  EXPECT_EQ(m_mathematics.m_wavePaths[0], kWave);
  EXPECT_EQ(m_mathematics.m_labels[0], u"");

  const auto messages = m_ui.GetMessages();
  ASSERT_EQ(messages.size(), 4U);
  EXPECT_EQ(messages[0].box.text, u"Can't process this file");
  EXPECT_EQ(messages[0].box.captionKind, platform::MessageCaption::kApplication);
  EXPECT_EQ(messages[0].box.style, platform::MessageStyle::kOk);
  EXPECT_EQ(m_files.CountOpenHandles(), 0U);
}

TEST_F(CVoiceMathematicsTest, DurationCountsTheHopsOfAllFramesAndOneMore) {
  EXPECT_EQ(m_mathematics.GetTemplateDuration(0), 0.0F);
  SetTemplate(0, std::vector<float>(5));
  EXPECT_EQ(m_mathematics.GetTemplateDuration(0), 1024.0F * 9.0702946e-5F);
  SetTemplate(100, {});
  EXPECT_EQ(m_mathematics.GetTemplateDuration(100), 512.0F * 9.0702946e-5F);
  EXPECT_EQ(m_mathematics.GetTemplateDuration(-1), 0.0F);
  EXPECT_EQ(m_mathematics.GetTemplateDuration(101), 0.0F);
  m_mathematics.m_frameCounts[0] = 65535;
  EXPECT_EQ(m_mathematics.GetTemplateDuration(0), 33554432.0F * 9.0702946e-5F);
}

TEST_F(CVoiceMathematicsTest, RemovingClosesTheGap) {
  for (std::size_t slot = 0; slot < 3; ++slot) {
    SetTemplate(slot, std::vector<float>(5 * (slot + 1), static_cast<float>(slot)));
    m_mathematics.m_wavePaths[slot] = std::u16string(1, static_cast<char16_t>(u'a' + slot));
    m_mathematics.m_labels[slot] = std::u16string(1, static_cast<char16_t>(u'x' + slot));
  }
  m_mathematics.m_count = 3;
  m_mathematics.RemoveTemplate(1);
  EXPECT_EQ(m_mathematics.m_count, 2);
  EXPECT_EQ(GetTemplate(0), std::vector<float>(5, 0.0F));
  EXPECT_EQ(GetTemplate(1), std::vector<float>(15, 2.0F));
  EXPECT_EQ(m_mathematics.m_wavePaths[1], u"c");
  EXPECT_EQ(m_mathematics.m_labels[1], u"z");
  EXPECT_EQ(m_mathematics.m_templates[2], nullptr);
  EXPECT_EQ(m_mathematics.m_frameCounts[2], 0);
}

TEST_F(CVoiceMathematicsTest, WhatMovedOrWasRemovedIsComparedAsWhatItIs) {
  SetTemplate(0, {3, 0, 1, 0, 0});
  SetTemplate(1, {0, 0, 0, 0, 9});
  SetTemplate(2, {3, 0, 1, 0, 0});
  SetTemplate(100, {3, 0, 1, 0, 0});
  m_mathematics.m_count = 3;
  ASSERT_GT(m_mathematics.CompareTemplates(0, 1), 1.0F);
  m_mathematics.RemoveTemplate(1);
  EXPECT_EQ(m_mathematics.CompareTemplates(0, 1), 0.0F);
  EXPECT_EQ(m_mathematics.CompareTemplates(0, 2), voicemath::kMaxDistance) << "Empty now.";
  EXPECT_EQ(m_mathematics.CompareTemplates(100, 0), 0.0F) << "The scratch slot can be compared.";
  EXPECT_EQ(m_mathematics.CompareTemplates(0, 100), 0.0F);
  EXPECT_EQ(m_mathematics.ComputeThresholds(), 2);
  EXPECT_EQ(m_mathematics.m_thresholds[0], 0.0F);
  m_mathematics.ClearTemplates();
  EXPECT_EQ(m_mathematics.CompareTemplates(100, 0), voicemath::kMaxDistance);
}

TEST_F(CVoiceMathematicsTest, RemovingNeedsASlotBelowTheCount) {
  SetTemplate(0, std::vector<float>(5));
  m_mathematics.m_count = 1;
  m_mathematics.RemoveTemplate(1);
  m_mathematics.RemoveTemplate(-1);
  EXPECT_EQ(m_mathematics.m_count, 1);
  EXPECT_NE(m_mathematics.m_templates[0], nullptr);
}

TEST_F(CVoiceMathematicsTest, RemovingNeverMovesTheScratchSlot) {
  SetTemplate(99, std::vector<float>(5, 1.0F));
  SetTemplate(100, std::vector<float>(5, 2.0F));
  m_mathematics.m_count = 150;
  m_mathematics.RemoveTemplate(120);
  EXPECT_EQ(m_mathematics.m_count, 149);
  EXPECT_EQ(GetTemplate(99), std::vector<float>(5, 1.0F));
  m_mathematics.RemoveTemplate(0);
  EXPECT_EQ(m_mathematics.m_count, 148);
  EXPECT_EQ(GetTemplate(98), std::vector<float>(5, 1.0F));
  EXPECT_EQ(m_mathematics.m_templates[99], nullptr);
  EXPECT_EQ(GetTemplate(100), std::vector<float>(5, 2.0F));
}

TEST_F(CVoiceMathematicsTest, ClearingFreesTheCountedSlotsOnly) {
  for (const std::size_t slot : {0U, 1U, 2U, 100U}) {
    SetTemplate(slot, std::vector<float>(5));
  }
  m_mathematics.m_count = 2;
  m_mathematics.ClearTemplates();
  EXPECT_EQ(m_mathematics.m_count, 0);
  EXPECT_EQ(m_mathematics.m_templates[1], nullptr);
  EXPECT_EQ(m_mathematics.m_frameCounts[1], 0);
  EXPECT_NE(m_mathematics.m_templates[2], nullptr);

  m_mathematics.m_count = 1000;
  m_mathematics.ClearTemplates();
  EXPECT_EQ(m_mathematics.m_templates[2], nullptr);
  EXPECT_NE(m_mathematics.m_templates[100], nullptr);
}

TEST_F(CVoiceMathematicsTest, ComparingASlotThatIsNoneOrEmptyIsSafe) {
  SetTemplate(0, {1, 0, 0, 0, 0});
  EXPECT_EQ(m_mathematics.CompareTemplates(0, 1), 2.0F);
  EXPECT_EQ(m_mathematics.CompareTemplates(1, 0), 2.0F);
  EXPECT_EQ(m_mathematics.CompareTemplates(1, 2), 0.0F);
  EXPECT_EQ(m_mathematics.CompareTemplates(0, 101), 2.0F);
  EXPECT_EQ(m_mathematics.CompareTemplates(-1, 0), 2.0F);
}

TEST_F(CVoiceMathematicsTest, ThresholdsComeCloserToTheNearestNeighbourTheMoreTagsThereAre) {
  SetTemplate(0, {1, 0, 0, 0, 0});
  SetTemplate(1, {0, 1, 0, 0, 0});
  m_mathematics.m_thresholds.fill(0.5F);
  EXPECT_EQ(m_mathematics.ComputeThresholds(), 0);
  EXPECT_EQ(m_mathematics.m_thresholds[0], 2.0F);
  m_mathematics.m_count = 1;
  EXPECT_EQ(m_mathematics.ComputeThresholds(), 1);
  EXPECT_EQ(m_mathematics.m_thresholds[0], 2.0F);

  m_mathematics.m_count = 2;
  SetTemplate(1, {1, 1, 0, 0, 0});
  const float nearest = m_mathematics.CompareTemplates(0, 1);
  ASSERT_GT(nearest, 0.0F);
  ASSERT_LT(nearest, 2.0F);
  EXPECT_EQ(m_mathematics.ComputeThresholds(), 2);
  EXPECT_EQ(m_mathematics.m_thresholds[0], nearest - nearest / 2.0F);
  EXPECT_EQ(m_mathematics.m_thresholds[2], 2.0F);

  m_mathematics.m_count = 1000;  // Slots 2 to 99 are empty, and nothing is after them.
  EXPECT_EQ(m_mathematics.ComputeThresholds(), 1000);
  EXPECT_EQ(m_mathematics.m_thresholds[0], nearest - nearest / 1000.0F);
}

TEST_F(CVoiceMathematicsTest, TheScratchSlotIsNobodysNeighbourWhateverPlacesThereAre) {
  std::vector<float> values{1, 2, 3, 4, 5};
  for (std::size_t slot = 0; slot < voicemath::CVoiceMathematics::kSlotCount; ++slot) {
    values[0] += 1.0F;
    SetTemplate(slot, slot == 100 ? std::vector<float>{2, 2, 3, 4, 5} : values);
  }
  ASSERT_EQ(m_mathematics.CompareTemplates(0, 100), 0.0F);
  std::array<voicemath::Neighbour, 101> nearest;
  nearest[100] = {.index = 7, .distance = 0.5F};
  ASSERT_TRUE(m_mathematics.FindNearest(nearest));
  EXPECT_EQ(nearest[0].index, 1);
  for (std::size_t slot = 0; slot < 100; ++slot) {
    EXPECT_GE(nearest[slot].index, 0) << slot;
    EXPECT_LT(nearest[slot].index, 100) << slot;
  }
  EXPECT_EQ(nearest[100].index, 7);
  EXPECT_EQ(nearest[100].distance, 0.5F);
}

TEST_F(CVoiceMathematicsTest, TransformsThroughItsOwnOperation) {
  std::vector<float> real{1, 0, 0, 0};
  std::vector<float> imaginary(4);
  CVoiceMathematics::Fft(real.data(), imaginary.data(), 4, 1);
  EXPECT_EQ(real, std::vector<float>(4, 1.0F));
}

}  // namespace
