#pragma once

#include "platform/serial_port.h"

namespace serial {

/// Sets the line of an open terminal device, raw and without echo. Fails with kUnsupported if the
/// device or the kernel cannot be set so.
[[nodiscard]] platform::Result<void, platform::SerialError> SetLine(
    int descriptor, const platform::SerialLine& line);

/// Sets whether the line goes down when the device is closed. If that fails it stays as it was.
void SetHangUpOnClose(int descriptor, bool hangsUp);

}  // namespace serial
