#include "platform/pulse/quiet_library.h"

#include <cstdlib>

namespace pulse {

void KeepLibraryQuiet() {
  // The library has no call for this; it reads the variable at its first message.
  if (std::getenv("PULSE_LOG") == nullptr) setenv("PULSE_LOG_SYSLOG", "1", 1);
}

}  // namespace pulse
