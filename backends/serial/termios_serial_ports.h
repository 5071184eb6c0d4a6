#pragma once

#include "platform/serial_port.h"

namespace serial {

/// The serial ports of Linux, by their device files.
///
/// A port that is open here is closed to others in two ways: by the driver (TIOCEXCL), which the
/// superuser passes by, and by a lock on the device file (flock), which other terminal programs
/// take as well.
class TermiosSerialPorts final : public platform::SerialPorts {
 public:
  [[nodiscard]] platform::Result<std::unique_ptr<platform::SerialPort>, platform::SerialError> Open(
      std::u16string_view device, const platform::SerialLine& line) override;
};

}  // namespace serial
