#include "audio/wave_device.h"

#include <algorithm>
#include <span>

#include "tests/audio/recorder_fixture.h"

namespace {

using platform::WaveResult;

constexpr std::uint32_t kThreeSeconds = 3000;
constexpr std::size_t kThreeSecondBytes = 66150;

std::vector<std::byte> Sound(std::size_t bytes) {
  std::vector<std::byte> sound(bytes);
  for (std::size_t i = 0; i < bytes; ++i) {
    sound[i] = static_cast<std::byte>(i % 251 + 1);
  }
  return sound;
}

std::vector<std::byte> WithHeader(std::span<const std::byte> samples) {
  const auto header =
      audio::MakeWaveHeader(audio::MonoPcm(16, 11025), static_cast<std::uint32_t>(samples.size()));
  std::vector<std::byte> file(header.size() + samples.size());
  std::ranges::copy(samples, std::ranges::copy(header, file.begin()).out);
  return file;
}

class WaveDevice : public RecorderFixture {
 protected:
  void ExpectAllReleased() const {
    EXPECT_EQ(m_waveIn.OpenDevices(), 0U);
    EXPECT_EQ(m_files.CountOpenHandles(), 0U);
  }
};

TEST_F(WaveDevice, RecordsThreeSecondsIntoAFileWithItsHeader) {
  const auto sound = Sound(kThreeSecondBytes);
  m_waveIn.SetScript({.sound = sound});
  EXPECT_EQ(m_device.Record(kPath, kThreeSeconds), audio::kRecorded);
  EXPECT_EQ(GetFile().size(), 66194U);
  EXPECT_EQ(GetFile(), WithHeader(sound));
  EXPECT_EQ(m_device.GetRecordedBytes(), 66150U);
  EXPECT_EQ(m_clock.GetSleeps(), std::vector<std::uint32_t>{3000});
  EXPECT_EQ(m_waveIn.AskedFormat(), audio::MonoPcm(16, 11025));
  EXPECT_TRUE(m_ui.GetMessages().empty());
  ExpectAllReleased();
}

TEST_F(WaveDevice, WaitsOnceMoreForABufferThatIsStillPlaying) {
  const auto sound = Sound(kThreeSecondBytes);
  m_waveIn.SetScript({.sound = sound, .arrivals = {60000, 66150}});
  EXPECT_EQ(m_device.Record(kPath, kThreeSeconds), audio::kRecorded);
  EXPECT_EQ(m_clock.GetSleeps(), (std::vector<std::uint32_t>{3000, 100}));
  EXPECT_EQ(GetFile(), WithHeader(sound));
}

TEST_F(WaveDevice, TakesWhatHasArrivedWhenTheBufferIsStillNotFull) {
  const auto sound = Sound(kThreeSecondBytes);
  m_waveIn.SetScript({.sound = sound, .arrivals = {10, 4000}});
  EXPECT_EQ(m_device.Record(kPath, kThreeSeconds), audio::kRecorded);
  EXPECT_EQ(m_clock.GetSleeps(), (std::vector<std::uint32_t>{3000, 100}));
  EXPECT_EQ(GetFile(), WithHeader(std::span(sound).first(4000)));
  EXPECT_EQ(m_device.GetRecordedBytes(), 4000U);
  ExpectAllReleased();
}

TEST_F(WaveDevice, KeepsTheBufferOfADeviceThatReportsNothing) {
  m_waveIn.SetScript({.sound = {}, .arrivals = {0}});
  EXPECT_EQ(m_device.Record(kPath, kThreeSeconds), audio::kRecorded);
  // The buffer less the length of a header, deliberately.
  EXPECT_EQ(GetFile(), WithHeader(std::vector<std::byte>(66106)));
  EXPECT_EQ(GetFile().size(), 66150U);
}

TEST_F(WaveDevice, ADeviceThatIsLostWhileRecordingHasItsCodeAndLeavesNoFile) {
  m_waveIn.SetScript({.sound = Sound(kThreeSecondBytes), .unprepare = WaveResult::kNoDevice});
  EXPECT_EQ(m_device.Record(kPath, kThreeSeconds), 6);
  EXPECT_FALSE(m_files.GetFile(kPath));
  EXPECT_EQ(m_device.GetRecordedBytes(), 0U);
  EXPECT_TRUE(m_ui.GetMessages().empty()) << "The page shows the code.";
  ExpectAllReleased();
}

TEST_F(WaveDevice, NeverWritesMoreThanItsBuffer) {
  m_waveIn.SetScript({.sound = {}, .arrivals = {0}});
  EXPECT_EQ(m_device.Record(kPath, 100), audio::kRecorded);
  EXPECT_EQ(GetFile().size(), 44U + 2205U);
}

TEST_F(WaveDevice, WithoutADeviceSaysSoAndEndsTheProcess) {
  m_waveIn.SetScript({.deviceCount = 0});
  EXPECT_EQ(m_device.Record(kPath, kThreeSeconds), audio::kProcessEnded);
  EXPECT_EQ(m_process.GetExitCode(), 0);
  const auto messages = m_ui.GetMessages();
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_EQ(messages[0].box.text, u"There are no wave-record devices in you computer.");
  EXPECT_EQ(messages[0].box.caption, u"Zedra Voxtrel");
  EXPECT_EQ(messages[0].box.style, platform::MessageStyle::kTopmost);
  EXPECT_FALSE(m_files.GetFile(kPath)) << "The device is asked for before the file is made.";
  EXPECT_TRUE(m_clock.GetSleeps().empty());
}

TEST_F(WaveDevice, AFileThatCannotBeMadeHasItsMessageAndCode) {
  EXPECT_EQ(m_device.Record(u"\\missing\\name.wav", kThreeSeconds), audio::kFileNotCreated);
  const auto messages = m_ui.GetMessages();
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_EQ(messages[0].box.text, u"File :\\missing\\name.wav couldn't be creat");
  EXPECT_EQ(messages[0].box.caption, u"Zedra Voxtrel");
  EXPECT_EQ(messages[0].box.style, platform::MessageStyle::kTopmost);
  EXPECT_EQ(m_process.GetExitCode(), std::nullopt);
  EXPECT_EQ(m_waveIn.AskedFormat(), std::nullopt) << "The device is opened after the file is made.";
}

TEST_F(WaveDevice, EachStepOfStartingHasItsCodeAndReleasesEverything) {
  const struct {
    machine::WaveInScript script;
    int code;
  } cases[] = {
      {{.open = WaveResult::kBadFormat}, audio::kDeviceNotOpened},
      {{.prepare = WaveResult::kFailed}, audio::kBufferNotQueued},
      {{.addBuffer = WaveResult::kFailed}, audio::kBufferNotQueued},
      {{.start = WaveResult::kFailed}, audio::kNotStarted},
  };
  for (const auto& item : cases) {
    m_waveIn.SetScript(item.script);
    EXPECT_EQ(m_device.Record(kPath, kThreeSeconds), item.code);
    EXPECT_EQ(GetFile().size(), 0U) << "The file was made before and stays empty.";
    EXPECT_EQ(m_device.GetRecordedBytes(), 0U);
    ExpectAllReleased();
  }
  EXPECT_TRUE(m_clock.GetSleeps().empty());
  EXPECT_TRUE(m_ui.GetMessages().empty());
}

TEST_F(WaveDevice, ABufferBeyondItsLengthFieldCannotBeAllocated) {
  EXPECT_EQ(m_device.Record(kPath, 4'000'000'000U), audio::kNoBuffer);
  ExpectAllReleased();
}

TEST_F(WaveDevice, FailuresAfterTheRecordingDoNotLoseIt) {
  const auto sound = Sound(kThreeSecondBytes);
  m_waveIn.SetScript({.sound = sound, .reset = WaveResult::kFailed, .close = WaveResult::kFailed});
  EXPECT_EQ(m_device.Record(kPath, kThreeSeconds), audio::kRecorded);
  EXPECT_EQ(GetFile(), WithHeader(sound));
  ExpectAllReleased();
}

TEST_F(WaveDevice, EmptiesAnEarlierFileOfTheSameName) {
  ASSERT_TRUE(m_files.PutFile(kPath, Sound(100000)));
  m_waveIn.SetScript({.sound = Sound(kThreeSecondBytes)});
  EXPECT_EQ(m_device.Record(kPath, kThreeSeconds), audio::kRecorded);
  EXPECT_EQ(GetFile().size(), 66194U);
}

TEST_F(WaveDevice, AllocatesAsManyBytesAsTheTimeTakes) {
  for (const auto& [milliseconds, bytes] :
       {std::pair{3000U, 66150U}, {1U, 22U}, {0U, 0U}, {999U, 22027U}}) {
    const platform::WaveHeader* header = m_device.AllocBuffer(milliseconds);
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(header->bufferLength, bytes);
    EXPECT_EQ(header->bytesRecorded, 0U);
    EXPECT_EQ(header->flags, 0U);
    EXPECT_TRUE(std::all_of(header->data, header->data + bytes,
                            [](std::byte byte) { return byte == std::byte{}; }));
  }
}

TEST_F(WaveDevice, QueueingNeedsAnOpenDevice) {
  platform::WaveHeader* header = m_device.AllocBuffer(kThreeSeconds);
  ASSERT_NE(header, nullptr);
  EXPECT_EQ(m_device.QueueBuffer(*header), 1);
}

TEST_F(WaveDevice, CanRecordAgainAfterAnyOutcome) {
  m_waveIn.SetScript({.start = WaveResult::kFailed});
  EXPECT_EQ(m_device.Record(kPath, kThreeSeconds), audio::kNotStarted);
  m_waveIn.SetScript({.sound = Sound(kThreeSecondBytes)});
  EXPECT_EQ(m_device.Record(kPath, kThreeSeconds), audio::kRecorded);
  EXPECT_EQ(m_device.Record(kPath, kThreeSeconds), audio::kRecorded);
  EXPECT_EQ(GetFile().size(), 66194U);
}

}  // namespace
