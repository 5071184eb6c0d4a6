#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"

namespace connection {

/// One active serial driver of the machine.
struct ActivePort {
  std::u16string name;    ///< As "COM2:".
  std::u16string device;  ///< What it stands for on this machine; empty where that is not told.
};

/// Whether `name` is a name of serial ports: "COM", one digit or two, a colon.
[[nodiscard]] bool IsPortName(std::u16string_view name);

/// The active serial drivers, in the order of the registry; drivers of other devices stand beside
/// them there and are passed over. Empty where they cannot be read.
[[nodiscard]] std::vector<ActivePort> ReadActivePorts(platform::Registry& registry);

}  // namespace connection
