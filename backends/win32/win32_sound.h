#pragma once

#include <functional>
#include <string>

#include "platform/wave_devices.h"
#include "platform/wave_inputs.h"

namespace win32 {

/// Returns the name of the input that the user chose, and an empty text if none was chosen. May be
/// called from any thread.
using ChosenInput = std::function<std::u16string()>;

/// The microphone, by the wave functions of the system. It is the chosen one if that is there, and
/// the system's default otherwise. No call blocks for longer than a few seconds.
class Win32WaveIn final : public platform::WaveIn {
 public:
  explicit Win32WaveIn(ChosenInput getChosen = nullptr) : m_getChosen(std::move(getChosen)) {}

  [[nodiscard]] std::uint32_t GetDeviceCount() override;
  /// Takes 16-bit formats alone, as all recordings of the system are.
  [[nodiscard]] platform::Result<std::unique_ptr<platform::WaveInDevice>, platform::WaveResult>
  Open(const platform::WaveFormat& format) override;

 private:
  const ChosenInput m_getChosen;
};

/// The inputs of the system. It gives their names cut off after 31 units.
class Win32WaveInputs final : public platform::WaveInputs {
 public:
  explicit Win32WaveInputs(ChosenInput getChosen = nullptr) : m_getChosen(std::move(getChosen)) {}

  [[nodiscard]] platform::Result<std::vector<platform::WaveInput>, platform::WaveResult> List()
      override;
  /// Looks once a second, since the wave functions report nothing.
  [[nodiscard]] std::unique_ptr<Watch> StartWatch(std::function<void()> changed) override;

 private:
  const ChosenInput m_getChosen;
};

/// The default output of the system.
class Win32WaveOut final : public platform::WaveOut {
 public:
  [[nodiscard]] platform::Result<std::unique_ptr<platform::WaveOutDevice>, platform::WaveResult>
  Open(const platform::WaveFormat& format) override;
};

}  // namespace win32
