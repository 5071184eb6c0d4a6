#include "backends/pulse/quiet_library.h"

#include <cstdlib>

namespace pulse {
namespace {

constexpr const char* kVariable = "PULSE_LOG_SYSLOG";

}  // namespace

void KeepLibraryQuiet() {
  // The library has no call for this; it reads the variable at its first message.
  if (std::getenv("PULSE_LOG") != nullptr || std::getenv(kVariable) != nullptr) return;
  setenv(kVariable, "1", 0);
}

}  // namespace pulse
