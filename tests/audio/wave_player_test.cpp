#include <algorithm>
#include <initializer_list>

#include "tests/audio/logging_wave_out.h"
#include "tests/audio/recorder_fixture.h"
#include "tests/support/signals.h"

namespace {

using platform::WaveResult;

class WavePlayer : public RecorderFixture {
 protected:
  int PlayBytes(const support::Bytes& bytes) {
    EXPECT_TRUE(m_files.PutFile(kPath, bytes));
    const int code = m_device.Play(kPath);
    EXPECT_EQ(m_waveOut.CountOpenDevices(), 0);
    EXPECT_EQ(m_files.CountOpenHandles(), 0U);
    return code;
  }
  static support::Bytes Good() { return support::WaveFile(support::Noise(1000, 9000, 1)); }
  static support::Bytes With(std::size_t at, std::initializer_list<int> values) {
    support::Bytes bytes = Good();
    std::ranges::transform(values, bytes.begin() + static_cast<std::ptrdiff_t>(at),
                           [](int value) { return static_cast<std::byte>(value); });
    return bytes;
  }
};

TEST_F(WavePlayer, HandsTheSamplesToTheDeviceInTheFormatOfTheFile) {
  EXPECT_EQ(PlayBytes(Good()), audio::kPlayed);
  const auto played = m_waveOut.GetPlayed();
  ASSERT_EQ(played.size(), 1U);
  EXPECT_EQ(played[0].bytes, support::BytesOf(support::Noise(1000, 9000, 1)));
  EXPECT_EQ(played[0].format.formatTag, 1);
  EXPECT_EQ(played[0].format.channels, 1);
  EXPECT_EQ(played[0].format.samplesPerSecond, 11025U);
  EXPECT_EQ(played[0].format.averageBytesPerSecond, 11025U) << "The rate once more, deliberately.";
  EXPECT_EQ(played[0].format.blockAlign, 2);
  EXPECT_EQ(played[0].format.bitsPerSample, 16);
  EXPECT_TRUE(m_ui.GetMessages().empty());
}

TEST_F(WavePlayer, WaitsAboutTwiceTheLengthOfAThreeSecondRecording) {
  EXPECT_EQ(PlayBytes(support::WaveFile(support::Constant(33075, 0))), audio::kPlayed);
  EXPECT_EQ(m_clock.GetSleeps(), std::vector<std::uint32_t>{6300});
}

TEST_F(WavePlayer, DividesBeforeItMultiplies) {
  // 11,024 bytes are less than a second's 11,025 samples.
  EXPECT_EQ(PlayBytes(support::WaveFile(support::Constant(5490, 0))), audio::kPlayed);
  EXPECT_EQ(m_clock.GetSleeps(), std::vector<std::uint32_t>{300});
}

TEST_F(WavePlayer, WaitsOnceMoreForADeviceThatIsStillPlaying) {
  m_waveOut.SetScript({.stillPlaying = 1});
  EXPECT_EQ(PlayBytes(Good()), audio::kPlayed);
  EXPECT_EQ(m_clock.GetSleeps(), (std::vector<std::uint32_t>{300, 200}));
}

TEST_F(WavePlayer, CutsOffWhatIsStillPlayingThenAndSaysSo) {
  m_waveOut.SetScript({.stillPlaying = 100});
  EXPECT_EQ(PlayBytes(Good()), audio::kNotHeardToEnd);
  EXPECT_EQ(m_clock.GetSleeps(), (std::vector<std::uint32_t>{300, 200}));
}

TEST_F(WavePlayer, ADeviceThatWentAwayDidNotPlayToTheEnd) {
  m_waveOut.SetScript({.unprepare = WaveResult::kNoDevice});
  EXPECT_EQ(PlayBytes(Good()), 11);
  EXPECT_TRUE(m_ui.GetMessages().empty());
}

TEST_F(WavePlayer, AFileThatCannotBeOpenedIsOne) {
  EXPECT_EQ(m_device.Play(u"/missing.wav"), audio::kSoundNotOpened);
}

TEST_F(WavePlayer, EachFaultOfTheFileHasItsCode) {
  EXPECT_EQ(PlayBytes({}), audio::kSoundTooShort);
  EXPECT_EQ(PlayBytes(support::Bytes(43)), audio::kSoundTooShort);
  EXPECT_EQ(PlayBytes(With(0, {'r'})), audio::kSoundNoRiff);
  EXPECT_EQ(PlayBytes(With(8, {'w'})), audio::kSoundNoWave);
  EXPECT_EQ(PlayBytes(With(20, {3, 0})), audio::kSoundNotPcm);
  EXPECT_EQ(PlayBytes(With(36, {'D'})), audio::kSoundNoData);
  EXPECT_EQ(PlayBytes(With(40, {0xFF, 0xFF, 0xFF, 0xFF})), audio::kSoundNoData);
  EXPECT_TRUE(m_waveOut.GetPlayed().empty());
}

TEST_F(WavePlayer, TheFirstOfTwoFaultsGivesTheCode) {
  support::Bytes bytes = With(0, {'r'});
  bytes[8] = std::byte{'w'};
  EXPECT_EQ(PlayBytes(bytes), audio::kSoundNoRiff);
  bytes = With(20, {3});
  bytes[8] = std::byte{'w'};
  EXPECT_EQ(PlayBytes(bytes), audio::kSoundNoWave);
  bytes = With(20, {3});
  bytes[36] = std::byte{'D'};
  EXPECT_EQ(PlayBytes(bytes), audio::kSoundNotPcm);
  m_waveOut.SetScript({.open = WaveResult::kNoDevice});
  EXPECT_EQ(PlayBytes(With(36, {'D'})), audio::kSoundNoData);
}

TEST_F(WavePlayer, AFileThatAnotherProgramReadsIsNotOpened) {
  ASSERT_TRUE(m_files.PutFile(kPath, Good()));
  auto held = m_files.Open(kPath, {platform::FileAccess::kRead, platform::FileShare::kRead,
                                   platform::FileCreation::kOpenExisting});
  ASSERT_TRUE(held);
  EXPECT_EQ(m_device.Play(kPath), audio::kSoundNotOpened) << "The file is not shared.";
  held->reset();
  EXPECT_EQ(m_device.Play(kPath), audio::kPlayed);
}

TEST_F(WavePlayer, LooksForTheDataAtMultiplesOfFourAlone) {
  support::Bytes bytes = support::WaveFile(support::Constant(1000, 0));
  bytes.insert(bytes.begin() + 36, 10, std::byte{});
  ASSERT_EQ(bytes[46], std::byte{'d'});
  EXPECT_EQ(PlayBytes(bytes), audio::kSoundNoData);
  bytes.insert(bytes.begin() + 36, 2, std::byte{});
  EXPECT_EQ(PlayBytes(bytes), audio::kPlayed);
}

TEST_F(WavePlayer, TakesTheFormatFromTheFile) {
  support::Bytes bytes = With(22, {2, 0, 0x40, 0x1F, 0, 0});
  bytes[32] = std::byte{4};
  EXPECT_EQ(PlayBytes(bytes), audio::kPlayed);
  bytes = With(32, {1, 0, 8, 0});
  EXPECT_EQ(PlayBytes(bytes), audio::kPlayed);
  const auto played = m_waveOut.GetPlayed();
  ASSERT_EQ(played.size(), 2U);
  EXPECT_EQ(played[0].format.channels, 2);
  EXPECT_EQ(played[0].format.samplesPerSecond, 8000U);
  EXPECT_EQ(played[0].format.averageBytesPerSecond, 8000U);
  EXPECT_EQ(played[0].format.blockAlign, 4);
  EXPECT_EQ(played[0].format.bitsPerSample, 16);
  EXPECT_EQ(played[1].format.channels, 1);
  EXPECT_EQ(played[1].format.blockAlign, 1);
  EXPECT_EQ(played[1].format.bitsPerSample, 8);
}

TEST_F(WavePlayer, StopsTheDeviceBeforeItIsGivenUp) {
  ASSERT_TRUE(m_files.PutFile(kPath, Good()));
  LoggingWaveOut logging(m_waveOut);
  audio::WaveDevice device({m_files, m_waveIn, m_clock, m_threads, m_process, m_ui, m_registry,
                            m_contacts, logging, m_shell});
  EXPECT_EQ(device.Play(kPath), audio::kPlayed);
  EXPECT_EQ(logging.GetCalls(), (std::vector<std::string_view>{"Open", "Prepare", "Write",
                                                               "Unprepare", "Reset", "Close"}));
}

TEST_F(WavePlayer, HandsOverAPlainFormatAndABufferWithoutFlags) {
  ASSERT_TRUE(m_files.PutFile(kPath, Good()));
  LoggingWaveOut logging(m_waveOut);
  audio::WaveDevice device({m_files, m_waveIn, m_clock, m_threads, m_process, m_ui, m_registry,
                            m_contacts, logging, m_shell});
  EXPECT_EQ(device.Play(kPath), audio::kPlayed);
  EXPECT_EQ(logging.GetFormat().formatTag, 1);
  EXPECT_EQ(logging.GetFormat().extraSize, 0);
  EXPECT_EQ(logging.GetHeader().flags, 0U);
  EXPECT_EQ(logging.GetHeader().bufferLength, 2000U);
}

TEST_F(WavePlayer, TheFormatTagHasSixteenBits) {
  EXPECT_EQ(PlayBytes(With(20, {1, 1})), audio::kSoundNotPcm);
}

TEST_F(WavePlayer, TheFirstDataCountsEvenIfALaterOneWouldFit) {
  support::Bytes bytes = With(40, {0xFF, 0xFF, 0xFF, 0x7F});
  const support::Bytes whole = Good();
  bytes.insert(bytes.end(), whole.begin() + 36, whole.end());
  EXPECT_EQ(PlayBytes(bytes), audio::kSoundNoData);
}

TEST_F(WavePlayer, AHeaderThatHasNoEndIsRefused) {
  EXPECT_EQ(PlayBytes(With(22, {0, 0})), audio::kSoundNoData);
  EXPECT_EQ(PlayBytes(With(24, {0, 0, 0, 0})), audio::kSoundNoData);
  EXPECT_EQ(PlayBytes(With(32, {0, 0})), audio::kSoundNoData);
}

TEST_F(WavePlayer, FindsTheDataAfterTheHundredthByte) {
  support::Bytes bytes = Good();
  bytes.insert(bytes.begin() + 36, 100, std::byte{});
  EXPECT_EQ(PlayBytes(bytes), audio::kPlayed);
  EXPECT_EQ(m_waveOut.GetPlayed().at(0).bytes, support::BytesOf(support::Noise(1000, 9000, 1)));
}

TEST_F(WavePlayer, NeverReadsAfterTheEndOfTheFile) {
  // The id as the very last bytes, and with half a length after it.
  support::Bytes atTheEnd = support::WaveFile({});
  EXPECT_EQ(PlayBytes(support::Bytes(atTheEnd.begin(), atTheEnd.end())), audio::kNotPrepared)
      << "Found, but there is nothing to play.";
  support::Bytes cut = With(36, {'D', 'A', 'T', 'A'});
  for (const char letter : {'d', 'a', 't', 'a'}) {
    cut.push_back(static_cast<std::byte>(letter));
  }
  EXPECT_EQ(PlayBytes(cut), audio::kSoundNoData);
  cut.insert(cut.end(), 2, std::byte{});
  EXPECT_EQ(PlayBytes(cut), audio::kSoundNoData);
}

TEST_F(WavePlayer, PlaysWhatIsThereOfDataThatClaimsUpToTheFileLength) {
  support::Bytes bytes = Good();
  bytes[40] = static_cast<std::byte>(bytes.size() & 0xFFU);
  bytes[41] = static_cast<std::byte>(bytes.size() >> 8U);
  EXPECT_EQ(PlayBytes(bytes), audio::kPlayed);
  EXPECT_EQ(m_waveOut.GetPlayed().at(0).bytes.size(), 2000U);
}

TEST_F(WavePlayer, EachStepOfTheDeviceHasItsCodeAndReleasesEverything) {
  m_waveOut.SetScript({.open = WaveResult::kNoDevice});
  EXPECT_EQ(PlayBytes(Good()), audio::kOutputNotOpened);
  m_waveOut.SetScript({.prepare = WaveResult::kFailed});
  EXPECT_EQ(PlayBytes(Good()), audio::kNotPrepared);
  m_waveOut.SetScript({.write = WaveResult::kFailed});
  EXPECT_EQ(PlayBytes(Good()), audio::kNotWritten);
  EXPECT_TRUE(m_clock.GetSleeps().empty());
  m_waveOut.SetScript({.reset = WaveResult::kFailed, .close = WaveResult::kFailed});
  EXPECT_EQ(PlayBytes(Good()), audio::kPlayed);
}

TEST_F(WavePlayer, OfAFileThatIsNoSoundOnlyTheHeaderIsRead) {
  const auto callsFor = [this](const support::Bytes& bytes) {
    EXPECT_TRUE(m_files.PutFile(kPath, bytes));
    m_failingFiles.FailCall(100, support::Failing::kOnce);
    static_cast<void>(m_device.Play(kPath));
    return m_failingFiles.CountCalls();
  };
  const std::size_t callsForSound = callsFor(Good());
  EXPECT_EQ(callsFor(With(0, {'r'})), callsForSound - 1);
  EXPECT_EQ(callsFor(With(20, {3})), callsForSound - 1);
}

TEST_F(WavePlayer, EachFailingFileCallGivesACodeAndReleasesEverything) {
  ASSERT_TRUE(m_files.PutFile(kPath, Good()));
  bool anyFailed = true;
  for (std::size_t call = 1; anyFailed; ++call) {
    m_failingFiles.FailCall(call, support::Failing::kFromThenOn);
    const int code = m_device.Play(kPath);
    anyFailed = m_failingFiles.HasFailed();
    EXPECT_EQ(code == audio::kPlayed, !anyFailed) << call;
    EXPECT_EQ(m_files.CountOpenHandles(), 0U);
    ASSERT_LT(call, 20U);
  }
}

TEST_F(WavePlayer, BytesAfterTheDataAreNotPlayed) {
  support::Bytes bytes = Good();
  bytes.insert(bytes.end(), 500, std::byte{0x55});  // What another program adds after the samples.
  EXPECT_EQ(PlayBytes(bytes), audio::kPlayed);
  EXPECT_EQ(m_waveOut.GetPlayed().at(0).bytes, support::BytesOf(support::Noise(1000, 9000, 1)));
}

TEST_F(WavePlayer, LooksForTheDataUpToTheLastBytesOfALongFile) {
  const support::Bytes empty = support::WaveFile({});
  support::Bytes bytes = With(36, {'D', 'A', 'T', 'A'});
  ASSERT_EQ(bytes.size() % 4, 0U);
  EXPECT_EQ(PlayBytes(bytes), audio::kSoundNoData);
  bytes.insert(bytes.end(), empty.begin() + 36, empty.end());
  EXPECT_EQ(PlayBytes(bytes), audio::kNotPrepared) << "Found, but there is nothing to play.";
}

}  // namespace
