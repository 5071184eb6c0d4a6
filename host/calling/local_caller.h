#pragma once

#include "backends/serial/termios_serial_ports.h"
#include "backends/udev/udev_serial_devices.h"
#include "dialer/caller.h"

namespace calling {

/// A caller with the telephone program and the serial ports of this machine, for the program of the
/// dialer and for its window. Writes nothing. Used by one thread.
class LocalCaller {
 public:
  /// Both references outlive this.
  LocalCaller(platform::Registry& registry, platform::Clock& clock, dialer::CallWish wish);
  LocalCaller(const LocalCaller&) = delete;
  LocalCaller& operator=(const LocalCaller&) = delete;

  [[nodiscard]] dialer::Caller& Get() { return m_caller; }

 private:
  serial::TermiosSerialPorts m_ports;
  udev_ports::UdevSerialDevices m_devices;
  const dialer::CallerParts m_parts;
  dialer::Caller m_caller;
};

}  // namespace calling
