#include "backends/pulse/pulse_wave_in.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "backends/pulse/capture_buffer.h"
#include "backends/pulse/connection.h"
#include "backends/pulse/quiet_library.h"
#include "backends/pulse/record_device.h"
#include "backends/pulse/record_stream.h"
#include "backends/pulse/sample_spec.h"

namespace pulse {
namespace {

using platform::WaveResult;
using std::chrono::steady_clock;

// For a source that has to wake up. One that delivers nothing at all must not hold up the recording
// any longer; it is recorded as silence.
constexpr std::chrono::milliseconds kWarmUpLimit(1000);

// What the source could not deliver in time is filled up with zeros, which are silence only in
// samples of this width.
constexpr std::uint16_t kBits = 16;

}  // namespace

PulseWaveIn::PulseWaveIn() { KeepLibraryQuiet(); }

std::uint32_t PulseWaveIn::GetDeviceCount() {
  const Deadline deadline = steady_clock::now() + kCallLimit;
  const auto connection = Connection::Open(deadline);
  return connection ? connection->FindInputs(deadline).value_or(Inputs{}).count : 0;
}

platform::OpenedWaveIn PulseWaveIn::Open(const platform::WaveFormat& format) {
  const auto sampleSpec = ToSampleSpec(format);
  if (!sampleSpec || format.bitsPerSample != kBits) return {nullptr, WaveResult::kBadFormat};
  const Deadline deadline = steady_clock::now() + kCallLimit;
  auto connection = Connection::Open(deadline);
  if (!connection) return {nullptr, WaveResult::kNoDevice};
  const auto inputs = connection->FindInputs(deadline);
  if (!inputs || inputs->count == 0) return {nullptr, WaveResult::kNoDevice};
  auto buffer = std::make_unique<CaptureBuffer>();
  auto stream = RecordStream::Open(*connection, inputs->preferred, *buffer, *sampleSpec, deadline);
  if (!stream) return {nullptr, WaveResult::kNoDevice};
  stream->WaitForFirstData(std::min(deadline, steady_clock::now() + kWarmUpLimit));
  return {
      std::make_unique<RecordDevice>(std::move(connection), std::move(buffer), std::move(stream)),
      WaveResult::kOk};
}

}  // namespace pulse
