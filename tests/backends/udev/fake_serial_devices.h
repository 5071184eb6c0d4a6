#pragma once

#include <utility>
#include <vector>

#include "platform/serial_devices.h"

/// The ports of a machine that a test makes up.
class FakeSerialDevices final : public platform::SerialDevices {
 public:
  explicit FakeSerialDevices(std::vector<platform::SerialDevice> devices = {})
      : m_devices(std::move(devices)) {}

  using Listed =
      platform::Result<std::vector<platform::SerialDevice>, platform::SerialDevicesError>;

  void Set(Listed devices) { m_devices = std::move(devices); }

  [[nodiscard]] Listed List() override { return m_devices; }

 private:
  Listed m_devices;
};
