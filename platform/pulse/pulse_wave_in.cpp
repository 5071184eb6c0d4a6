#include "platform/pulse/pulse_wave_in.h"

#include <pulse/sample.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <utility>

#include "platform/pulse/capture_buffer.h"
#include "platform/pulse/connection.h"
#include "platform/pulse/record_device.h"
#include "platform/pulse/record_stream.h"

namespace pulse {
namespace {

using platform::WaveResult;
using std::chrono::steady_clock;

constexpr std::chrono::milliseconds kCallLimit(3000);

// For a source that has to wake up. One that delivers nothing at all must not hold up the recording
// any longer; it is recorded as silence.
constexpr std::chrono::milliseconds kWarmUpLimit(1000);

std::optional<pa_sample_spec> ToSampleSpec(const platform::WaveFormat& format) {
  if (format.formatTag != platform::kFormatTagPcm || format.bitsPerSample != 16 ||
      format.channels == 0 || format.channels > PA_CHANNELS_MAX ||
      format.blockAlign != format.channels * 2) {
    return std::nullopt;
  }
  const pa_sample_spec sampleSpec{PA_SAMPLE_S16LE, format.samplesPerSecond,
                                  static_cast<std::uint8_t>(format.channels)};
  if (pa_sample_spec_valid(&sampleSpec) == 0) return std::nullopt;
  return sampleSpec;
}

}  // namespace

PulseWaveIn::PulseWaveIn() {
  // The library has no call for this; it reads the variable at its first message.
  if (std::getenv("PULSE_LOG") == nullptr) setenv("PULSE_LOG_SYSLOG", "1", 1);
}

std::uint32_t PulseWaveIn::GetDeviceCount() {
  const Deadline deadline = steady_clock::now() + kCallLimit;
  const auto connection = Connection::Open(deadline);
  return connection ? connection->FindInputs(deadline).value_or(Inputs{}).count : 0;
}

platform::OpenedWaveIn PulseWaveIn::Open(const platform::WaveFormat& format) {
  const auto sampleSpec = ToSampleSpec(format);
  if (!sampleSpec) return {nullptr, WaveResult::kBadFormat};
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
