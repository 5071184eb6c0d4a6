#pragma once

#include <cstdint>

#include "backends/headless/headless_system.h"
#include "backends/headless/headless_ui.h"
#include "platform/platform.h"
#include "tests/machine/memory_file_system.h"
#include "tests/machine/memory_registry.h"
#include "tests/machine/simulated_contacts.h"
#include "tests/machine/simulated_wave_in.h"
#include "tests/machine/simulated_wave_out.h"
#include "tests/machine/simulation.h"

namespace support {

/// One of each headless back end, as the platform of a test.
class HeadlessPlatform {
 public:
  /// `startTick` is the tick count at the start.
  explicit HeadlessPlatform(std::uint32_t startTick = 0) : simulation(startTick) {}

  /// The platform with these back ends.
  [[nodiscard]] platform::Platform Get() { return GetWith(files, registry); }

  /// The same with another file system and registry, such as ones that fail.
  [[nodiscard]] platform::Platform GetWith(platform::FileSystem& otherFiles,
                                           platform::Registry& otherRegistry) {
    return {otherFiles, waveIn,        simulation, simulation, process,
            ui,         otherRegistry, contacts,   waveOut,    shell};
  }

  machine::MemoryFileSystem files;
  machine::MemoryRegistry registry;
  machine::SimulatedContacts contacts;
  machine::SimulatedWaveIn waveIn;
  machine::SimulatedWaveOut waveOut;
  machine::Simulation simulation;
  headless::HeadlessProcess process;
  headless::HeadlessShell shell;
  headless::HeadlessUi ui{u"Zedra Voxtrel", &simulation};
};

}  // namespace support
