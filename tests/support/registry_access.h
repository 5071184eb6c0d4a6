#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/registry.h"

namespace support {

/// The bytes of a text as it stands in a value: UTF-16, little-endian, without a terminator.
[[nodiscard]] inline std::vector<std::byte> Utf16Bytes(std::u16string_view text) {
  std::vector<std::byte> bytes;
  for (const char16_t unit : text) {
    bytes.push_back(static_cast<std::byte>(unit & 0xFF));
    bytes.push_back(static_cast<std::byte>(unit >> 8));
  }
  return bytes;
}

/// The names of all subkeys of an open key, in order.
[[nodiscard]] inline std::vector<std::u16string> SubkeyNames(platform::RegistryKey& key) {
  std::vector<std::u16string> names;
  auto name = key.EnumerateSubkey(0);
  for (std::uint32_t i = 1; name && *name; name = key.EnumerateSubkey(i++)) {
    names.push_back(**name);
  }
  return names;
}

[[nodiscard]] inline std::vector<std::u16string> ValueNames(platform::RegistryKey& key) {
  std::vector<std::u16string> names;
  auto name = key.EnumerateValue(0);
  for (std::uint32_t i = 1; name && *name; name = key.EnumerateValue(i++)) {
    names.push_back(**name);
  }
  return names;
}

[[nodiscard]] inline std::vector<std::u16string> SubkeyNames(platform::Registry& registry,
                                                             std::u16string_view path) {
  const auto opened = registry.OpenKey(path);
  return opened ? SubkeyNames(**opened) : std::vector<std::u16string>{};
}

[[nodiscard]] inline bool KeyExists(platform::Registry& registry, std::u16string_view path) {
  return registry.OpenKey(path).has_value();
}

/// Makes the key if it is missing and writes one value of it.
[[nodiscard]] inline platform::Result<void, platform::RegistryError> Put(
    platform::Registry& registry, std::u16string_view path, std::u16string_view name,
    platform::RegistryType type, const std::vector<std::byte>& bytes) {
  const auto created = registry.CreateKey(path);
  return created ? (*created)->Set(name, type, bytes) : platform::Failure(created.error());
}

/// As Put, with a text of type string, terminated.
[[nodiscard]] inline platform::Result<void, platform::RegistryError> PutText(
    platform::Registry& registry, std::u16string_view path, std::u16string_view name,
    std::u16string_view text) {
  return Put(registry, path, name, platform::RegistryType::kString,
             Utf16Bytes(std::u16string(text) + u'\0'));
}

/// The value's bytes; none if it cannot be read.
[[nodiscard]] inline std::vector<std::byte> BytesOf(platform::Registry& registry,
                                                    std::u16string_view path,
                                                    std::u16string_view name) {
  const auto opened = registry.OpenKey(path);
  if (!opened) {
    return {};
  }
  auto value = (*opened)->Query(name);
  return value ? std::move(value->bytes) : std::vector<std::byte>();
}

}  // namespace support
