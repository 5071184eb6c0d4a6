#pragma once

#include <cstddef>
#include <string>
#include <string_view>
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
  std::u16string name;
  for (std::uint32_t i = 0; key.EnumerateSubkey(i, name) == platform::RegistryError::kNone; ++i) {
    names.push_back(name);
  }
  return names;
}

[[nodiscard]] inline std::vector<std::u16string> ValueNames(platform::RegistryKey& key) {
  std::vector<std::u16string> names;
  std::u16string name;
  for (std::uint32_t i = 0; key.EnumerateValue(i, name) == platform::RegistryError::kNone; ++i) {
    names.push_back(name);
  }
  return names;
}

[[nodiscard]] inline std::vector<std::u16string> SubkeyNames(platform::Registry& registry,
                                                             std::u16string_view path) {
  const auto opened = registry.OpenKey(path);
  return opened.key ? SubkeyNames(*opened.key) : std::vector<std::u16string>{};
}

[[nodiscard]] inline bool KeyExists(platform::Registry& registry, std::u16string_view path) {
  return registry.OpenKey(path).error == platform::RegistryError::kNone;
}

/// Makes the key where it is missing and writes one value of it.
[[nodiscard]] inline platform::RegistryError Put(platform::Registry& registry,
                                                 std::u16string_view path, std::u16string_view name,
                                                 platform::RegistryType type,
                                                 const std::vector<std::byte>& bytes) {
  const auto created = registry.CreateKey(path);
  return created.key ? created.key->Set(name, type, bytes) : created.error;
}

/// As Put, with a text of type string, terminated.
[[nodiscard]] inline platform::RegistryError PutText(platform::Registry& registry,
                                                     std::u16string_view path,
                                                     std::u16string_view name,
                                                     std::u16string_view text) {
  return Put(registry, path, name, platform::RegistryType::kString,
             Utf16Bytes(std::u16string(text) + u'\0'));
}

/// The value's bytes; none where it cannot be read.
[[nodiscard]] inline std::vector<std::byte> BytesOf(platform::Registry& registry,
                                                    std::u16string_view path,
                                                    std::u16string_view name) {
  const auto opened = registry.OpenKey(path);
  platform::RegistryValue value;
  if (!opened.key || opened.key->Query(name, value) != platform::RegistryError::kNone) {
    return {};
  }
  return value.bytes;
}

}  // namespace support
