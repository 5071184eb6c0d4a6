#pragma once

#include <optional>
#include <string>
#include <vector>

namespace platform {

/// One serial port that the machine has.
struct SerialDevice {
  std::u16string node;  ///< Where a program opens it, as "/dev/ttyUSB0".

  // By what the same port is known again wherever its node is next time. Empty: not known.
  std::u16string serial;  ///< Maker, model and the serial number of the one device.
  std::u16string path;    ///< The socket that it is plugged into.
  std::u16string part;    ///< Which port of a device that has several.
};

/// The serial ports of the machine.
class SerialDevices {
 public:
  SerialDevices() = default;
  SerialDevices(const SerialDevices&) = delete;
  SerialDevices& operator=(const SerialDevices&) = delete;
  virtual ~SerialDevices() = default;

  /// The ports that are there now, in no particular order; nothing where that cannot be told.
  [[nodiscard]] virtual std::optional<std::vector<SerialDevice>> List() = 0;
};

}  // namespace platform
