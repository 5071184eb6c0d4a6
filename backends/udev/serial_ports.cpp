#include "backends/udev/serial_ports.h"

#include <charconv>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "backends/text/utf.h"
#include "backends/udev/port_numbers.h"
#include "platform/active_drivers.h"
#include "platform/registry_text.h"

namespace udev_ports {
namespace {

using platform::RegistryError;
using platform::SerialDevice;

std::u16string Decimal(int number) { return text::FromUtf8(std::to_string(number)); }

std::u16string PortName(int number) { return u"COM" + Decimal(number) + u":"; }

/// The number in a name that PortName makes.
std::optional<int> ParsePortName(const std::u16string& name) {
  const std::string digits = text::ToUtf8(std::u16string_view(name).substr(name.find(u'M') + 1));
  int number = 0;
  const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return parsed.ec == std::errc() && number >= kLowestPort && number <= kHighestPort &&
                 name == PortName(number)
             ? std::optional(number)
             : std::nullopt;
}

RegistryError ReadKnownPorts(platform::RegistryKey& key, PortNumbers& numbers) {
  std::u16string name;
  RegistryError error = RegistryError::kNone;
  // Another program's name or value that is too long to be read, kInvalid, is passed over.
  const auto goesOn = [](RegistryError code) {
    return code == RegistryError::kNone || code == RegistryError::kInvalid;
  };
  for (std::uint32_t i = 0; goesOn(error = key.EnumerateValue(i, name)); ++i) {
    platform::RegistryValue value;
    error = error == RegistryError::kNone ? key.Query(name, value) : error;
    if (!goesOn(error)) {
      return error;
    }
    if (error != RegistryError::kNone) {
      continue;
    }
    const std::optional<int> number = ParsePortName(name);
    if (const auto identity = platform::ToText(value); number && identity) {
      numbers.emplace(*number, *identity);
    }
  }
  return error == RegistryError::kNoMoreItems ? RegistryError::kNone : error;
}

RegistryError WriteActivePort(platform::Registry& registry, int number,
                              const SerialDevice& device) {
  const auto path =
      std::u16string(platform::kActiveDriversKey).append(u"\\").append(Decimal(number));
  const platform::OpenedKey port = registry.CreateKey(path);
  if (!port.key) {
    return port.error;
  }
  const RegistryError error =
      platform::SetText(*port.key, platform::kDriverNameValue, PortName(number));
  return error == RegistryError::kNone
             ? platform::SetText(*port.key, platform::kDriverDeviceValue, device.node)
             : error;
}

RegistryError WritePorts(platform::Registry& registry, const std::vector<SerialDevice>& ports) {
  const platform::OpenedKey known = registry.CreateKey(kKnownPortsKey);
  if (!known.key) {
    return known.error;
  }
  PortNumbers numbers;
  RegistryError error = ReadKnownPorts(*known.key, numbers);
  if (error != RegistryError::kNone) {
    return error;
  }
  const std::vector<std::u16string> identities = IdentitiesOf(ports, numbers);
  const auto assigned = AssignNumbers(identities, numbers);
  error = registry.DeleteKey(platform::kActiveDriversKey);
  if (error != RegistryError::kNone && error != RegistryError::kNotFound) {
    return error;
  }
  const platform::OpenedKey active = registry.CreateKey(platform::kActiveDriversKey);
  error = active.error;
  for (std::size_t i = 0; i < ports.size() && error == RegistryError::kNone; ++i) {
    if (assigned[i]) {
      error = platform::SetText(*known.key, PortName(*assigned[i]), identities[i]);
      error =
          error == RegistryError::kNone ? WriteActivePort(registry, *assigned[i], ports[i]) : error;
    }
  }
  return error;
}

}  // namespace

RegistryError PublishSerialPorts(platform::Registry& registry, platform::SerialDevices& devices) {
  auto ports = devices.List();
  if (!ports) {
    return RegistryError::kNotFound;
  }
  SortByNode(*ports);
  platform::RegistryGroup group(registry);
  if (group.BeginError() != RegistryError::kNone) {
    return group.BeginError();
  }
  const RegistryError error = WritePorts(registry, *ports);
  return error == RegistryError::kNone ? group.Commit() : error;
}

}  // namespace udev_ports
