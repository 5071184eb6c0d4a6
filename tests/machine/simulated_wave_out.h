#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/wave_devices.h"

namespace machine {

/// How a simulated wave output behaves.
struct WaveOutScript {
  /// How often Unprepare finds the sound still playing.
  int stillPlaying = 0;

  // If one of these is not kOk the operation fails with it and does nothing else. Close is the
  // exception: a device is given up even so.
  platform::WaveResult open = platform::WaveResult::kOk;
  platform::WaveResult prepare = platform::WaveResult::kOk;
  platform::WaveResult write = platform::WaveResult::kOk;
  platform::WaveResult unprepare = platform::WaveResult::kOk;
  platform::WaveResult reset = platform::WaveResult::kOk;
  platform::WaveResult close = platform::WaveResult::kOk;
};

/// One sound that was handed to a device.
struct PlayedSound {
  platform::WaveFormat format;
  std::vector<std::byte> bytes;
};

/// A wave output without a device, which keeps what it was given. It needs no time.
class SimulatedWaveOut final : public platform::WaveOut {
 public:
  /// Holds for devices opened from now on.
  void SetScript(const WaveOutScript& script);

  [[nodiscard]] platform::Result<std::unique_ptr<platform::WaveOutDevice>, platform::WaveResult>
  Open(const platform::WaveFormat& format) override;

  [[nodiscard]] std::vector<PlayedSound> GetPlayed() const;
  /// Devices that were opened and neither closed nor destroyed.
  [[nodiscard]] int CountOpenDevices() const;

 private:
  friend class SimulatedOutDevice;

  /// Shared with the devices, which may outlive this.
  struct State {
    std::mutex mutex;
    std::vector<PlayedSound> played;
    int openDevices = 0;
  };

  mutable std::mutex m_mutex;
  WaveOutScript m_script;
  std::shared_ptr<State> m_state = std::make_shared<State>();
};

}  // namespace machine
