#include "tests/contract/wave_out_backends.h"

#include <optional>

#include "backends/pulse/pulse_sound.h"
#include "backends/wave_file/file_sound.h"
#include "backends/wave_file/riff_file.h"
#include "tests/e2e/ear.h"
#include "tests/e2e/pulse_server.h"
#include "tests/e2e/sound_session.h"
#include "tests/machine/memory_file_system.h"
#include "tests/machine/simulated_wave_out.h"
#include "tests/support/watched_file_system.h"

namespace contract {
namespace {

using platform::WaveResult;

class HeadlessBackend final : public WaveOutBackend {
 public:
  explicit HeadlessBackend(int stillPlaying) { m_output.SetScript({.stillPlaying = stillPlaying}); }

  platform::WaveOut& Output() override { return m_output; }
  bool Hears(std::span<const std::byte> sound) override {
    std::vector<std::byte> heard;
    for (const auto& played : m_output.GetPlayed()) {
      heard.insert(heard.end(), played.bytes.begin(), played.bytes.end());
    }
    return e2e::Contains(heard, sound);
  }
  void Unplug() override { m_output.SetScript({.open = WaveResult::kNoDevice}); }

 private:
  machine::SimulatedWaveOut m_output;
};

class WaveFileBackend final : public WaveOutBackend {
 public:
  platform::WaveOut& Output() override { return m_output; }
  bool Hears(std::span<const std::byte> sound) override {
    const auto opened = m_memory.Open(kPath, {});
    if (!opened) return false;
    const auto layout = wave_file::ReadWaveFileLayout(**opened);
    if (!layout) return false;
    const auto file = m_memory.GetFile(kPath).value_or(std::vector<std::byte>());
    return e2e::Contains(std::span(file).subspan(layout->dataOffset, layout->dataBytes), sound);
  }
  void Unplug() override { m_files.FailCall(1, support::Failing::kFromThenOn); }

 private:
  static constexpr char16_t kPath[] = u"/heard.wav";

  machine::MemoryFileSystem m_memory;
  support::WatchedFileSystem m_files{m_memory};
  wave_file::FileWaveOut m_output{m_files, kPath};
};

class PulseBackend final : public WaveOutBackend {
 public:
  PulseBackend() {
    if (m_server) m_ear.emplace();
  }

  bool IsReady() override { return m_ear && m_ear->IsListening(); }
  platform::WaveOut& Output() override { return m_output; }
  bool Hears(std::span<const std::byte> sound) override { return m_ear->Awaits(sound); }
  void Unplug() override { m_server->Kill(); }

 private:
  e2e::SoundSession m_session;
  pulse::PulseWaveOut m_output;
  std::unique_ptr<e2e::PulseServer> m_server =
      e2e::PulseServer::Start(m_session, {.input = e2e::PulseInput::kEcho});
  std::optional<e2e::Ear> m_ear;
};

}  // namespace

std::ostream& operator<<(std::ostream& stream, const WaveOutBackendKind& kind) {
  return stream << kind.name;
}

std::vector<WaveOutBackendKind> AllWaveOutBackends() {
  return {
      {"Headless",
       []() -> std::unique_ptr<WaveOutBackend> { return std::make_unique<HeadlessBackend>(0); }},
      {"HeadlessThatTakesItsTime",
       []() -> std::unique_ptr<WaveOutBackend> { return std::make_unique<HeadlessBackend>(2); }},
      {"WaveFile",
       []() -> std::unique_ptr<WaveOutBackend> { return std::make_unique<WaveFileBackend>(); }},
      {"Pulse",
       []() -> std::unique_ptr<WaveOutBackend> { return std::make_unique<PulseBackend>(); }},
  };
}

}  // namespace contract
