#include "backends/pulse/pulse_sound.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>

#include "backends/pulse/connection.h"
#include "backends/pulse/player.h"
#include "backends/pulse/recorder.h"
#include "backends/text/utf.h"

namespace pulse {
namespace {

using platform::WaveResult;
using std::chrono::steady_clock;

// For a source that has to wake up. One that delivers nothing at all must not hold up the recording
// any longer; it is recorded as silence.
constexpr std::chrono::milliseconds kWarmUpLimit(1000);

// What the source could not deliver in time is filled up with zeros, which are silence only in
// samples of this width.
constexpr std::uint16_t kRecordedBits = 16;

pa_sample_format_t ToSampleFormat(std::uint16_t bitsPerSample) {
  switch (bitsPerSample) {
    case 8:
      return PA_SAMPLE_U8;
    case 16:
      return PA_SAMPLE_S16LE;
    case 24:
      return PA_SAMPLE_S24LE;
    case 32:
      return PA_SAMPLE_S32LE;
    default:
      return PA_SAMPLE_INVALID;
  }
}

/// Returns the format in the library's terms. Fails with kBadFormat if the library has none for it.
Result<pa_sample_spec> ToSampleSpec(const platform::WaveFormat& format) {
  if (!platform::IsWholeBytePcm(format) || format.channels > PA_CHANNELS_MAX) {
    return platform::Failure(WaveResult::kBadFormat);
  }
  const pa_sample_spec sampleSpec{ToSampleFormat(format.bitsPerSample), format.samplesPerSecond,
                                  static_cast<std::uint8_t>(format.channels)};
  if (!LoadLibrary()) return platform::Failure(WaveResult::kNoDevice);
  if (pa_sample_spec_valid(&sampleSpec) == 0) return platform::Failure(WaveResult::kBadFormat);
  return sampleSpec;
}

Result<std::unique_ptr<Recorder>> OpenRecorder(const pa_sample_spec& sampleSpec,
                                               const ChosenInput& getChosen) {
  const Deadline deadline = steady_clock::now() + kCallLimit;
  auto connection = Connection::Open(deadline);
  if (!connection) return platform::Failure(connection.error());
  const auto inputs = (*connection)->FindInputs(deadline);
  if (!inputs) return platform::Failure(inputs.error());
  if (inputs->all.empty()) return platform::Failure(WaveResult::kNoDevice);
  const std::string chosen = getChosen ? text::ToUtf8(getChosen()) : std::string();
  const std::string source = inputs->Choose(chosen);
  const bool isServersChoice = source != chosen && source == inputs->serversDefault;
  auto recorder = std::make_unique<Recorder>();
  const auto connected = recorder->Connect(
      std::move(*connection), isServersChoice ? std::string() : source, sampleSpec, deadline);
  if (!connected) return platform::Failure(connected.error());
  // A microphone that slept begins with a moment of nothing. It must not be that of the name.
  recorder->AwaitSound(std::min(deadline, steady_clock::now() + kWarmUpLimit));
  return recorder;
}

Result<std::unique_ptr<Player>> OpenPlayer(const pa_sample_spec& sampleSpec) {
  const Deadline deadline = steady_clock::now() + kCallLimit;
  auto connection = Connection::Open(deadline);
  if (!connection) return platform::Failure(connection.error());
  auto player = std::make_unique<Player>(sampleSpec);
  const auto connected = player->Connect(std::move(*connection), deadline);
  if (!connected) return platform::Failure(connected.error());
  return player;
}

}  // namespace

PulseWaveIn::PulseWaveIn(ChosenInput getChosen) : m_getChosen(std::move(getChosen)) {
  KeepLibraryQuiet();
}

std::uint32_t PulseWaveIn::GetDeviceCount() {
  const Deadline deadline = steady_clock::now() + kCallLimit;
  const auto connection = Connection::Open(deadline);
  const Inputs inputs =
      connection ? (*connection)->FindInputs(deadline).value_or(Inputs{}) : Inputs{};
  return static_cast<std::uint32_t>(inputs.all.size());
}

platform::Result<std::unique_ptr<platform::WaveInDevice>, platform::WaveResult> PulseWaveIn::Open(
    const platform::WaveFormat& format) {
  const auto sampleSpec = ToSampleSpec(format);
  if (!sampleSpec || format.bitsPerSample != kRecordedBits) {
    return platform::Failure(WaveResult::kBadFormat);
  }
  return OpenRecorder(*sampleSpec, m_getChosen);
}

PulseWaveOut::PulseWaveOut() { KeepLibraryQuiet(); }

platform::Result<std::unique_ptr<platform::WaveOutDevice>, platform::WaveResult> PulseWaveOut::Open(
    const platform::WaveFormat& format) {
  const auto sampleSpec = ToSampleSpec(format);
  if (!sampleSpec) return platform::Failure(sampleSpec.error());
  return OpenPlayer(*sampleSpec);
}

}  // namespace pulse
