#pragma once

#include <cstdint>

#include "backends/headless/headless_contacts.h"
#include "backends/headless/headless_process.h"
#include "backends/headless/headless_shell.h"
#include "backends/headless/headless_ui.h"
#include "backends/headless/headless_wave_in.h"
#include "backends/headless/headless_wave_out.h"
#include "backends/headless/memory_file_system.h"
#include "backends/headless/memory_registry.h"
#include "backends/headless/simulation.h"
#include "platform/platform.h"

namespace support {

/// One of each headless back end, as the platform of a test.
class HeadlessPlatform {
 public:
  /// `startTick` is the tick count at the start.
  explicit HeadlessPlatform(std::uint32_t startTick = 0) : simulation(startTick) {}

  /// The platform with these back ends.
  [[nodiscard]] platform::Platform Get() { return GetWith(files, registry); }

  /// Likewise with other files and registry, ones that fail for example.
  [[nodiscard]] platform::Platform GetWith(platform::FileSystem& otherFiles,
                                           platform::Registry& otherRegistry) {
    return {otherFiles, waveIn,        simulation, simulation, process,
            ui,         otherRegistry, contacts,   waveOut,    shell};
  }

  headless::MemoryFileSystem files;
  headless::MemoryRegistry registry;
  headless::HeadlessContacts contacts;
  headless::HeadlessWaveIn waveIn;
  headless::HeadlessWaveOut waveOut;
  headless::Simulation simulation;
  headless::HeadlessProcess process;
  headless::HeadlessShell shell;
  headless::HeadlessUi ui{u"Zedra Voxtrel", &simulation};
};

}  // namespace support
