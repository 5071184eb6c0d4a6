#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/result.h"

namespace platform {

// Where the registry holds the drivers of the machine. A program finds the port that it is to open
// there.

/// Has one subkey for each active driver.
inline constexpr std::u16string_view kActiveDriversKey = u"Drivers\\Active";
/// The name under which a program opens the driver's device, such as "COM2:".
inline constexpr std::u16string_view kDriverNameValue = u"Name";
/// What that name stands for on this machine, such as "/dev/ttyUSB0".
inline constexpr std::u16string_view kDriverDeviceValue = u"Device";
/// What the device is called, such as "FTDI FT232R USB UART". Missing if the machine does not say.
inline constexpr std::u16string_view kDriverDescriptionValue = u"Description";

/// One serial port that the machine has.
struct SerialDevice {
  std::u16string node;  ///< The name by which a program opens it, such as "/dev/ttyUSB0".
  /// Maker and model, in words for people. Empty: not known.
  std::u16string description = {};

  // By these the same port is known again, even if it has another node next time. Empty: not known.
  std::u16string serial;  ///< Maker, model and the serial number of the one device.
  std::u16string path;    ///< The socket that it is plugged into.
  std::u16string part;    ///< Which port of a device that has several.
};

/// Why the ports are not known.
enum class SerialDevicesError : std::uint8_t {
  kUnreadable,  ///< The machine does not say which ports it has.
};

/// The serial ports of the machine.
class SerialDevices {
 public:
  SerialDevices() = default;
  SerialDevices(const SerialDevices&) = delete;
  SerialDevices& operator=(const SerialDevices&) = delete;
  virtual ~SerialDevices() = default;

  /// Returns the ports that are there now, in no particular order.
  [[nodiscard]] virtual Result<std::vector<SerialDevice>, SerialDevicesError> List() = 0;
};

}  // namespace platform
