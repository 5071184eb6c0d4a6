#pragma once

#include <string>

#include "dialer/modem.h"
#include "dialer/ways.h"
#include "platform/registry.h"
#include "platform/result.h"
#include "platform/serial_port.h"

namespace dialer {

/// The connection settings, as docs/companion.md describes them.
struct StoredLine {
  platform::SerialLine line;
  std::u16string port;  ///< Such as "COM2:". Empty if none was ever stored.
  Modem::HangingUp hangingUp = Modem::HangingUp::kUsed;
};

/// Reads the connection settings. One that is missing is as `platform::SerialLine` has it. Fails
/// with kLineSettings if one is none that a line can have: another program wrote it, or somebody
/// typed it.
[[nodiscard]] platform::Result<StoredLine, CallFault> ReadStoredLine(platform::Registry& registry);

/// Returns the settings of a line as a person knows them: "9600, 8, 1, none".
[[nodiscard]] std::string Describe(const platform::SerialLine& line);

}  // namespace dialer
