#include <algorithm>
#include <set>
#include <string>
#include <utility>

#include "tests/support/watched_file_system.h"
#include "tests/voicemath/mathematics_fixture.h"

namespace {

using framework::CFile;

class WaveTrimming : public MathematicsFixture {
 protected:
  void Open(const support::Bytes& bytes) {
    PutWaveBytes(bytes);
    ASSERT_TRUE(m_mathematics.m_file.Open(kWave, CFile::modeReadWrite));
    ASSERT_EQ(m_mathematics.OpenWaveData(), voicemath::kHeaderAccepted);
  }
  void Select(std::uint32_t first, std::uint32_t last) {
    m_mathematics.m_firstSample = first;
    m_mathematics.m_lastSample = last;
  }
};

TEST_F(WaveTrimming, KeepsExactlyTheSegmentUnderANewHeader) {
  const auto samples = support::Noise(5000, 9000, 1);
  Open(support::WaveFile(samples));
  Select(700, 3999);
  ASSERT_TRUE(m_mathematics.TrimWaveFile());
  EXPECT_EQ(GetWave(), support::WaveFile(std::span(samples).subspan(700, 3300)));
  EXPECT_EQ(m_mathematics.m_firstSample, 0U);
  EXPECT_EQ(m_mathematics.m_lastSample, 3299U);
  EXPECT_EQ(m_mathematics.m_dataBytes, 6600U);
  EXPECT_EQ(m_mathematics.m_dataOffset, 44);
  EXPECT_TRUE(m_mathematics.m_file.IsOpen());
  m_mathematics.m_file.Close();
  EXPECT_EQ(m_files.ListFiles(), std::vector<std::u16string>{std::u16string(kWave)});
}

TEST_F(WaveTrimming, TheSizeFieldHoldsTheLengthOfTheWholeFile) {
  Open(support::WaveFile(support::Noise(5000, 9000, 1)));
  Select(1, 1024);
  ASSERT_TRUE(m_mathematics.TrimWaveFile());
  const auto wave = GetWave();
  ASSERT_EQ(wave.size(), 44U + 2048U);
  EXPECT_EQ(wave[4], std::byte{0x2C});
  EXPECT_EQ(wave[5], std::byte{0x08});
}

TEST_F(WaveTrimming, SegmentsOfWholeBuffersAndOneSampleMoreOrLess) {
  const auto samples = support::Noise(5000, 9000, 2);
  for (const std::uint32_t count : {2U, 1023U, 1024U, 1025U, 2047U, 2048U, 2049U}) {
    Open(support::WaveFile(samples));
    Select(100, 100 + count - 1);
    ASSERT_TRUE(m_mathematics.TrimWaveFile());
    EXPECT_EQ(GetWave(), support::WaveFile(std::span(samples).subspan(100, count))) << count;
  }
}

TEST_F(WaveTrimming, OneSampleLessThanTheRecordingAtEitherEndIsTrimmed) {
  const auto samples = support::Noise(500, 9000, 3);
  Open(support::WaveFile(samples));
  Select(1, 499);
  ASSERT_TRUE(m_mathematics.TrimWaveFile());
  EXPECT_EQ(GetWave(), support::WaveFile(std::span(samples).subspan(1, 499)));
  Open(support::WaveFile(samples));
  Select(0, 498);
  ASSERT_TRUE(m_mathematics.TrimWaveFile());
  EXPECT_EQ(GetWave(), support::WaveFile(std::span(samples).first(499)));
}

TEST_F(WaveTrimming, ASearchThatFindsNoSpeechSelectsTheWholeFileWhateverWasSelectedBefore) {
  Open(support::WaveFile(support::Constant(5000, 0)));
  Select(700, 800);
  ASSERT_TRUE(m_mathematics.DetectSpeechBounds());
  EXPECT_EQ(m_mathematics.m_firstSample, 0U);
  EXPECT_EQ(m_mathematics.m_lastSample, 4999U);
}

TEST_F(WaveTrimming, LeavesAFileAloneThatIsTheSegmentAlready) {
  auto bytes = support::WaveFile(support::Noise(500, 9000, 1));
  bytes.push_back(std::byte{7});  // Something behind the data stays too.
  Open(bytes);
  Select(0, 499);
  ASSERT_TRUE(m_mathematics.TrimWaveFile());
  EXPECT_EQ(GetWave(), bytes);
}

TEST_F(WaveTrimming, LeavesTheFileAloneForASegmentOfOneSampleOrNone) {
  const auto bytes = support::WaveFile(support::Noise(500, 9000, 1));
  Open(bytes);
  Select(10, 10);
  ASSERT_TRUE(m_mathematics.TrimWaveFile());
  EXPECT_EQ(GetWave(), bytes);
  Select(11, 10);
  ASSERT_TRUE(m_mathematics.TrimWaveFile());
  EXPECT_EQ(GetWave(), bytes);
}

TEST_F(WaveTrimming, ALongerHeaderIsReplacedButItsOffsetStays) {
  const auto samples = support::Noise(3000, 9000, 1);
  Open(support::WaveFileWithDataAt(60, 6000, support::BytesOf(samples)));
  Select(0, 1999);
  ASSERT_TRUE(m_mathematics.TrimWaveFile());
  EXPECT_EQ(GetWave(), support::WaveFile(std::span(samples).first(2000)));
  EXPECT_EQ(m_mathematics.m_dataOffset, 68);
}

/// Notes which files are opened.
class OpenedPaths final : public support::WatchedFileSystem {
 public:
  using WatchedFileSystem::WatchedFileSystem;

  [[nodiscard]] platform::Result<std::unique_ptr<platform::File>, platform::FileError> Open(
      std::u16string_view path, const platform::OpenMode& mode) override {
    m_paths.insert(std::u16string(path));
    return WatchedFileSystem::Open(path, mode);
  }

