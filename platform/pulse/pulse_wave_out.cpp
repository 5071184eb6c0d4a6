#include "platform/pulse/pulse_wave_out.h"

#include <chrono>
#include <utility>

#include "platform/pulse/connection.h"
#include "platform/pulse/play_device.h"
#include "platform/pulse/playback_stream.h"
#include "platform/pulse/quiet_library.h"
#include "platform/pulse/sample_spec.h"

namespace pulse {

using platform::WaveResult;

PulseWaveOut::PulseWaveOut() { KeepLibraryQuiet(); }

platform::OpenedWaveOut PulseWaveOut::Open(const platform::WaveFormat& format) {
  const auto sampleSpec = ToSampleSpec(format);
  if (!sampleSpec) return {nullptr, WaveResult::kBadFormat};
  const Deadline deadline = std::chrono::steady_clock::now() + kCallLimit;
  auto connection = Connection::Open(deadline);
  if (!connection) return {nullptr, WaveResult::kNoDevice};
  auto stream = PlaybackStream::Open(*connection, *sampleSpec, deadline);
  if (!stream) return {nullptr, WaveResult::kNoDevice};
  return {std::make_unique<PlayDevice>(std::move(connection), std::move(stream), *sampleSpec),
          WaveResult::kOk};
}

}  // namespace pulse
