#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"
#include "platform/serial_devices.h"

namespace udev_ports {

/// One value for each port that was ever seen: its name, as "COM2:", and what it is known by.
inline constexpr std::u16string_view kKnownPortsKey = u"Drivers\\Serial ports";

/// Makes the active drivers of the registry the serial ports that the machine has now. The same
/// port has the same name each time, and the name of one that was unplugged is given to no other.
/// Where the ports cannot be told or the store does not take all of it, everything stays as it was.
[[nodiscard]] platform::RegistryError PublishSerialPorts(platform::Registry& registry,
                                                         platform::SerialDevices& devices);

/// Names of ports have one digit or two.
inline constexpr int kLowestPort = 1;
inline constexpr int kHighestPort = 99;

/// Which number each port has that was ever seen, by its identity.
using PortNumbers = std::map<int, std::u16string>;

/// Puts ports in the order in which new ones are numbered: those that are built in, then those that
/// were plugged in, each kind by the number of its node.
void SortByNode(std::vector<platform::SerialDevice>& devices);

/// What makes each port known again, in the order of `devices`: its serial number, else its socket,
/// else its node. Where makers give one serial number to several devices, the socket stands beside
/// it; a device of such a number keeps that while the others are away. Ports that cannot be told
/// apart are counted, so that no two have one identity. A number that was noted before the second
/// device of its serial number came is noted for the first of both then.
[[nodiscard]] std::vector<std::u16string> IdentitiesOf(
    const std::vector<platform::SerialDevice>& devices, PortNumbers& numbers);

/// The number of each port, in the order of `identities`. A port that was seen before has the
/// number it had; a new one takes the lowest that is free and keeps it, noted in `numbers`. Only
/// when none is free does it take the number of a port that is not there. Nothing for a port beyond
/// the last number.
[[nodiscard]] std::vector<std::optional<int>> AssignNumbers(
    const std::vector<std::u16string>& identities, PortNumbers& numbers);

}  // namespace udev_ports
