#include "tests/machine/simulated_wave_out.h"

#include <optional>
#include <utility>

#include "platform/wave_devices.h"

namespace machine {

using platform::WaveHeader;
using platform::WaveResult;

class SimulatedOutDevice final : public platform::WaveOutDevice {
 public:
  SimulatedOutDevice(const platform::WaveFormat& format, const WaveOutScript& script,
                     std::shared_ptr<SimulatedWaveOut::State> state)
      : m_format(format), m_script(script), m_state(std::move(state)) {
    const std::lock_guard lock(m_state->mutex);
    ++m_state->openDevices;
  }
  ~SimulatedOutDevice() override { GiveUp(); }

  WaveResult Prepare(WaveHeader& header) override {
    if (const auto failure = Failure(m_script.prepare)) return *failure;
    return m_queue.Prepare(header);
  }

  WaveResult Write(WaveHeader& header) override {
    if (const auto failure = Failure(m_script.write)) return *failure;
    const WaveResult added = m_queue.Add(header);
    if (added == WaveResult::kOk) {
      const std::size_t played = header.bufferLength - header.bufferLength % m_format.blockAlign;
      const std::lock_guard lock(m_state->mutex);
      m_state->played.push_back({m_format, {header.data, header.data + played}});
    }
    return added;
  }

  WaveResult Unprepare(WaveHeader& header) override {
    if (const auto failure = Failure(m_script.unprepare)) return *failure;
    if (m_queue.Holds(header) && m_script.stillPlaying > 0) {
      --m_script.stillPlaying;
      return WaveResult::kStillPlaying;
    }
    m_queue.Release(header);
    return WaveResult::kOk;
  }

  WaveResult Reset() override {
    if (const auto failure = Failure(m_script.reset)) return *failure;
    m_queue.Drop();
    return WaveResult::kOk;
  }

  WaveResult Close() override {
    GiveUp();
    return m_script.close;
  }

 private:
  [[nodiscard]] std::optional<WaveResult> Failure(WaveResult scripted) const {
    if (!m_state) return WaveResult::kNoDevice;
    return scripted == WaveResult::kOk ? std::nullopt : std::optional(scripted);
  }

  void GiveUp() {
    m_queue.Drop();
    if (m_state) {
      const std::lock_guard lock(m_state->mutex);
      --m_state->openDevices;
    }
    m_state.reset();
  }

  platform::WaveFormat m_format;
  WaveOutScript m_script;
  platform::WaveQueue m_queue;
  std::shared_ptr<SimulatedWaveOut::State> m_state;  ///< Null once the device is given up.
};

void SimulatedWaveOut::SetScript(const WaveOutScript& script) {
  const std::lock_guard lock(m_mutex);
  m_script = script;
}

platform::Result<std::unique_ptr<platform::WaveOutDevice>, platform::WaveResult>
SimulatedWaveOut::Open(const platform::WaveFormat& format) {
  if (!platform::IsWholeBytePcm(format)) return platform::Failure(WaveResult::kBadFormat);
  const std::lock_guard lock(m_mutex);
  if (m_script.open != WaveResult::kOk) {
    return platform::Failure(m_script.open);
  }
  return std::make_unique<SimulatedOutDevice>(format, m_script, m_state);
}

std::vector<PlayedSound> SimulatedWaveOut::GetPlayed() const {
  const std::lock_guard lock(m_state->mutex);
  return m_state->played;
}

int SimulatedWaveOut::CountOpenDevices() const {
  const std::lock_guard lock(m_state->mutex);
  return m_state->openDevices;
}

}  // namespace machine
