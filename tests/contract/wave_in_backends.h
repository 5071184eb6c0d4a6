#pragma once

#include <cstddef>
#include <memory>
#include <ostream>
#include <vector>

#include "platform/wave_devices.h"

namespace contract {

/// One kind of microphone, which hears Melody() again and again.
class WaveInBackend {
 public:
  WaveInBackend() = default;
  WaveInBackend(const WaveInBackend&) = delete;
  WaveInBackend& operator=(const WaveInBackend&) = delete;
  virtual ~WaveInBackend() = default;

  /// Whether there is a microphone at all; a failure of the test if not.
  [[nodiscard]] virtual bool IsReady() const { return true; }

  [[nodiscard]] virtual platform::WaveIn& Input() = 0;

  /// Lets some sound reach the microphone, if that takes time.
  virtual void LetSoundPass() {}

  /// Takes the microphone away.
  virtual void Unplug() = 0;
};

struct WaveInBackendKind {
  const char* name;
  std::unique_ptr<WaveInBackend> (*make)();
};

std::ostream& operator<<(std::ostream& stream, const WaveInBackendKind& kind);

[[nodiscard]] std::vector<WaveInBackendKind> AllWaveInBackends();

/// A second of samples in the recording format, no two stretches of which are alike.
[[nodiscard]] const std::vector<std::byte>& Melody();

}  // namespace contract
