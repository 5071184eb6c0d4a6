#include <algorithm>

#include "tests/support/results.h"
#include "tests/support/signals.h"
#include "tests/support/watched_file_system.h"
#include "tests/voicemath/mathematics_fixture.h"

namespace {

using support::Failing;

constexpr std::u16string_view kPath = u"/name.wav";
constexpr std::u16string_view kTemplatePath = u"/name.st";

/// Learning one short recording while one call of the file layer fails.
class FileFaults : public testing::TestWithParam<Failing> {
 protected:
  FileFaults() {
    // Loud in the middle, so that there is something to trim at both ends.
    const auto samples =
        support::Mixed(support::Noise(15000, 10, 1), 7000, support::SpeechLike(1200, 9000, 2));
    m_old = support::WaveFile(samples);
    PutWave();
    EXPECT_EQ(m_mathematics.LearnFile(0), voicemath::kLearned);
    m_trimmed = GetWave();
    EXPECT_LT(m_trimmed.size(), m_old.size());
    EXPECT_TRUE(voicemath::WriteTemplateFile(m_failing, kTemplatePath, m_mathematics));
    m_template = m_files.GetFile(kTemplatePath).value_or(support::Bytes());
  }

  void PutWave() {
    ASSERT_TRUE(m_files.PutFile(kPath, m_old));
    m_mathematics.m_wavePath = kPath;
  }
  [[nodiscard]] support::Bytes GetWave() const {
    return m_files.GetFile(kPath).value_or(support::Bytes());
  }

