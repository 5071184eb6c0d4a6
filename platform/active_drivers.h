#pragma once

#include <string_view>

namespace platform {

// Where the machine's drivers are looked up in the registry.

/// One subkey for each active driver.
inline constexpr std::u16string_view kActiveDriversKey = u"Drivers\\Active";
/// Name under which a program opens the driver's device, as "COM2:".
inline constexpr std::u16string_view kDriverNameValue = u"Name";
/// What that name stands for on this machine, as "/dev/ttyUSB0".
inline constexpr std::u16string_view kDriverDeviceValue = u"Device";

}  // namespace platform
