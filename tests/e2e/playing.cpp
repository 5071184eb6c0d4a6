#include "tests/e2e/playing.h"

#include <chrono>
#include <random>
#include <thread>

namespace e2e {
namespace {

using platform::WaveResult;
using std::chrono::steady_clock;

// Far above what any device needs for the short sounds of the tests, however busy the machine.
constexpr std::chrono::seconds kPlayingLimit(60);
constexpr std::chrono::milliseconds kPlayingPollInterval(5);

}  // namespace

std::vector<std::byte> Noise(std::size_t count, std::uint32_t seed) {
  std::minstd_rand random(seed);
  std::vector<std::byte> bytes(count);
  for (std::byte& byte : bytes) byte = static_cast<std::byte>(random() >> 8U & 0xFFU);
  return bytes;
}

WaveResult StartPlaying(platform::WaveOutDevice& device, Sound& sound) {
  const WaveResult result = device.Prepare(sound.header);
  return result == WaveResult::kOk ? device.Write(sound.header) : result;
}

WaveResult UnprepareWhilePlaying(platform::WaveOutDevice& device, Sound& sound) {
  const auto deadline = steady_clock::now() + kPlayingLimit;
  WaveResult result = device.Unprepare(sound.header);
  while (result == WaveResult::kStillPlaying && steady_clock::now() < deadline) {
    std::this_thread::sleep_for(kPlayingPollInterval);
    result = device.Unprepare(sound.header);
  }
  return result;
}

}  // namespace e2e
