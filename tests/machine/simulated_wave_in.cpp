#include "tests/machine/simulated_wave_in.h"

#include <algorithm>
#include <span>
#include <utility>

#include "platform/wave_devices.h"

namespace machine {
namespace {

using platform::WaveHeader;
using platform::WaveResult;

class HeadlessDevice final : public platform::WaveInDevice {
 public:
  HeadlessDevice(WaveInScript script, std::shared_ptr<std::atomic<std::uint32_t>> openDevices)
      : m_script(std::move(script)), m_openDevices(std::move(openDevices)) {
    ++*m_openDevices;
  }
  ~HeadlessDevice() override { GiveUp(); }

  WaveResult Prepare(WaveHeader& header) override {
    if (const auto failure = Failure(m_script.prepare)) return *failure;
    return m_queue.Prepare(header);
  }

  WaveResult AddBuffer(WaveHeader& header) override {
    if (const auto failure = Failure(m_script.addBuffer)) return *failure;
    return m_queue.Add(header);
  }

  WaveResult Start() override {
    if (const auto failure = Failure(m_script.start)) return *failure;
    if (m_queue.Queued() == nullptr) return WaveResult::kNotPrepared;
    m_started = true;
    return WaveResult::kOk;
  }

  WaveResult Unprepare(WaveHeader& header) override {
    if (const auto failure = Failure(m_script.unprepare)) return *failure;
    if (m_queue.Holds(header)) {
      if (!m_started) return WaveResult::kStillPlaying;
      Receive(header);
      if (header.bytesRecorded < header.bufferLength) return WaveResult::kStillPlaying;
      EndRecording();
    }
    m_queue.Release(header);
    return WaveResult::kOk;
  }

  WaveResult Reset() override {
    if (const auto failure = Failure(m_script.reset)) return *failure;
    EndRecording();
    m_queue.Drop();
    return WaveResult::kOk;
  }

  WaveResult Close() override {
    GiveUp();
    return m_script.close;
  }

 private:
  [[nodiscard]] std::optional<WaveResult> Failure(WaveResult scripted) const {
    if (!m_openDevices) return WaveResult::kNoDevice;
    return scripted == WaveResult::kOk ? std::nullopt : std::optional(scripted);
  }

  void GiveUp() {
    if (!m_openDevices) return;
    --*m_openDevices;
    m_openDevices.reset();
    m_queue.Drop();
  }

  void Receive(WaveHeader& header) {
    std::uint32_t arrived = header.bufferLength;
    if (!m_script.arrivals.empty()) {
      const std::size_t call = std::min(m_calls++, m_script.arrivals.size() - 1);
      arrived = std::min(arrived, m_script.arrivals[call]);
    }
    const std::span<const std::byte> rest = std::span(m_script.sound).subspan(m_heard);
    const auto sound = rest.first(std::min<std::size_t>(rest.size(), arrived));
    const std::span<std::byte> memory(header.data, arrived);
    std::ranges::copy(sound, memory.begin());
    std::ranges::fill(memory.subspan(sound.size()), std::byte{0});
    header.bytesRecorded = arrived;
    m_received = sound.size();
  }

  void EndRecording() {
    m_heard += std::exchange(m_received, 0);
    m_calls = 0;
    m_started = false;
  }

  const WaveInScript m_script;
  std::shared_ptr<std::atomic<std::uint32_t>> m_openDevices;  ///< Null once closed.
  platform::WaveQueue m_queue;
  bool m_started = false;      ///< Never without a queued header.
  std::size_t m_calls = 0;     ///< Of Unprepare, for the queued header since Start.
  std::size_t m_received = 0;  ///< Bytes of the sound that are in the queued header.
  std::size_t m_heard = 0;     ///< Bytes of the sound that earlier headers have taken.
};

}  // namespace

SimulatedWaveIn::SimulatedWaveIn(WaveInScript script) : m_script(std::move(script)) {}

void SimulatedWaveIn::SetScript(WaveInScript script) {
  const std::lock_guard lock(m_mutex);
  m_script = std::move(script);
}

std::uint32_t SimulatedWaveIn::GetDeviceCount() {
  const std::lock_guard lock(m_mutex);
  return m_script.deviceCount;
}

platform::Result<std::unique_ptr<platform::WaveInDevice>, platform::WaveResult>
SimulatedWaveIn::Open(const platform::WaveFormat& format) {
  const std::lock_guard lock(m_mutex);
  m_askedFormat = format;
  if (format.formatTag != platform::kFormatTagPcm) return platform::Failure(WaveResult::kBadFormat);
  if (m_script.deviceCount == 0) return platform::Failure(WaveResult::kNoDevice);
  if (m_script.open != WaveResult::kOk) return platform::Failure(m_script.open);
  return std::make_unique<HeadlessDevice>(m_script, m_openDevices);
}

std::uint32_t SimulatedWaveIn::OpenDevices() const { return *m_openDevices; }

std::optional<platform::WaveFormat> SimulatedWaveIn::AskedFormat() const {
  const std::lock_guard lock(m_mutex);
  return m_askedFormat;
}

}  // namespace machine
