#pragma once

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/wave_devices.h"

/// Forwards every call to another wave output, and remembers which were made.
class LoggingWaveOut final : public platform::WaveOut {
 public:
  explicit LoggingWaveOut(platform::WaveOut& inner) : m_inner(inner) {}

  [[nodiscard]] const std::vector<std::string_view>& GetCalls() const { return m_calls; }

  /// The format that was asked for last, and the buffer as it came to be prepared.
  [[nodiscard]] const platform::WaveFormat& GetFormat() const { return m_format; }
  [[nodiscard]] const platform::WaveHeader& GetHeader() const { return m_header; }

  [[nodiscard]] platform::Result<std::unique_ptr<platform::WaveOutDevice>, platform::WaveResult>
  Open(const platform::WaveFormat& format) override {
    m_calls.push_back("Open");
    m_format = format;
    auto opened = m_inner.Open(format);
    if (opened) {
      opened = std::make_unique<Device>(*this, std::move(*opened));
    }
    return opened;
  }

 private:
  class Device final : public platform::WaveOutDevice {
   public:
    Device(LoggingWaveOut& output, std::unique_ptr<platform::WaveOutDevice> inner)
        : m_output(output), m_calls(output.m_calls), m_inner(std::move(inner)) {}

    platform::WaveResult Prepare(platform::WaveHeader& header) override {
      m_calls.push_back("Prepare");
      m_output.m_header = header;
      return m_inner->Prepare(header);
    }
    platform::WaveResult Write(platform::WaveHeader& header) override {
      m_calls.push_back("Write");
      return m_inner->Write(header);
    }
    platform::WaveResult Unprepare(platform::WaveHeader& header) override {
      m_calls.push_back("Unprepare");
      return m_inner->Unprepare(header);
    }
    platform::WaveResult Reset() override {
      m_calls.push_back("Reset");
      return m_inner->Reset();
    }
    platform::WaveResult Close() override {
      m_calls.push_back("Close");
      return m_inner->Close();
    }

   private:
    LoggingWaveOut& m_output;
    std::vector<std::string_view>& m_calls;
    const std::unique_ptr<platform::WaveOutDevice> m_inner;
  };

  platform::WaveOut& m_inner;
  std::vector<std::string_view> m_calls;
  platform::WaveFormat m_format;
  platform::WaveHeader m_header;
};
