#pragma once

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

#include "audio/wave_device.h"
#include "audio/wave_header.h"
#include "backends/headless/headless_system.h"
#include "backends/headless/headless_ui.h"
#include "tests/machine/memory_file_system.h"
#include "tests/machine/memory_registry.h"
#include "tests/machine/simulated_contacts.h"
#include "tests/machine/simulated_wave_in.h"
#include "tests/machine/simulated_wave_out.h"
#include "tests/machine/simulation.h"
#include "tests/support/watched_clock.h"
#include "tests/support/watched_file_system.h"

/// A recorder on a machine without anything real.
class RecorderFixture : public testing::Test {
 protected:
  static constexpr std::u16string_view kPath = u"/name.wav";

  RecorderFixture() { m_device.SetFormat(audio::kRecordingBits, audio::kRecordingRate); }

  [[nodiscard]] std::vector<std::byte> GetFile() const {
    return m_files.GetFile(kPath).value_or(std::vector<std::byte>());
  }

  machine::MemoryFileSystem m_files;
  support::WatchedFileSystem m_failingFiles{m_files};
  machine::SimulatedWaveIn m_waveIn;
  support::WatchedClock m_clock;
  machine::Simulation m_threads;
  headless::HeadlessProcess m_process;
  headless::HeadlessShell m_shell;
  headless::HeadlessUi m_ui;
  machine::MemoryRegistry m_registry;
  machine::SimulatedContacts m_contacts;
  machine::SimulatedWaveOut m_waveOut;
  audio::WaveDevice m_device{platform::Platform{m_failingFiles, m_waveIn, m_clock, m_threads,
                                                m_process, m_ui, m_registry, m_contacts, m_waveOut,
                                                m_shell}};
};
