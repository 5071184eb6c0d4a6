#include "backends/pulse/pulse_wave_out.h"

#include <chrono>
#include <utility>

#include "backends/pulse/connection.h"
#include "backends/pulse/play_device.h"
#include "backends/pulse/playback_stream.h"
#include "backends/pulse/quiet_library.h"
#include "backends/pulse/sample_spec.h"

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
