#pragma once

#include <string_view>

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

}  // namespace udev_ports
