#include "tests/e2e/recording.h"

#include <thread>

namespace e2e {
namespace {

using platform::WaveResult;
using std::chrono::steady_clock;

// Far above what any device needs for the short recordings of the tests.
constexpr std::chrono::seconds kLimit(10);
constexpr std::chrono::milliseconds kPollInterval(5);

}  // namespace

WaveResult StartRecording(platform::WaveInDevice& device, Recording& recording) {
  WaveResult result = device.Prepare(recording.header);
  if (result == WaveResult::kOk) result = device.AddBuffer(recording.header);
  if (result == WaveResult::kOk) result = device.Start();
  return result;
}

WaveResult UnprepareWhile(platform::WaveInDevice& device, Recording& recording, WaveResult answer) {
  const auto deadline = steady_clock::now() + kLimit;
  WaveResult result = device.Unprepare(recording.header);
  while (result == answer && steady_clock::now() < deadline) {
    std::this_thread::sleep_for(kPollInterval);
    result = device.Unprepare(recording.header);
  }
  return result;
}

bool AwaitSomeSound(platform::WaveInDevice& device, Recording& recording) {
  const auto deadline = steady_clock::now() + kLimit;
  while (recording.header.bytesRecorded == 0 && steady_clock::now() < deadline) {
    if (device.Unprepare(recording.header) != WaveResult::kStillPlaying) break;
    std::this_thread::sleep_for(kPollInterval);
  }
  return recording.header.bytesRecorded > 0;
}

}  // namespace e2e
