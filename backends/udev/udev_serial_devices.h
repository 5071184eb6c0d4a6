#pragma once

#include "platform/serial_devices.h"

// Not named for the folder: the library has a type of that name.
namespace udev_ports {

/// The serial ports that the kernel tells of: built-in ones with hardware behind them, USB adapters
/// and modems, and bound Bluetooth links. What a port is known by comes from udev's database; where
/// no udev runs the nodes alone are told.
class UdevSerialDevices final : public platform::SerialDevices {
 public:
  [[nodiscard]] std::optional<std::vector<platform::SerialDevice>> List() override;
};

}  // namespace udev_ports
