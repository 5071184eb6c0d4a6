#include "storage/unusable_key.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "backends/text/utf.h"

namespace storage {
namespace {

using platform::RegistryError;

/// What an enumeration gives.
using ListedName = platform::Result<std::optional<std::u16string>, RegistryError>;

std::string Escape(std::u16string_view name) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  constexpr unsigned kBitsOfDigit = 4;
  std::string escaped;
  for (const char character : text::ToUtf8(name)) {
    const auto code = static_cast<unsigned char>(character);
    if (character == '\\') {
      escaped += "\\\\";
    } else if (character == '\n') {
      escaped += "\\n";
    } else if (code < ' ') {
      escaped += "\\x";
      escaped += kDigits[code >> kBitsOfDigit];
      escaped += kDigits[code & 0xF];
    } else {
      escaped += character;
    }
  }
  return escaped;
}

constexpr std::string_view kTooLong = "(longer than can be read)";

std::string NameOf(const ListedName& name) {
  if (!name) {
    return std::string(kTooLong);
  }
  return (*name)->empty() ? "(without a name)" : Escape(**name);
}

/// Whether there is an item: one that can be named, or one that cannot be read.
bool IsThere(const ListedName& name) {
  return name ? name->has_value() : name.error() == RegistryError::kInvalid;
}

std::string FindValue(platform::RegistryKey& key, const std::u16string& path) {
  ListedName name = key.EnumerateValue(0);
  for (std::uint32_t i = 1; IsThere(name); name = key.EnumerateValue(i++)) {
    const std::string start = text::ToUtf8(path) + ": ";
    if (!name || !platform::IsValueName(**name)) {
      return start + NameOf(name);
    }
    if (const auto value = key.Query(**name); !value && value.error() == RegistryError::kInvalid) {
      return start + Escape(**name) + ' ' + std::string(kTooLong);
    }
  }
  return {};
}

// Ends at the depth to which the registry opens keys.
std::string FindBelow(platform::Registry& registry, const std::u16string& path) {
  const platform::OpenedKey opened = registry.OpenKey(path);
  if (!opened) {
    return opened.error() == RegistryError::kInvalid ? text::ToUtf8(path) : std::string();
  }
  std::string found = FindValue(**opened, path);
  const std::u16string start = path.empty() ? path : path + u'\\';
  for (std::uint32_t i = 0; found.empty(); ++i) {
    const ListedName name = (*opened)->EnumerateSubkey(i);
    if (!IsThere(name)) {
      break;
    }
    found = name && platform::IsKeyName(**name) ? FindBelow(registry, start + **name)
                                                : text::ToUtf8(start) + NameOf(name);
  }
  return found;
}

}  // namespace

std::string FindUnusableKey(platform::Registry& registry, std::u16string_view start) {
  // Within a group, so that keys that come and go meanwhile are no surprise.
  const auto group = platform::RegistryGroup::Begin(registry);
  return group ? FindBelow(registry, std::u16string(start)) : std::string();
}

}  // namespace storage
