#include "voicemath/take_template.h"

#include "tests/voicemath/mathematics_fixture.h"
#include "tests/voicemath/sample_recordings.h"
#include "tests/voicemath/signal_catalogue.h"

namespace {

/// What is found out about samples in memory, next to what the class does with a file of them.
class TakeTemplate : public MathematicsFixture {
 protected:
  void ExpectAsLearned(const support::Samples& samples, const std::string& name) {
    PutWave(samples);
    ASSERT_EQ(m_mathematics.LearnFile(0), voicemath::kLearned) << name;
    EXPECT_EQ(voicemath::FindKeptPart(samples), m_mathematics.m_detected) << name;
    const std::uint32_t kept = m_mathematics.m_detected.last - m_mathematics.m_detected.first + 1;
    if (kept >= voicemath::kFrameSamples) {
      EXPECT_EQ(voicemath::ComputeLearnedTemplate(samples), GetTemplate(0)) << name;
      ++m_templates;
    }
  }

  int m_templates = 0;
};

TEST_F(TakeTemplate, IsWhatLearnFileKeepsAndComputesOfEverySpokenName) {
  for (const support::Samples& samples : voicemath::SampleRecordings()) {
    ExpectAsLearned(samples, std::to_string(m_templates));
  }
  EXPECT_EQ(m_templates, static_cast<int>(voicemath::kSampleRecordings));
}

TEST_F(TakeTemplate, IsWhatLearnFileKeepsAndComputesOfEveryKindOfRecording) {
  for (const voicemath::NamedSignal& signal : voicemath::CatalogueOfRecordings()) {
    if (signal.samples.size() >= voicemath::kFrameHop) {  // Shorter ones wrap the frame count.
      ExpectAsLearned(signal.samples, signal.name);
    }
  }
  EXPECT_GT(m_templates, 20);
}

/// The last block of the envelope has a place of its own for every length.
TEST_F(TakeTemplate, IsWhatLearnFileKeepsWhateverTheLengthIs) {
  const support::Samples speech = support::SpeechLike(6000, 9000, 2);
  for (std::size_t length = 4000; length < 4000 + 2 * voicemath::kBlockStep; ++length) {
    ExpectAsLearned({speech.begin(), speech.begin() + static_cast<std::ptrdiff_t>(length)},
                    std::to_string(length));
  }
}

TEST_F(TakeTemplate, OfLessThanABlockAllIsKeptAndOfLessThanAFrameThereIsNoTemplate) {
  for (const std::size_t length : {1U, 54U, 55U, 109U, 110U, 1023U}) {
    const support::Samples noise = support::Noise(length, 900, 1);
    EXPECT_TRUE(voicemath::ComputeLearnedTemplate(noise).empty()) << length;
    EXPECT_LT(voicemath::FindKeptPart(noise).last, length);
  }
  EXPECT_EQ(voicemath::FindKeptPart(support::Noise(54, 900, 1)), (voicemath::Segment{0, 53}));
}

}  // namespace
