#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"
#include "platform/serial_devices.h"

namespace udev_ports {

/// Has one value for each port that was ever seen. Its name is that of the port, such as "COM2:".
/// It holds what the port is known by.
inline constexpr std::u16string_view kKnownPortsKey = u"Drivers\\Serial ports";

/// Makes the active drivers of the registry the serial ports that the machine has now. The same
/// port has the same name each time, and the name of one that was unplugged is given to no other.
/// If the ports cannot be listed, or the store does not take all of it, everything stays as it was.
[[nodiscard]] platform::Result<void, platform::RegistryError> PublishSerialPorts(
    platform::Registry& registry, platform::SerialDevices& devices);

/// Returns the device that has this port's name now, such as "/dev/ttyUSB0" for "COM2:". Returns an
/// empty text if the port is not connected. Writes nothing: the active drivers of the registry may
/// be those of another day.
[[nodiscard]] std::u16string FindDevice(platform::Registry& registry,
                                        platform::SerialDevices& devices, std::u16string_view port);

/// The name of a port has one digit or two.
inline constexpr int kLowestPort = 1;
inline constexpr int kHighestPort = 99;

/// The identities of all ports that were ever seen, by their numbers.
using PortNumbers = std::map<int, std::u16string>;

/// Puts ports in the order in which new ones are numbered: built-in ports, then those that were
/// plugged in, each kind by the number of its node.
void SortByNode(std::vector<platform::SerialDevice>& devices);

/// Returns the identity of each port, by which it is known again, in the order of `devices`. It is
/// the port's serial number, else its socket, else its node.
///
/// Some makers give one serial number to several devices. If two of them are there, the socket is
/// added, and such a device keeps that identity while the others are away. A number that `numbers`
/// has for the serial number alone then goes to the first of them. Ports that look the same
/// are counted, so no two have one identity.
[[nodiscard]] std::vector<std::u16string> IdentitiesOf(
    const std::vector<platform::SerialDevice>& devices, PortNumbers& numbers);

/// Returns the number of each port, in the order of `identities`. A port that was seen before has
/// the number it had. A new one takes the lowest free number and keeps it, noted in `numbers`. If
/// none is free, it takes the number of a port that is not there. Returns nothing for a port beyond
/// the last number.
[[nodiscard]] std::vector<std::optional<int>> AssignNumbers(
    const std::vector<std::u16string>& identities, PortNumbers& numbers);

}  // namespace udev_ports
