#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "audio/wave_device.h"
#include "backends/headless/headless_system.h"
#include "backends/headless/headless_ui.h"
#include "backends/posix/posix_file_system.h"
#include "backends/posix/posix_threads.h"
#include "backends/pulse/pulse_sound.h"
#include "tests/e2e/ear.h"
#include "tests/e2e/playing.h"
#include "tests/e2e/pulse_server.h"
#include "tests/e2e/sound_session.h"
#include "tests/e2e/text_file.h"
#include "tests/machine/memory_registry.h"
#include "tests/machine/simulated_contacts.h"
#include "tests/machine/simulated_wave_in.h"
#include "tests/support/riff.h"
#include "tests/support/temp_folder.h"

namespace {

using e2e::PulseInput;
using e2e::PulseServer;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::size_t kHeaderBytes = 44;

// Far above what a sample of three seconds and the limits of the calls take: the machine may be
// busy.
constexpr milliseconds kPatience(60000);

/// The player with the real file system, clock and sound server.
class WavePlayerAndSoundServer : public testing::Test {
 protected:
  WavePlayerAndSoundServer() {
    std::filesystem::copy_file(std::filesystem::path(VOXTREL_SAMPLES_DIR) / "anna_1.wav",
                               m_root.Path() / "name.wav");
  }

  void StartServer() {
    m_server = PulseServer::Start(m_session, {.input = PulseInput::kEcho});
    ASSERT_TRUE(m_server);
    m_ear.emplace();
    ASSERT_TRUE(m_ear->IsListening());
  }

  [[nodiscard]] int Play() {
    const auto begin = steady_clock::now();
    const int code = m_device.Play(u"\\name.wav");
    EXPECT_LT(steady_clock::now() - begin, kPatience);
    EXPECT_TRUE(m_ui.GetMessages().empty());
    return code;
  }

  /// The samples of the file.
  [[nodiscard]] std::vector<std::byte> Samples() const {
    const std::string file = e2e::ReadText(m_root.Path() / "name.wav");
    const auto samples = std::as_bytes(std::span(file)).subspan(kHeaderBytes);
    return {samples.begin(), samples.end()};
  }

  /// Waits on a thread of its own until the sample's beginning was heard, then acts.
  template <typename Action>
  [[nodiscard]] std::jthread WhenItIsHeard(Action action) {
    return std::jthread([this, action] {
      // The sample begins with the noise of its room, by which it differs from silence.
      EXPECT_TRUE(m_ear->Awaits(std::span(m_samples).first(2000)));
      action();
    });
  }

  e2e::SoundSession m_session;
  support::TempFolder m_root;
  std::unique_ptr<PulseServer> m_server;
  std::optional<e2e::Ear> m_ear;
  posix::PosixFileSystem m_files{m_root.Text()};
  machine::SimulatedWaveIn m_waveIn;
  posix::PosixClock m_clock;
  posix::PosixThreads m_threads;
  headless::HeadlessProcess m_process;
  headless::HeadlessShell m_shell;
  headless::HeadlessUi m_ui;
  machine::MemoryRegistry m_registry;
  machine::SimulatedContacts m_contacts;
  pulse::PulseWaveOut m_waveOut;
  audio::WaveDevice m_device{platform::Platform{m_files, m_waveIn, m_clock, m_threads, m_process,
                                                m_ui, m_registry, m_contacts, m_waveOut, m_shell}};
  std::vector<std::byte> m_samples;
};

TEST_F(WavePlayerAndSoundServer, SampleIsHeardToItsEnd) {
  StartServer();
  EXPECT_EQ(Play(), audio::kPlayed);
  EXPECT_TRUE(m_ear->Awaits(Samples()));
}

TEST_F(WavePlayerAndSoundServer, NameOfHalfASecondIsNotCutOffByTheWayThroughTheServer) {
  // The player waits for 500 ms in all, of which this takes 494.
  const auto sound = e2e::Noise(10900, 1);
  const auto file = support::RiffWave(e2e::kRecordingFormat, sound);
  std::ofstream(m_root.Path() / "name.wav", std::ios::binary)
      .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
  StartServer();
  EXPECT_EQ(Play(), audio::kPlayed);
  EXPECT_TRUE(m_ear->Awaits(sound));
}

TEST_F(WavePlayerAndSoundServer, WithoutAServerTheOutputCannotBeOpened) {
  EXPECT_EQ(Play(), audio::kOutputNotOpened);
}

TEST_F(WavePlayerAndSoundServer, ServerThatDoesNotAnswerCountsAsNone) {
  StartServer();
  m_server->Freeze();
  EXPECT_EQ(Play(), audio::kOutputNotOpened);
}

TEST_F(WavePlayerAndSoundServer, ServerThatDiesHalfWayHoldsNobodyUp) {
  StartServer();
  m_samples = Samples();
  const auto kill = WhenItIsHeard([this] { m_server->Kill(); });
  EXPECT_EQ(Play(), audio::kNotHeardToEnd);
}

TEST_F(WavePlayerAndSoundServer, ServerThatFreezesHalfWayHoldsNobodyUp) {
  StartServer();
  m_samples = Samples();
  const auto freeze = WhenItIsHeard([this] { m_server->Freeze(); });
  EXPECT_EQ(Play(), audio::kNotHeardToEnd);
}

}  // namespace
