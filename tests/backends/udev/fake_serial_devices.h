#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "platform/serial_devices.h"

/// The ports that a test says.
class FakeSerialDevices final : public platform::SerialDevices {
 public:
  explicit FakeSerialDevices(std::vector<platform::SerialDevice> devices = {})
      : m_devices(std::move(devices)) {}

  void Set(std::optional<std::vector<platform::SerialDevice>> devices) {
    m_devices = std::move(devices);
  }

  [[nodiscard]] std::optional<std::vector<platform::SerialDevice>> List() override {
    return m_devices;
  }

 private:
  std::optional<std::vector<platform::SerialDevice>> m_devices;
};