  machine::MemoryFileSystem m_files;
  support::WatchedFileSystem m_failing{m_files};
  headless::HeadlessUi m_ui;
  voicemath::CVoiceMathematics m_mathematics{m_failing, m_ui};
  support::Bytes m_old;
  support::Bytes m_trimmed;
  support::Bytes m_template;
};

TEST_P(FileFaults, LearningLeavesTheOldRecordingOrTheTrimmedOne) {
  bool sawOld = false;
  bool sawTrimmedDespiteFailure = false;
  int passedOver = 0;
  bool anyFailed = true;
  for (std::size_t call = 1; anyFailed; ++call) {
    SCOPED_TRACE(call);
    PutWave();
    const std::size_t messages = m_ui.GetMessages().size();
    const std::int32_t count = m_mathematics.m_count;
    m_failing.FailCall(call, GetParam(), platform::FileError::kDiskFull);
    const int result = m_mathematics.LearnFile(0);
    anyFailed = m_failing.HasFailed();

    const auto wave = GetWave();
    ASSERT_TRUE(wave == m_old || wave == m_trimmed);
    sawOld = sawOld || wave == m_old;
    if (result == voicemath::kLearned) {
      EXPECT_EQ(wave, m_trimmed);
      EXPECT_EQ(m_mathematics.m_count, count + 1);
      EXPECT_EQ(m_ui.GetMessages().size(), messages);
      passedOver += anyFailed ? 1 : 0;
    } else {
      EXPECT_EQ(result, voicemath::kNotProcessed);
      EXPECT_EQ(m_mathematics.m_count, count);
      EXPECT_EQ(m_ui.GetMessages().size(), messages + 1);
      sawTrimmedDespiteFailure = sawTrimmedDespiteFailure || wave == m_trimmed;
    }
    EXPECT_EQ(m_files.CountOpenHandles(), 0U);
    if (GetParam() == Failing::kOnce) {
      EXPECT_EQ(m_files.ListFiles().size(), 2U) << "Recording and template, and nothing torn.";
    }
    ASSERT_LT(call, 5000U);
  }
  // Closing the recording, which was only read: before it is replaced, and at the end.
  EXPECT_EQ(passedOver, GetParam() == Failing::kOnce ? 2 : 1);
  EXPECT_TRUE(sawOld);
  EXPECT_TRUE(sawTrimmedDespiteFailure);
}

TEST_P(FileFaults, ATemplateIsWrittenWholeOrTheResultSaysNo) {
  bool anyFailed = true;
  for (std::size_t call = 1; anyFailed; ++call) {
    SCOPED_TRACE(call);
    static_cast<void>(m_files.Delete(kTemplatePath));
    m_failing.FailCall(call, GetParam(), platform::FileError::kDiskFull);
    const auto result = voicemath::WriteTemplateFile(m_failing, kTemplatePath, m_mathematics);
    anyFailed = m_failing.HasFailed();
    if (result) {
      EXPECT_EQ(m_files.GetFile(kTemplatePath), m_template);
    }
    EXPECT_EQ(result.has_value(), !anyFailed);
    EXPECT_EQ(m_files.CountOpenHandles(), 0U);
    ASSERT_LT(call, 100U);
  }
}

TEST_P(FileFaults, ATemplateThatReplacesAnEarlierOneIsTheEarlierOrTheNew) {
  const support::Bytes earlier(10'000, std::byte{7});
  bool anyFailed = true;
  for (std::size_t call = 1; anyFailed; ++call) {
    SCOPED_TRACE(call);
    ASSERT_TRUE(m_files.PutFile(kTemplatePath, earlier));
    m_failing.FailCall(call, GetParam(), platform::FileError::kDiskFull);
    const auto replaced = voicemath::ReplaceTemplateFile(m_failing, kTemplatePath, m_mathematics);
    anyFailed = m_failing.HasFailed();
    EXPECT_EQ(support::ErrorOf(replaced),
              anyFailed ? std::optional(platform::FileError::kDiskFull) : std::nullopt);
    EXPECT_EQ(m_files.GetFile(kTemplatePath), anyFailed ? earlier : m_template);
    EXPECT_EQ(m_files.CountOpenHandles(), 0U);
    ASSERT_LT(call, 100U);
  }
}

TEST_P(FileFaults, ALoadThatFailsLeavesTheSlot) {
  m_mathematics.m_loadSlot = 1;
  bool anyFailed = true;
  for (std::size_t call = 1; anyFailed; ++call) {
    SCOPED_TRACE(call);
    m_mathematics.m_templates[1].reset();
    m_failing.FailCall(call, GetParam());
    const auto result = voicemath::ReadTemplateFile(m_failing, kTemplatePath, m_mathematics);
    anyFailed = m_failing.HasFailed();
    const bool loaded = m_mathematics.m_templates[1] != nullptr;
    EXPECT_EQ(result.has_value(), loaded);
    EXPECT_EQ(m_files.CountOpenHandles(), 0U);
    ASSERT_LT(call, 100U);
  }
}

TEST_P(FileFaults, ALoadThatFailsInTheMiddleOfItsValuesLeavesTheSlot) {
  // 20,006 bytes, which an archive reads in several parts.
  constexpr std::uint16_t kFrames = 1000;
  constexpr std::size_t kElements = 5 * std::size_t{kFrames};
  support::Bytes bytes(6 + 4 * kElements, std::byte{1});
  bytes[0] = std::byte{kElements & 0xFFU};
  bytes[1] = std::byte{kElements >> 8U};
  bytes[2] = bytes[3] = std::byte{0};
  bytes[4] = std::byte{kFrames & 0xFFU};
  bytes[5] = std::byte{kFrames >> 8U};
  ASSERT_TRUE(m_files.PutFile(kTemplatePath, bytes));
  m_mathematics.m_loadSlot = 0;
  const auto before = m_mathematics.GetTemplate(0).size();
  std::size_t refusals = 0;
  for (bool anyFailed = true; anyFailed;) {
    ASSERT_EQ(m_mathematics.GetTemplate(0).size(), before);
    m_failing.FailCall(refusals + 1, GetParam());
    const auto result = voicemath::ReadTemplateFile(m_failing, kTemplatePath, m_mathematics);
    anyFailed = m_failing.HasFailed();
    if (result) {
      break;
    }
    ASSERT_LT(++refusals, 100U);
  }
  EXPECT_GT(refusals, 4U);
  EXPECT_EQ(m_mathematics.GetTemplate(0).size(), kElements);
}

INSTANTIATE_TEST_SUITE_P(Each, FileFaults,
                         testing::Values(Failing::kOnce, Failing::kFromThenOn,
                                         Failing::kPowerFailure));

}  // namespace
