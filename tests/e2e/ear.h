#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include "backends/pulse/pulse_sound.h"
#include "tests/e2e/recording.h"

namespace e2e {

/// Hears what the output of an echoing sound server plays, in the recording format, for twenty
/// seconds from its making on. Used by one thread at a time.
class Ear {
 public:
  Ear();

  /// Whether it hears at all; a failure of the test if not.
  [[nodiscard]] bool IsListening() const { return m_device != nullptr; }

  /// All that it has heard so far.
  [[nodiscard]] std::span<const std::byte> Heard();

  /// Whether `sound` was heard without a gap, byte by byte.
  [[nodiscard]] bool HasHeard(std::span<const std::byte> sound);

  /// Listens until `sound` was heard, for a bounded time. Whether it was.
  [[nodiscard]] bool Awaits(std::span<const std::byte> sound);

 private:
  pulse::PulseWaveIn m_input;
  Recording m_recording;
  std::unique_ptr<platform::WaveInDevice> m_device;
};

/// Whether `sound` is somewhere in `heard`.
[[nodiscard]] bool Contains(std::span<const std::byte> heard, std::span<const std::byte> sound);

}  // namespace e2e
