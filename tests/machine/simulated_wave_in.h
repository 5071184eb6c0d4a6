#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/wave_devices.h"

namespace machine {

/// How a simulated wave input behaves.
struct WaveInScript {
  std::uint32_t deviceCount = 1;

  /// What every device hears from its opening on; silence follows.
  std::vector<std::byte> sound{};

  /// How many bytes of the started buffer have arrived by its first Unprepare, by its second, and
  /// so on; a number above the buffer's length fills it. The last number stands for all later
  /// calls; without any number the buffer is full at once. Reset brings nothing new.
  std::vector<std::uint32_t> arrivals{};

  // If one of these is not kOk the operation fails with it and does nothing else. Close is the
  // exception: a device is given up even so.
  platform::WaveResult open = platform::WaveResult::kOk;
  platform::WaveResult prepare = platform::WaveResult::kOk;
  platform::WaveResult addBuffer = platform::WaveResult::kOk;
  platform::WaveResult start = platform::WaveResult::kOk;
  platform::WaveResult unprepare = platform::WaveResult::kOk;
  platform::WaveResult reset = platform::WaveResult::kOk;
  platform::WaveResult close = platform::WaveResult::kOk;
};

/// A wave input without a device, which does what the test asks for. It needs no time. It knows how
/// many devices are open, so that their users can be held to closing them.
class SimulatedWaveIn final : public platform::WaveIn {
 public:
  SimulatedWaveIn() = default;
  explicit SimulatedWaveIn(WaveInScript script);

  /// Holds for what is called from now on, but not for devices that are open already.
  void SetScript(WaveInScript script);

  [[nodiscard]] std::uint32_t GetDeviceCount() override;
  [[nodiscard]] platform::Result<std::unique_ptr<platform::WaveInDevice>, platform::WaveResult>
  Open(const platform::WaveFormat& format) override;

  /// Devices that were opened and neither closed nor destroyed.
  [[nodiscard]] std::uint32_t OpenDevices() const;

  /// The format of the latest Open, which may have failed.
  [[nodiscard]] std::optional<platform::WaveFormat> AskedFormat() const;

 private:
  mutable std::mutex m_mutex;
  WaveInScript m_script;
  std::optional<platform::WaveFormat> m_askedFormat;

  /// Shared with the devices, which may outlive this.
  std::shared_ptr<std::atomic<std::uint32_t>> m_openDevices =
      std::make_shared<std::atomic<std::uint32_t>>(0);
};

}  // namespace machine
