#include "tests/contract/wave_in_backends.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <random>
#include <thread>
#include <utility>

#include "backends/pulse/pulse_sound.h"
#include "backends/wave_file/file_sound.h"
#include "tests/e2e/pipe_microphone.h"
#include "tests/e2e/pulse_server.h"
#include "tests/e2e/recording.h"
#include "tests/e2e/sound_session.h"
#include "tests/machine/memory_file_system.h"
#include "tests/machine/simulated_wave_in.h"
#include "tests/support/riff.h"

namespace contract {
namespace {

constexpr std::uint32_t kRate = 11025;

// Longer than all the recordings of one case.
constexpr int kRepetitions = 8;

std::vector<std::byte> RepeatedMelody() {
  std::vector<std::byte> sound;
  for (int i = 0; i < kRepetitions; ++i) {
    sound.insert(sound.end(), Melody().begin(), Melody().end());
  }
  return sound;
}

class HeadlessBackend final : public WaveInBackend {
 public:
  explicit HeadlessBackend(std::vector<std::uint32_t> arrivals) {
    m_input.SetScript({.sound = RepeatedMelody(), .arrivals = std::move(arrivals)});
  }

  platform::WaveIn& Input() override { return m_input; }
  void Unplug() override { m_input.SetScript({.deviceCount = 0}); }

 private:
  machine::SimulatedWaveIn m_input;
};

class WaveFileBackend final : public WaveInBackend {
 public:
  WaveFileBackend() {
    m_files.PutFile(kPath, support::RiffWave(e2e::kRecordingFormat, RepeatedMelody()));
  }

  platform::WaveIn& Input() override { return m_input; }
  void Unplug() override { static_cast<void>(m_files.Delete(kPath)); }

 private:
  static constexpr char16_t kPath[] = u"/melody.wav";

  machine::MemoryFileSystem m_files;
  wave_file::FileWaveIn m_input{m_files, kPath};
};

class PulseBackend final : public WaveInBackend {
 public:
  PulseBackend() {
    if (m_server) m_microphone.emplace(m_server->Pipe(), kRate, std::uint16_t{1}, Melody());
  }

  bool IsReady() const override { return m_microphone.has_value(); }
  platform::WaveIn& Input() override { return m_input; }
  void LetSoundPass() override { std::this_thread::sleep_for(std::chrono::milliseconds(100)); }
  void Unplug() override { m_server->Kill(); }

 private:
  e2e::SoundSession m_session;
  pulse::PulseWaveIn m_input;
  std::unique_ptr<e2e::PulseServer> m_server = e2e::PulseServer::Start(m_session);
  std::optional<e2e::PipeMicrophone> m_microphone;
};

}  // namespace

std::ostream& operator<<(std::ostream& stream, const WaveInBackendKind& kind) {
  return stream << kind.name;
}

std::vector<WaveInBackendKind> AllWaveInBackends() {
  return {
      {"Headless",
       []() -> std::unique_ptr<WaveInBackend> {
         return std::make_unique<HeadlessBackend>(std::vector<std::uint32_t>{});
       }},
      {"HeadlessThatTakesItsTime",
       []() -> std::unique_ptr<WaveInBackend> {
         return std::make_unique<HeadlessBackend>(std::vector<std::uint32_t>{0, 100, 1U << 31});
       }},
      {"WaveFile",
       []() -> std::unique_ptr<WaveInBackend> { return std::make_unique<WaveFileBackend>(); }},
      {"Pulse",
       []() -> std::unique_ptr<WaveInBackend> { return std::make_unique<PulseBackend>(); }},
  };
}

const std::vector<std::byte>& Melody() {
  static const std::vector<std::byte> kMelody = [] {
    std::minstd_rand random(1);
    std::vector<std::byte> bytes(std::size_t{2} * kRate);
    for (std::byte& byte : bytes) byte = static_cast<std::byte>(random() >> 8U & 0xFFU);
    return bytes;
  }();
  return kMelody;
}

}  // namespace contract
