#include "tests/voicemath/class_twin.h"

#include <algorithm>

#include "gtest/gtest.h"
#include "tests/voicemath/bits.h"
#include "voicemath/template_file.h"

namespace voicemath {
namespace {

constexpr std::u16string_view kWave = u"\\Waves\\name.wav";
constexpr std::u16string_view kTemplate = u"\\Waves\\name.st";

}  // namespace

twins::Processed ClassAndTwin::ExpectSame(Task task, std::int32_t slot, const support::Bytes& file,
                                          const std::string& name) {
  SCOPED_TRACE(name + (task == Task::kLearn ? ", learned" : ", processed"));
  const bool learn = task == Task::kLearn;
  const twins::Processed expected =
      learn ? twins::LearnFile(slot, file) : twins::ProcessFile(slot, file);
  EXPECT_TRUE(m_files.PutFile(kWave, file));
  const std::size_t filesBefore = m_files.ListFiles().size();
  const std::size_t messagesBefore = m_ui.GetMessages().size();
  const std::int32_t countBefore = m_mathematics.m_count;
  m_mathematics.m_wavePath = kWave;

  const int result = learn ? m_mathematics.LearnFile(slot) : m_mathematics.ProcessFile(slot);

  EXPECT_EQ(result, expected.result);
  EXPECT_TRUE(m_files.GetFile(kWave) == expected.after) << "the wave file differs";
  EXPECT_EQ(m_files.ListFiles().size(), filesBefore);
  EXPECT_EQ(m_files.CountOpenHandles(), 0U);
  const bool isRefused = expected.result == 2;
  EXPECT_EQ(m_ui.GetMessages().size(), messagesBefore + (isRefused ? 1 : 0));
  const bool isCounted = expected.result == 0 && slot < 100;
  EXPECT_EQ(m_mathematics.m_count, countBefore + (isCounted ? 1 : 0));
  if (expected.result == 0) {
    ExpectSameFields(expected);
    ExpectSameTemplate(slot, expected);
  }
  return expected;
}

twins::Processed ClassAndTwin::ExpectSameTwice(const support::Bytes& file,
                                               const std::string& name) {
  twins::Processed learned = ExpectSame(Task::kLearn, 0, file, name);
  ExpectSame(Task::kProcess, 0, learned.after, name);
  return learned;
}

void ClassAndTwin::ExpectSameFields(const twins::Processed& expected) {
  EXPECT_EQ(m_mathematics.m_detected.first, expected.firstSample);
  EXPECT_EQ(m_mathematics.m_detected.last, expected.lastSample);
  EXPECT_EQ(m_mathematics.m_dataOffset, expected.wave.dataOffset);
  EXPECT_EQ(m_mathematics.m_dataBytes, expected.wave.dataBytes);
  EXPECT_EQ(m_mathematics.m_firstSample, expected.wave.firstSample);
  EXPECT_EQ(m_mathematics.m_lastSample, expected.wave.lastSample);
}

void ClassAndTwin::ExpectSameTemplate(std::int32_t slot, const twins::Processed& expected) {
  const auto index = static_cast<std::size_t>(slot);
  EXPECT_EQ(m_mathematics.m_frameCounts[index], expected.computed.frameCount);
  EXPECT_EQ(m_mathematics.m_elementCount,
            static_cast<std::int32_t>(expected.computed.frameCount * 5));
  EXPECT_EQ(BitsOf(m_mathematics.GetTemplate(index)), BitsOf(expected.computed.values));
  if (slot == 0) {
    EXPECT_TRUE(Serialized() == expected.serialized) << "the template file differs";
  }
}

support::Bytes ClassAndTwin::Serialized() {
  EXPECT_TRUE(WriteTemplateFile(m_files, kTemplate, m_mathematics));
  support::Bytes bytes = m_files.GetFile(kTemplate).value_or(support::Bytes());
  EXPECT_TRUE(m_files.Delete(kTemplate));
  return bytes;
}

}  // namespace voicemath
