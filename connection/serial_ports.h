#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"

namespace connection {

/// One active serial driver of the machine.
struct ActivePort {
  std::u16string name;  ///< Such as "COM2:".
  std::u16string
      device;  ///< What it stands for on this machine. Empty if the registry does not say.
  std::u16string description = {};  ///< What that is called. Empty if nobody knows.
};

/// Returns whether `name` is the name of a serial port: "COM", one digit or two, a colon.
[[nodiscard]] bool IsPortName(std::u16string_view name);

/// Returns the active serial drivers that can be read, in the order of the registry. Passes over
/// the drivers of other devices, which are next to them there.
[[nodiscard]] std::vector<ActivePort> ReadActivePorts(platform::Registry& registry);

/// Returns the port of exactly that name, with its colon. Returns null if it is not among them, as
/// it is while its device is unplugged.
[[nodiscard]] const ActivePort* FindPort(std::span<const ActivePort> ports,
                                         std::u16string_view name);

/// Returns what the port stands for on this machine, such as "FTDI FT232R (/dev/ttyUSB0)". Returns
/// an empty text if nobody knows.
[[nodiscard]] std::u16string DescribeDevice(const ActivePort& port);

/// The order of two names, which are never equal here.
enum class PortOrder : std::uint8_t { kLess, kGreater };

/// Compares names of serial ports, such as "COM2:" and "COM10:": first by their first character,
/// then by their number. If both are equal, the first one counts as less.
[[nodiscard]] PortOrder ComparePorts(std::u16string_view a, std::u16string_view b);

/// Sorts names so that the highest port comes first.
void SortPorts(std::vector<std::u16string>& names);

}  // namespace connection
