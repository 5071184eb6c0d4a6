#include "tests/e2e/ear.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace e2e {
namespace {

using platform::WaveResult;
using std::chrono::steady_clock;

// Longer than any test listens, however busy the machine.
constexpr std::size_t kTwoMinutes = 2646000;
constexpr std::chrono::seconds kEarLimit(60);
constexpr std::chrono::milliseconds kEarPollInterval(10);

}  // namespace

Ear::Ear() : m_recording(kTwoMinutes) {
  m_device = m_input.Open(kRecordingFormat).value();
  if (m_device && StartRecording(*m_device, m_recording) != WaveResult::kOk) m_device.reset();
  if (!m_device) ADD_FAILURE() << "There is nothing to listen to.";
}

std::span<const std::byte> Ear::Heard() {
  // Whatever it answers, what has arrived is there.
  if (m_device) static_cast<void>(m_device->Unprepare(m_recording.header));
  return m_recording.Sound();
}

bool Ear::HasHeard(std::span<const std::byte> sound) { return Contains(Heard(), sound); }

bool Ear::Awaits(std::span<const std::byte> sound) {
  const auto deadline = steady_clock::now() + kEarLimit;
  while (!HasHeard(sound)) {
    if (steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(kEarPollInterval);
  }
  return true;
}

bool Contains(std::span<const std::byte> heard, std::span<const std::byte> sound) {
  return std::search(heard.begin(), heard.end(), sound.begin(), sound.end()) != heard.end();
}

}  // namespace e2e
