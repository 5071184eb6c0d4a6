#include "connection/active_ports.h"

#include <algorithm>
#include <cstdint>

#include "platform/serial_devices.h"
#include "storage/tag_entry.h"

namespace connection {
namespace {

using platform::RegistryError;

std::u16string ReadText(platform::RegistryKey& key, std::u16string_view name) {
  const auto value = key.Query(name);
  return value ? storage::TextOfValue(*value) : std::u16string();
}

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
    // Another program's name is passed over if it leads nowhere, or to another key.
    if (!subkey || !platform::IsKeyName(**subkey)) {
      continue;
    }
    const auto driver = registry.OpenKey(
        std::u16string(platform::kActiveDriversKey).append(u"\\").append(**subkey));
    if (!driver) {
      continue;
    }
    std::u16string name = ReadText(**driver, platform::kDriverNameValue);
    if (IsPortName(name)) {
      ports.push_back({std::move(name), ReadText(**driver, platform::kDriverDeviceValue)});
    }
  }
  return ports;
}

}  // namespace connection
