#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/wave_devices.h"
#include "tests/support/watched_file_system.h"

/// Forwards every call to another wave input. A header comes out of Prepare with one more flag, so
/// that a test sees whether the recorder sets the flags itself.
class StepsWaveIn final : public platform::WaveIn {
 public:
  StepsWaveIn(platform::WaveIn& inner, support::Steps& steps) : m_inner(inner), m_steps(steps) {}

  /// Devices opened from now on claim to have recorded so many bytes.
  void Claim(std::uint32_t bytes) { m_claimed = bytes; }

  [[nodiscard]] std::uint32_t GetDeviceCount() override {
    m_steps.push_back("count devices");
    return m_inner.GetDeviceCount();
  }

  [[nodiscard]] platform::Result<std::unique_ptr<platform::WaveInDevice>, platform::WaveResult>
  Open(const platform::WaveFormat& format) override {
    m_steps.push_back("open device");
    auto opened = m_inner.Open(format);
    if (opened) {
      opened = std::make_unique<Device>(m_steps, m_claimed, std::move(*opened));
    }
    return opened;
  }

 private:
  class Device final : public platform::WaveInDevice {
   public:
    Device(support::Steps& steps, std::optional<std::uint32_t> claimed,
           std::unique_ptr<platform::WaveInDevice> inner)
        : m_steps(steps), m_claimed(claimed), m_inner(std::move(inner)) {}

    platform::WaveResult Prepare(platform::WaveHeader& header) override {
      m_steps.push_back("prepare " + std::to_string(header.bufferLength));
      const platform::WaveResult result = m_inner->Prepare(header);
      header.flags |= 0x10U;
      return result;
    }
    platform::WaveResult AddBuffer(platform::WaveHeader& header) override {
      m_steps.push_back("add buffer with flags " + std::to_string(header.flags));
      return m_inner->AddBuffer(header);
    }
    platform::WaveResult Start() override {
      m_steps.push_back("start");
      return m_inner->Start();
    }
    platform::WaveResult Unprepare(platform::WaveHeader& header) override {
      m_steps.push_back("unprepare");
      const platform::WaveResult result = m_inner->Unprepare(header);
      header.bytesRecorded = m_claimed.value_or(header.bytesRecorded);
      return result;
    }
    platform::WaveResult Reset() override {
      m_steps.push_back("reset");
      return m_inner->Reset();
    }
    platform::WaveResult Close() override {
      m_steps.push_back("close device");
      return m_inner->Close();
    }

   private:
    support::Steps& m_steps;
    const std::optional<std::uint32_t> m_claimed;
    const std::unique_ptr<platform::WaveInDevice> m_inner;
  };

  platform::WaveIn& m_inner;
  support::Steps& m_steps;
  std::optional<std::uint32_t> m_claimed;
};
