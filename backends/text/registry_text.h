#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/registry.h"

namespace text {

/// Writes a text with its terminating zero.
[[nodiscard]] inline platform::Result<void, platform::RegistryError> SetText(
    platform::RegistryKey& key, std::u16string_view name, std::u16string_view text) {
  std::vector<std::byte> bytes((text.size() + 1) * 2);
  for (std::size_t i = 0; i < text.size(); ++i) {
    platform::StoreLittleEndian16(std::span(bytes).subspan(i * 2).first<2>(), text[i]);
  }
  return key.Set(name, platform::RegistryType::kString, bytes);
}

/// Returns the text of a value up to its first zero. Returns nothing if the value holds no text.
[[nodiscard]] inline std::optional<std::u16string> ToText(const platform::RegistryValue& value) {
  if (value.type != platform::RegistryType::kString) {
    return std::nullopt;
  }
  std::u16string text;
  for (std::size_t i = 0; i + 1 < value.bytes.size(); i += 2) {
    const std::uint16_t unit =
        platform::LoadLittleEndian16(std::span(value.bytes).subspan(i).first<2>());
    if (unit == 0) {
      break;
    }
    text.push_back(static_cast<char16_t>(unit));
  }
  return text;
}

/// Returns the text of a value of `key`. Returns an empty text if `key` is null, or if the value is
/// missing, cannot be read, or holds no text: a setting then has its default.
[[nodiscard]] inline std::u16string ReadText(platform::RegistryKey* key, std::u16string_view name) {
  const auto value =
      key == nullptr ? platform::Failure(platform::RegistryError::kNotFound) : key->Query(name);
  return value ? ToText(*value).value_or(std::u16string()) : std::u16string();
}

/// The same for a key that may not be there.
[[nodiscard]] inline std::u16string ReadText(const platform::OpenedKey& key,
                                             std::u16string_view name) {
  return ReadText(key ? key->get() : nullptr, name);
}

}  // namespace text
