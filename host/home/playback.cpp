#include "host/home/playback.h"

#include <algorithm>
#include <utility>

#include "audio/wave_device.h"
#include "storage/device_paths.h"

// The player of the system sleeps for the length of the sound and cannot be stopped. So it gets
// this object as its clock and its loudspeaker: the clock wakes when the user stops, or when the
// loudspeaker has done.
namespace home {

using platform::WaveHeader;
using platform::WaveResult;

/// A loudspeaker that knows when it has done.
class Playback::Device final : public platform::WaveOutDevice {
 public:
  Device(std::unique_ptr<platform::WaveOutDevice> device, Playback& playback)
      : m_device(std::move(device)), m_playback(playback) {
    m_playback.m_device = this;
  }
  ~Device() override { m_playback.m_device = nullptr; }

  WaveResult Prepare(WaveHeader& header) override { return m_device->Prepare(header); }
  WaveResult Write(WaveHeader& header) override {
    m_header = &header;
    return m_device->Write(header);
  }
  WaveResult Unprepare(WaveHeader& header) override { return m_device->Unprepare(header); }
  WaveResult Reset() override { return m_device->Reset(); }
  WaveResult Close() override { return m_device->Close(); }

  [[nodiscard]] bool HasDone() const {
    return m_header != nullptr && m_device->Unprepare(*m_header) != WaveResult::kStillPlaying;
  }

 private:
  const std::unique_ptr<platform::WaveOutDevice> m_device;
  Playback& m_playback;
  WaveHeader* m_header = nullptr;
};

platform::Result<std::unique_ptr<platform::WaveOutDevice>, WaveResult> Playback::Open(
    const platform::WaveFormat& format) {
  auto opened = m_platform->waveOut.Open(format);
  if (!opened) {
    return opened;
  }
  return std::make_unique<Device>(std::move(*opened), *this);
}

void Playback::Sleep(std::uint32_t milliseconds) {
  constexpr std::uint32_t kStep = 50;
  while (milliseconds > 0 && !m_isStopped && !(m_device != nullptr && m_device->HasDone())) {
    // Loudspeakers report their end to nobody, so it is asked for in short steps.
    const std::uint32_t step = std::min(kStep, milliseconds);
    m_platform->clock.Sleep(step);
    milliseconds -= step;
  }
}

int Playback::Run(const platform::Platform& platform) {
  if (m_isStopped) {
    return audio::kPlayed;
  }
  m_platform = &platform;
  audio::WaveDevice player({platform.files, platform.waveIn, *this, platform.threads,
                            platform.process, platform.ui, platform.registry, platform.contacts,
                            *this, platform.shell});
  const int code = player.Play(storage::WavePath(m_tag));
  return m_isStopped ? audio::kPlayed : code;
}

}  // namespace home
