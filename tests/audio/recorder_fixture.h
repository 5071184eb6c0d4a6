#pragma once

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

#include "audio/wave_device.h"
#include "audio/wave_header.h"
#include "backends/headless/headless_process.h"
#include "backends/headless/headless_shell.h"
#include "backends/headless/headless_ui.h"
#include "tests/machine/memory_file_system.h"
#include "tests/machine/memory_registry.h"
#include "tests/machine/simulated_contacts.h"
#include "tests/machine/simulated_wave_in.h"
#include "tests/machine/simulated_wave_out.h"
#include "tests/support/failing_file_system.h"

/// A clock that does not wait and remembers what it was asked for.
class SleepLog final : public platform::Clock {
 public:
  [[nodiscard]] std::uint32_t GetTickCount() override { return 0; }
  [[nodiscard]] std::int64_t GetUnixTime() override { return 0; }
  void Sleep(std::uint32_t milliseconds) override { m_sleeps.push_back(milliseconds); }
  [[nodiscard]] const std::vector<std::uint32_t>& GetSleeps() const { return m_sleeps; }

 private:
  std::vector<std::uint32_t> m_sleeps;
};

class NoThreads final : public platform::Threads {
 public:
  [[nodiscard]] std::unique_ptr<platform::Thread> Start(std::function<void()> /*body*/,
                                                        platform::ThreadStart /*start*/) override {
    return nullptr;
  }
  [[nodiscard]] std::unique_ptr<platform::Event> CreateManualResetEvent() override {
    return nullptr;
  }
  [[nodiscard]] platform::CreatedMutex CreateNamedMutex(std::u16string_view /*name*/) override {
    return {};
  }
};

/// A recorder on a machine without anything real.
class RecorderFixture : public testing::Test {
 protected:
  static constexpr std::u16string_view kPath = u"/name.wav";

  RecorderFixture() { m_device.SetFormat(audio::kRecordingBits, audio::kRecordingRate); }

  [[nodiscard]] std::vector<std::byte> GetFile() const {
    return m_files.GetFile(kPath).value_or(std::vector<std::byte>());
  }

  machine::MemoryFileSystem m_files;
  support::FailingFileSystem m_failingFiles{m_files};
  machine::SimulatedWaveIn m_waveIn;
  SleepLog m_clock;
  NoThreads m_threads;
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
