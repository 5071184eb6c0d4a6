#include "backends/udev/serial_ports.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <memory>
#include <set>
#include <tuple>

#include "backends/text/registry_text.h"
#include "backends/text/utf.h"

// Ports have numbers that last. A device with a serial number of its own keeps its COM number in
// any socket, and every device keeps it over a restart. So each number is stored with an identity
// of its device.
namespace udev_ports {
namespace {

using platform::Failure;
using platform::RegistryError;
using platform::Result;
using platform::SerialDevice;

/// Returns what nodes are compared by: the kind, the length of the number, and the number. So
/// numbers of any length are in the order of their values.
auto NodeOrder(const platform::SerialDevice& device) {
  constexpr std::array<std::u16string_view, 4> kKinds{u"/dev/ttyS", u"/dev/ttyUSB", u"/dev/ttyACM",
                                                      u"/dev/rfcomm"};
  const std::u16string_view node = device.node;
  const std::size_t lastOther = node.find_last_not_of(u"0123456789");
  const std::size_t digits = lastOther == std::u16string_view::npos ? 0 : lastOther + 1;
  const std::u16string_view name = node.substr(0, digits);
  // Built-in ports come first, then those that are plugged in. What is none of these comes last.
  const auto kind = std::ranges::find(kKinds, name) - kKinds.begin();
  return std::tuple(kind, name, node.size(), node);
}

std::u16string PartOf(const platform::SerialDevice& device) {
  return device.part.empty() ? std::u16string() : u" " + device.part;
}

std::u16string IdentityOf(const platform::SerialDevice& device) {
  const std::u16string part = PartOf(device);
  // From the surest to the weakest: a serial number stays whatever socket the device is in, and the
  // socket stays when the kernel counts otherwise.
  if (!device.serial.empty()) {
    return u"serial " + device.serial + part;
  }
  if (!device.path.empty()) {
    return u"path " + device.path + part;
  }
  return u"node " + device.node;
}

/// Returns an identity that differs from those of other devices with the same serial number.
/// Returns an empty text if there is none.
std::u16string IdentityWithSocket(const platform::SerialDevice& device) {
  return device.serial.empty() || device.path.empty()
             ? std::u16string()
             : u"serial " + device.serial + u" path " + device.path + PartOf(device);
}

std::optional<int> NumberOf(const std::u16string& identity, const PortNumbers& numbers) {
  const auto found =
      std::ranges::find_if(numbers, [&](const auto& entry) { return entry.second == identity; });
  return found == numbers.end() ? std::nullopt : std::optional(found->first);
}

std::u16string Counted(const std::u16string& identity, int count) {
  // Devices that are alike in all are counted, in the order of their nodes.
  return count > 1 ? identity + u" #" + text::FromUtf8(std::to_string(count)) : identity;
}

/// Gives the number of `from`, or of a port that was counted as the same, to `to`.
void HandOn(const std::u16string& from, const std::u16string& to, PortNumbers& numbers) {
  for (int count = 1; count <= kHighestPort; ++count) {
    if (const auto number = NumberOf(Counted(from, count), numbers)) {
      numbers[*number] = to;
      return;
    }
  }
}

std::optional<int> FindFree(const PortNumbers& numbers, const std::set<std::u16string>& present) {
  for (int number = kLowestPort; number <= kHighestPort; ++number) {
    if (!numbers.contains(number)) {
      return number;
    }
  }
  // All numbers are taken. One of a device that is not there now is taken from it.
  for (const auto& [number, identity] : numbers) {
    if (number >= kLowestPort && number <= kHighestPort && !present.contains(identity)) {
      return number;
    }
  }
  return std::nullopt;
}

}  // namespace

void SortByNode(std::vector<platform::SerialDevice>& devices) {
  std::ranges::sort(devices,
                    [](const auto& a, const auto& b) { return NodeOrder(a) < NodeOrder(b); });
}

std::vector<std::u16string> IdentitiesOf(const std::vector<platform::SerialDevice>& devices,
                                         PortNumbers& numbers) {
  std::map<std::u16string, int> sharers;
  for (const platform::SerialDevice& device : devices) {
    ++sharers[IdentityOf(device)];
  }
  std::vector<std::u16string> identities;
  std::map<std::u16string, int> counts;
  for (const platform::SerialDevice& device : devices) {
    const std::u16string plain = IdentityOf(device);
    const std::u16string withSocket = IdentityWithSocket(device);
    // A device that was once known by its socket stays so, also when the other one of its serial
    // number has gone.
    const bool isKnownBySocket = NumberOf(withSocket, numbers).has_value();
    const bool usesSocket = !withSocket.empty() && (sharers[plain] > 1 || isKnownBySocket);
    if (usesSocket && !isKnownBySocket) {
      HandOn(plain, withSocket, numbers);
    }
    const std::u16string identity = usesSocket ? withSocket : plain;
    identities.push_back(Counted(identity, ++counts[identity]));
  }
  return identities;
}

std::vector<std::optional<int>> AssignNumbers(const std::vector<std::u16string>& identities,
                                              PortNumbers& numbers) {
  const std::set<std::u16string> present(identities.begin(), identities.end());
  std::vector<std::optional<int>> assigned;
  for (const std::u16string& identity : identities) {
    std::optional<int> number = NumberOf(identity, numbers);
    if (!number) {
      number = FindFree(numbers, present);
      if (number) {
        numbers[*number] = identity;
      }
    }
    assigned.push_back(number);
  }
  return assigned;
}

namespace {

std::u16string Decimal(int number) { return text::FromUtf8(std::to_string(number)); }

std::u16string PortName(int number) { return u"COM" + Decimal(number) + u":"; }

/// Returns the number in a name that PortName makes.
std::optional<int> ParsePortName(const std::u16string& name) {
  const std::string digits = text::ToUtf8(std::u16string_view(name).substr(name.find(u'M') + 1));
  int number = 0;
  const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return parsed.ec == std::errc() && number >= kLowestPort && number <= kHighestPort &&
                 name == PortName(number)
             ? std::optional(number)
             : std::nullopt;
}

Result<PortNumbers, RegistryError> ReadKnownPorts(platform::RegistryKey& key) {
  PortNumbers numbers;
  for (std::uint32_t i = 0;; ++i) {
    const auto name = key.EnumerateValue(i);
    if (name && !*name) {
      return numbers;
    }
    const auto value = name ? key.Query(**name) : Failure(name.error());
    if (!value && value.error() != RegistryError::kInvalid) {
      return Failure(value.error());
    }
    if (!value) {
      continue;  // Another program's name or value is too long to be read. It is passed over.
    }
    const std::optional<int> number = ParsePortName(**name);
    if (const auto identity = text::ToText(*value); number && identity) {
      numbers.emplace(*number, *identity);
    }
  }
}

Result<void, RegistryError> WriteActivePort(platform::Registry& registry, int number,
                                            const SerialDevice& device) {
  const auto path =
      std::u16string(platform::kActiveDriversKey).append(u"\\").append(Decimal(number));
  const platform::OpenedKey port = registry.CreateKey(path);
  if (!port) {
    return Failure(port.error());
  }
  return text::SetText(**port, platform::kDriverNameValue, PortName(number))
      .and_then([&] { return text::SetText(**port, platform::kDriverDeviceValue, device.node); })
      .and_then([&]() -> Result<void, RegistryError> {
        return device.description.empty()
                   ? Result<void, RegistryError>()
                   : text::SetText(**port, platform::kDriverDescriptionValue, device.description);
      });
}

Result<void, RegistryError> WritePorts(platform::Registry& registry,
                                       const std::vector<SerialDevice>& ports) {
  const platform::OpenedKey known = registry.CreateKey(kKnownPortsKey);
  if (!known) {
    return Failure(known.error());
  }
  auto numbers = ReadKnownPorts(**known);
  if (!numbers) {
    return Failure(numbers.error());
  }
  const std::vector<std::u16string> identities = IdentitiesOf(ports, *numbers);
  const auto assigned = AssignNumbers(identities, *numbers);
  // The list of active ports is made new each time. What each number belongs to is kept in another
  // key.
  const auto deleted = registry.DeleteKey(platform::kActiveDriversKey);
  if (!deleted && deleted.error() != RegistryError::kNotFound) {
    return deleted;
  }
  const platform::OpenedKey active = registry.CreateKey(platform::kActiveDriversKey);
  if (!active) {
    return Failure(active.error());
  }
  for (std::size_t i = 0; i < ports.size(); ++i) {
    if (!assigned[i]) {
      continue;
    }
    const auto written =
        text::SetText(**known, PortName(*assigned[i]), identities[i]).and_then([&] {
          return WriteActivePort(registry, *assigned[i], ports[i]);
        });
    if (!written) {
      return written;
    }
  }
  return {};
}

}  // namespace

Result<void, RegistryError> PublishSerialPorts(platform::Registry& registry,
                                               platform::SerialDevices& devices) {
  auto ports = devices.List();
  if (!ports) {
    return Failure(RegistryError::kNotFound);
  }
  SortByNode(*ports);
  auto group = platform::RegistryGroup::Begin(registry);
  if (!group) {
    return Failure(group.error());
  }
  return WritePorts(registry, *ports).and_then([&] { return group->Commit(); });
}

std::u16string FindDevice(platform::Registry& registry, platform::SerialDevices& devices,
                          std::u16string_view port) {
  auto present = devices.List();
  const platform::OpenedKey known = registry.OpenKey(kKnownPortsKey);
  auto numbers = known ? ReadKnownPorts(**known) : Failure(known.error());
  if (!present || !numbers) {
    return {};
  }
  SortByNode(*present);
  const auto assigned = AssignNumbers(IdentitiesOf(*present, *numbers), *numbers);
  for (std::size_t i = 0; i < present->size(); ++i) {
    if (assigned[i] && PortName(*assigned[i]) == port) {
      return (*present)[i].node;
    }
  }
  return {};
}

}  // namespace udev_ports
