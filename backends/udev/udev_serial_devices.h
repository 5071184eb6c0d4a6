#pragma once

#include "platform/serial_devices.h"

// Not named for the folder: the library has a type of that name.
namespace udev_ports {

/// The serial ports that the kernel reports: built-in ones that have hardware, USB adapters and
/// modems, and bound Bluetooth links. What a port is known by comes from udev's database. If no
/// udev runs, only the nodes are known.
class UdevSerialDevices final : public platform::SerialDevices {
 public:
  [[nodiscard]] platform::Result<std::vector<platform::SerialDevice>, platform::SerialDevicesError>
  List() override;
};

}  // namespace udev_ports
