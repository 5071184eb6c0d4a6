#pragma once

#include <cstdint>

#include "platform/headless/headless_process.h"
#include "platform/headless/headless_ui.h"
#include "platform/headless/memory_file_system.h"
#include "platform/headless/simulation.h"
#include "platform/platform.h"

namespace support {

/// One of each headless back end, as the platform of a test. The wave input is the test's own.
class HeadlessPlatform {
 public:
  /// `waveIn` outlives this; `startTick` is the tick count at the start.
  explicit HeadlessPlatform(platform::WaveIn& waveIn, std::uint32_t startTick = 0)
      : m_waveIn(waveIn), simulation(startTick) {}

  /// The platform with these back ends.
  [[nodiscard]] platform::Platform Get() { return GetWith(files); }

  /// Likewise with other files, ones that fail for example.
  [[nodiscard]] platform::Platform GetWith(platform::FileSystem& otherFiles) {
    return {otherFiles, m_waveIn, simulation, simulation, process, ui};
  }

 private:
  platform::WaveIn& m_waveIn;

 public:
  headless::MemoryFileSystem files;
  headless::Simulation simulation;
  headless::HeadlessProcess process;
  headless::HeadlessUi ui;
};

}  // namespace support
