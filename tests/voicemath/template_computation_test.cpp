#include <algorithm>
#include <cmath>

#include "tests/voicemath/mathematics_fixture.h"

namespace {

class TemplateComputation : public MathematicsFixture {
 protected:
  std::uint16_t FramesOf(std::size_t samples) {
    PutWave(support::SpeechLike(samples, 8000, 3));
    EXPECT_EQ(m_mathematics.ProcessFile(0), voicemath::kLearned);
    return m_mathematics.m_frameCounts[0];
  }
};

TEST_F(TemplateComputation, FramesAreTwoHopsLongAndBeginAtEachHop) {
  EXPECT_EQ(FramesOf(512), 0);
  EXPECT_EQ(FramesOf(1023), 0);
  EXPECT_EQ(FramesOf(1024), 1);
  EXPECT_EQ(FramesOf(1535), 1);
  EXPECT_EQ(FramesOf(1536), 2);
  EXPECT_EQ(FramesOf(33075), 63);
}

TEST_F(TemplateComputation, ASegmentBelowOneHopWrapsTheFrameCount) {
  for (const std::size_t samples : {0U, 1U, 511U}) {
    EXPECT_EQ(FramesOf(samples), 65535) << samples;
    EXPECT_EQ(m_mathematics.m_elementCount, 327675);
    // From the second frame on nothing is read any more, so all frames are alike and, less the
    // minimum of each band, zero.
    const auto values = GetTemplate(0);
    EXPECT_TRUE(std::ranges::all_of(values, [](float value) { return value == 0.0F; }));
  }
}

TEST_F(TemplateComputation, EveryBandHasAMinimumOfExactlyZero) {
  ASSERT_EQ(FramesOf(33075), 63);
  const auto values = GetTemplate(0);
  for (std::size_t band = 0; band < 5; ++band) {
    float minimum = values[band];
    for (std::size_t i = band; i < values.size(); i += 5) {
      minimum = std::min(minimum, values[i]);
    }
    EXPECT_EQ(minimum, 0.0F) << band;
  }
}

TEST_F(TemplateComputation, BinsBelowTenNeverContribute) {
  // Tones on a bin, over frames that hold whole periods: a steady tone would be subtracted as the
  // minimum, so the second half is silent.
  auto low = support::Tone(8192, 9.0, 8000);
  auto high = support::Tone(8192, 11.0, 8000);
  std::fill(low.begin() + 4096, low.end(), std::int16_t{0});
  std::fill(high.begin() + 4096, high.end(), std::int16_t{0});
  PutWave(low);
  ASSERT_EQ(m_mathematics.ProcessFile(0), voicemath::kLearned);
  PutWave(high);
  ASSERT_EQ(m_mathematics.ProcessFile(1), voicemath::kLearned);
  // Rounding of the samples leaves a trace of the low tone, nothing near the high one.
  EXPECT_LT(GetTemplate(0)[0], GetTemplate(1)[0] / 1000.0F);
}

TEST_F(TemplateComputation, AnEmptyTemplateIsThereAllTheSame) {
  ASSERT_EQ(FramesOf(600), 0);
  EXPECT_NE(m_mathematics.m_templates[0], nullptr);
  EXPECT_EQ(m_mathematics.m_elementCount, 0);
}

TEST_F(TemplateComputation, ComputingAgainReplacesTheSlot) {
  ASSERT_EQ(FramesOf(33075), 63);
  ASSERT_EQ(FramesOf(1024), 1);
  EXPECT_EQ(GetTemplate(0), std::vector<float>(5, 0.0F));
}

TEST_F(TemplateComputation, ProcessingLeavesTheFileAlone) {
  PutWave(support::Mixed(support::Noise(33075, 20, 1), 12000, support::SpeechLike(6000, 9000, 2)));
  const auto before = GetWave();
  ASSERT_EQ(m_mathematics.ProcessFile(0), voicemath::kLearned);
  EXPECT_EQ(GetWave(), before);
  EXPECT_EQ(m_mathematics.m_detected, (voicemath::Segment{0, 33074}));
}

}  // namespace
