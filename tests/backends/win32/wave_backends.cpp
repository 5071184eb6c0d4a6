// The devices of the system under Wine, which plays and records through the sound server that
// tests/windows/wave_contract.py starts.

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "backends/win32/win32_sound.h"
#include "tests/contract/wave_in_backends.h"
#include "tests/contract/wave_out_backends.h"

namespace contract {
namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds kLimit(30);
constexpr std::chrono::milliseconds kPoll(10);

/// Returns the folder that the test shares with who has started it.
std::filesystem::path Shared() { return std::getenv("VOXTREL_SHARED_FOLDER"); }

template <typename Holds>
bool Await(Holds holds) {
  const auto deadline = steady_clock::now() + kLimit;
  while (!holds()) {
    if (steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(kPoll);
  }
  return true;
}

/// Asks for the end of the sound server, and waits for it.
void EndServer() {
  const auto asked = Shared() / "end_server";
  std::ofstream(asked) << "now";
  static_cast<void>(Await([&] { return !std::filesystem::exists(asked); }));
}

class WindowsWaveIn final : public WaveInBackend {
 public:
  platform::WaveIn& Input() override { return m_input; }
  void LetSoundPass() override { std::this_thread::sleep_for(std::chrono::milliseconds(100)); }
  void Unplug() override { EndServer(); }

 private:
  win32::Win32WaveIn m_input;
};

class WindowsWaveOut final : public WaveOutBackend {
 public:
  platform::WaveOut& Output() override { return m_output; }
  bool Hears(std::span<const std::byte> sound) override {
    const std::string wanted(reinterpret_cast<const char*>(sound.data()), sound.size());
    return Await([&] {
      std::ifstream file(Shared() / "heard", std::ios::binary);
      const std::string heard((std::istreambuf_iterator<char>(file)),
                              std::istreambuf_iterator<char>());
      return heard.find(wanted) != std::string::npos;
    });
  }
  void Unplug() override { EndServer(); }

 private:
  win32::Win32WaveOut m_output;
};

}  // namespace

std::ostream& operator<<(std::ostream& stream, const WaveInBackendKind& kind) {
  return stream << kind.name;
}

std::ostream& operator<<(std::ostream& stream, const WaveOutBackendKind& kind) {
  return stream << kind.name;
}

std::vector<WaveInBackendKind> AllWaveInBackends() {
  return {{"Windows",
           []() -> std::unique_ptr<WaveInBackend> { return std::make_unique<WindowsWaveIn>(); }}};
}

std::vector<WaveOutBackendKind> AllWaveOutBackends() {
  return {{"Windows",
           []() -> std::unique_ptr<WaveOutBackend> { return std::make_unique<WindowsWaveOut>(); }}};
}

// What the microphone of the sound server hears again and again.
const std::vector<std::byte>& Melody() {
  static const std::vector<std::byte> kMelody = [] {
    std::ifstream file(Shared() / "melody", std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)),
                            std::istreambuf_iterator<char>());
    const auto* const first = reinterpret_cast<const std::byte*>(bytes.data());
    return std::vector<std::byte>(first, first + bytes.size());
  }();
  return kMelody;
}

}  // namespace contract
