#include "connection/serial_ports.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "backends/text/registry_text.h"
#include "platform/serial_devices.h"

// The ports that the machine has now, as the active drivers in the registry name them, in the order
// of the window's list.
namespace connection {
namespace {

using platform::RegistryError;

constexpr std::size_t kDigitsAt = 3;  ///< After "COM".

/// Returns the number of one digit or two. It ends before anything that is no digit.
int PortNumber(std::u16string_view name) {
  constexpr std::size_t kMostDigits = 2;
  constexpr int kBase = 10;
  int number = 0;
  for (std::size_t i = kDigitsAt; i < name.size() && i < kDigitsAt + kMostDigits; ++i) {
    if (name[i] < u'0' || name[i] > u'9') {
      break;
    }
    number = number * kBase + (name[i] - u'0');
  }
  return number;
}

PortOrder ToOrder(bool isGreater) { return isGreater ? PortOrder::kGreater : PortOrder::kLess; }

}  // namespace

bool IsPortName(std::u16string_view name) {
  constexpr std::u16string_view kStart = u"COM";
  if (!name.starts_with(kStart) || !name.ends_with(u':')) {
    return false;
  }
  const std::u16string_view digits = name.substr(kStart.size(), name.size() - kStart.size() - 1);
  return (digits.size() == 1 || digits.size() == 2) &&
         std::ranges::all_of(digits, [](char16_t c) { return c >= u'0' && c <= u'9'; });
}

std::vector<ActivePort> ReadActivePorts(platform::Registry& registry) {
  std::vector<ActivePort> ports;
  const platform::OpenedKey active = registry.OpenKey(platform::kActiveDriversKey);
  for (std::uint32_t i = 0; active; ++i) {
    const auto subkey = (*active)->EnumerateSubkey(i);
    // A name that is too long to be read is no reason to leave out those after it.
    if (subkey ? !subkey->has_value() : subkey.error() != RegistryError::kInvalid) {
      break;
    }
    // Another program may have made a key whose name leads nowhere, or to another key.
    if (!subkey || !platform::IsKeyName(**subkey)) {
      continue;
    }
    const auto driver = registry.OpenKey(
        std::u16string(platform::kActiveDriversKey).append(u"\\").append(**subkey));
    if (!driver) {
      continue;
    }
    std::u16string name = text::ReadText(driver, platform::kDriverNameValue);
    if (IsPortName(name)) {
      ports.push_back({std::move(name), text::ReadText(driver, platform::kDriverDeviceValue),
                       text::ReadText(driver, platform::kDriverDescriptionValue)});
    }
  }
  return ports;
}

const ActivePort* FindPort(std::span<const ActivePort> ports, std::u16string_view name) {
  const auto found = std::ranges::find(ports, name, &ActivePort::name);
  return found == ports.end() ? nullptr : &*found;
}

std::u16string DescribeDevice(const ActivePort& port) {
  return port.description.empty() || port.device.empty()
             ? port.description + port.device
             : port.description + u" (" + port.device + u")";
}

PortOrder ComparePorts(std::u16string_view a, std::u16string_view b) {
  const char16_t firstOfA = a.empty() ? u'\0' : a.front();
  const char16_t firstOfB = b.empty() ? u'\0' : b.front();
  // Names of ports all begin with "C". Other names come before or after all of them.
  if (firstOfA != firstOfB) {
    return ToOrder(firstOfA > firstOfB);
  }
  return ToOrder(PortNumber(a) > PortNumber(b));
}

void SortPorts(std::vector<std::u16string>& names) {
  // By exchange, since the sort of a library needs an order in which names can be equal.
  for (std::size_t i = 0; i + 1 < names.size(); ++i) {
    for (std::size_t j = i + 1; j < names.size(); ++j) {
      if (ComparePorts(names[i], names[j]) == PortOrder::kLess) {
        names[i].swap(names[j]);
      }
    }
  }
}

}  // namespace connection
