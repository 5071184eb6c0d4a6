#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "platform/clock.h"
#include "platform/wave_devices.h"

/// Forwards every call to another wave input, and takes its time over one of them, as a sound
/// service does that hangs.
class SlowWaveIn final : public platform::WaveIn {
 public:
  enum class Call : std::uint8_t { kStart, kReset };

  SlowWaveIn(platform::WaveIn& waveIn, platform::Clock& clock) : m_waveIn(waveIn), m_clock(clock) {}

  /// Holds for devices opened from now on.
  void Delay(Call call, std::uint32_t milliseconds) {
    m_call = call;
    m_milliseconds = milliseconds;
  }

  [[nodiscard]] std::uint32_t GetDeviceCount() override { return m_waveIn.GetDeviceCount(); }
  [[nodiscard]] platform::Result<std::unique_ptr<platform::WaveInDevice>, platform::WaveResult>
  Open(const platform::WaveFormat& format) override {
    auto opened = m_waveIn.Open(format);
    if (opened) {
      opened = std::make_unique<Device>(*this, std::move(*opened));
    }
    return opened;
  }

 private:
  class Device final : public platform::WaveInDevice {
   public:
    Device(const SlowWaveIn& from, std::unique_ptr<platform::WaveInDevice> device)
        : m_clock(from.m_clock),
          m_call(from.m_call),
          m_milliseconds(from.m_milliseconds),
          m_device(std::move(device)) {}

    platform::WaveResult Prepare(platform::WaveHeader& header) override {
      return m_device->Prepare(header);
    }
    platform::WaveResult AddBuffer(platform::WaveHeader& header) override {
      return m_device->AddBuffer(header);
    }
    platform::WaveResult Start() override {
      Dawdle(Call::kStart);
      return m_device->Start();
    }
    platform::WaveResult Unprepare(platform::WaveHeader& header) override {
      return m_device->Unprepare(header);
    }
    platform::WaveResult Reset() override {
      Dawdle(Call::kReset);
      return m_device->Reset();
    }
    platform::WaveResult Close() override { return m_device->Close(); }

   private:
    void Dawdle(Call call) {
      if (call == m_call && m_milliseconds > 0) {
        m_clock.Sleep(m_milliseconds);
      }
    }

    platform::Clock& m_clock;
    const Call m_call;
    const std::uint32_t m_milliseconds;
    const std::unique_ptr<platform::WaveInDevice> m_device;
  };

  platform::WaveIn& m_waveIn;
  platform::Clock& m_clock;
  Call m_call = Call::kReset;
  std::uint32_t m_milliseconds = 0;
};
