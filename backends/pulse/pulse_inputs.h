#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "backends/pulse/pulse_sound.h"
#include "platform/wave_inputs.h"

namespace pulse {

/// The real inputs of the user's sound server.
class PulseWaveInputs final : public platform::WaveInputs {
 public:
  explicit PulseWaveInputs(ChosenInput getChosen = {});

  [[nodiscard]] platform::Result<std::vector<platform::WaveInput>, platform::WaveResult> List()
      override;
  [[nodiscard]] std::unique_ptr<Watch> StartWatch(std::function<void()> changed) override;

 private:
  const ChosenInput m_getChosen;
};

}  // namespace pulse
