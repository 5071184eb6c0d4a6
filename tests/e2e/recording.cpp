#include "tests/e2e/recording.h"

#include <thread>

namespace e2e {
namespace {

using platform::WaveResult;
using std::chrono::steady_clock;

// Far above what any device needs for the short recordings of the tests, however busy the machine.
constexpr std::chrono::seconds kRecordingLimit(60);
constexpr std::chrono::milliseconds kRecordingPollInterval(5);

}  // namespace

WaveResult StartRecording(platform::WaveInDevice& device, Recording& recording) {
  WaveResult result = device.Prepare(recording.header);
  if (result == WaveResult::kOk) result = device.AddBuffer(recording.header);
  if (result == WaveResult::kOk) result = device.Start();
  return result;
}

WaveResult UnprepareWhilePlaying(platform::WaveInDevice& device, platform::WaveHeader& header) {
  const auto deadline = steady_clock::now() + kRecordingLimit;
  WaveResult result = device.Unprepare(header);
  while (result == WaveResult::kStillPlaying && steady_clock::now() < deadline) {
    std::this_thread::sleep_for(kRecordingPollInterval);
    result = device.Unprepare(header);
  }
  return result;
}

bool AwaitBytes(platform::WaveInDevice& device, platform::WaveHeader& header, std::uint32_t bytes) {
  const auto deadline = steady_clock::now() + kRecordingLimit;
  while (header.bytesRecorded < bytes && steady_clock::now() < deadline) {
    if (device.Unprepare(header) != WaveResult::kStillPlaying) break;
    std::this_thread::sleep_for(kRecordingPollInterval);
  }
  return header.bytesRecorded >= bytes;
}

}  // namespace e2e
