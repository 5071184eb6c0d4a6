#pragma once

#include <cstddef>
#include <memory>
#include <ostream>
#include <span>
#include <vector>

#include "platform/wave_devices.h"

namespace contract {

/// One kind of loudspeaker, with somebody who listens to it.
class WaveOutBackend {
 public:
  WaveOutBackend() = default;
  WaveOutBackend(const WaveOutBackend&) = delete;
  WaveOutBackend& operator=(const WaveOutBackend&) = delete;
  virtual ~WaveOutBackend() = default;

  /// Whether there is a loudspeaker at all; a failure of the test if not.
  [[nodiscard]] virtual bool IsReady() { return true; }

  [[nodiscard]] virtual platform::WaveOut& Output() = 0;

  /// Whether `sound`, in the recording format, was played without a gap. Listens for a bounded time
  /// if that takes time.
  [[nodiscard]] virtual bool Hears(std::span<const std::byte> sound) = 0;

  /// Takes the loudspeaker away.
  virtual void Unplug() = 0;
};

struct WaveOutBackendKind {
  const char* name;
  std::unique_ptr<WaveOutBackend> (*make)();
};

std::ostream& operator<<(std::ostream& stream, const WaveOutBackendKind& kind);

[[nodiscard]] std::vector<WaveOutBackendKind> AllWaveOutBackends();

}  // namespace contract