  /// All but `path`.
  [[nodiscard]] std::set<std::u16string> TakeOthers(std::u16string_view path) {
    m_paths.erase(std::u16string(path));
    return std::exchange(m_paths, {});
  }

 private:
  std::set<std::u16string> m_paths;
};

/// The trimming of recordings in any place.
class TrimmingPlace : public WaveTrimming {
 protected:
  void Trim(std::u16string_view path) {
    EXPECT_TRUE(m_files.PutFile(path, support::WaveFile(m_samples)));
    m_watched.m_wavePath = path;
    EXPECT_EQ(m_watched.LearnFile(0), voicemath::kLearned);
    EXPECT_LT(m_files.GetFile(path).value_or(support::Bytes()).size(), 2 * m_samples.size());
    EXPECT_TRUE(m_paths.TakeOthers(path).empty());
  }

  const support::Samples m_samples =
      support::Mixed(support::Noise(33075, 20, 1), 12000, support::SpeechLike(6000, 9000, 2));
  OpenedPaths m_paths{m_files};
  voicemath::CVoiceMathematics m_watched{m_paths, m_ui};
};

TEST_F(TrimmingPlace, IsTheRecordingAndNoOtherName) {
  Trim(u"/ann.wav");
  Trim(u"/" + std::u16string(251, u'x') + u".wav");
  ASSERT_TRUE(m_files.CreateFolder(u"\\Voices"));
  Trim(u"\\Voices\\ann.wav");
  EXPECT_EQ(m_files.ListFiles().size(), 3U);
}

TEST_F(TrimmingPlace, TakesNoFileOfTheUsers) {
  const support::Bytes users(100, std::byte{7});
  for (const std::u16string_view name :
       {u"/ann.wav.trimmed", u"/ann.wav.tmp", u"/.voxtrel-trimmed-0123456789abcdef"}) {
    ASSERT_TRUE(m_files.PutFile(name, users));
    Trim(u"/ann.wav");
    EXPECT_EQ(m_files.GetFile(name), users);
  }
}

TEST_F(WaveTrimming, ARecordingThatNeedsNoTrimmingIsFlushed) {
  support::Steps steps;
  support::WatchedFileSystem files(m_files, steps);
  voicemath::CVoiceMathematics mathematics(files, m_ui);
  PutWave(support::Constant(5000, 0));
  mathematics.m_wavePath = kWave;
  ASSERT_EQ(mathematics.LearnFile(0), voicemath::kLearned);
  EXPECT_EQ(steps, (support::Steps{"open for both, alone, existing", "flush", "close file"}));
}

TEST_F(WaveTrimming, ATrimmedRecordingIsOnTheMediumWhenItIsPublished) {
  support::Steps steps;
  support::WatchedFileSystem files(m_files, steps);
  voicemath::CVoiceMathematics mathematics(files, m_ui);
  PutWave(support::Mixed(support::Noise(33075, 20, 1), 12000, support::SpeechLike(6000, 9000, 2)));
  mathematics.m_wavePath = kWave;
  ASSERT_EQ(mathematics.LearnFile(0), voicemath::kLearned);
  EXPECT_EQ(steps.at(1), "open replacement");
  EXPECT_EQ(std::ranges::count(steps, "publish"), 1);
  EXPECT_EQ(std::ranges::count(steps, "flush"), 0) << "Publishing does it.";
}

TEST_F(WaveTrimming, AFullDiskKeepsTheOldRecordingAndSaysSo) {
  const auto bytes = support::WaveFile(
      support::Mixed(support::Noise(33075, 20, 1), 12000, support::SpeechLike(6000, 9000, 2)));
  PutWaveBytes(bytes);
  m_files.SetCapacity(bytes.size() + 1000);
  EXPECT_EQ(m_mathematics.LearnFile(0), voicemath::kNotProcessed);
  EXPECT_EQ(GetWave(), bytes);
  EXPECT_EQ(m_files.ListFiles().size(), 1U);
  EXPECT_EQ(m_ui.GetMessages().size(), 1U);
}

TEST_F(WaveTrimming, AProtectedRecordingIsLeftAsItIs) {
  const auto bytes = support::WaveFile(support::SpeechLike(33075, 9000, 2));
  PutWaveBytes(bytes);
  ASSERT_TRUE(m_files.SetReadOnly(kWave, true));
  EXPECT_EQ(m_mathematics.LearnFile(0), voicemath::kNotProcessed);
  // Opened for reading and writing as well, though nothing would be written.
  EXPECT_EQ(m_mathematics.ProcessFile(0), voicemath::kNotProcessed);
  EXPECT_EQ(m_mathematics.ReadFile(0), voicemath::kLearned);
  EXPECT_EQ(GetWave(), bytes);
}

TEST_F(WaveTrimming, LearningTrimsToTheSpeechAndComputesWhatIsLeft) {
  const auto samples =
      support::Mixed(support::Noise(33075, 20, 1), 12000, support::SpeechLike(6000, 9000, 2));
  PutWave(samples);
  ASSERT_EQ(m_mathematics.LearnFile(0), voicemath::kLearned);
  const auto found = m_mathematics.m_detected;
  EXPECT_GT(found.first, 5000U);
  EXPECT_LT(found.last, 25000U);
  const auto kept =
      std::span<const std::int16_t>(samples).subspan(found.first, found.last - found.first + 1);
  EXPECT_EQ(GetWave(), support::WaveFile(kept));

  const auto learned = GetTemplate(0);
  ASSERT_EQ(m_mathematics.ProcessFile(1), voicemath::kLearned);
  EXPECT_EQ(GetTemplate(1), learned);
}

}  // namespace
