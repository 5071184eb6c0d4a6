#include "storage/unusable_key.h"

#include <cstdint>
#include <string_view>

#include "backends/text/utf.h"
#include "platform/registry_names.h"

namespace storage {
namespace {

using platform::RegistryError;

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

std::string NameOf(RegistryError error, std::u16string_view name) {
  if (error != RegistryError::kNone) {
    return std::string(kTooLong);
  }
  return name.empty() ? "(without a name)" : Escape(name);
}

bool GoesOn(RegistryError error) {
  return error == RegistryError::kNone || error == RegistryError::kInvalid;
}

std::string FindValue(platform::RegistryKey& key, const std::u16string& path) {
  std::u16string name;
  RegistryError error = RegistryError::kNone;
  for (std::uint32_t i = 0; GoesOn(error = key.EnumerateValue(i, name)); ++i) {
    const std::string start = text::ToUtf8(path) + ": ";
    if (error != RegistryError::kNone || !platform::IsValueName(name)) {
      return start + NameOf(error, name);
    }
    platform::RegistryValue value;
    if (key.Query(name, value) == RegistryError::kInvalid) {
      return start + Escape(name) + ' ' + std::string(kTooLong);
    }
  }
  return {};
}

// Ends at the depth to which the registry opens keys.
std::string FindBelow(platform::Registry& registry, const std::u16string& path) {
  const platform::OpenedKey opened = registry.OpenKey(path);
  if (!opened.key) {
    return opened.error == RegistryError::kInvalid ? text::ToUtf8(path) : std::string();
  }
  std::string found = FindValue(*opened.key, path);
  const std::u16string start = path.empty() ? path : path + u'\\';
  std::u16string name;
  RegistryError error = RegistryError::kNone;
  for (std::uint32_t i = 0; found.empty() && GoesOn(error = opened.key->EnumerateSubkey(i, name));
       ++i) {
    found = error == RegistryError::kNone && platform::IsKeyName(name)
                ? FindBelow(registry, start + name)
                : text::ToUtf8(start) + NameOf(error, name);
  }
  return found;
}

}  // namespace

std::string FindUnusableKey(platform::Registry& registry, std::u16string_view start) {
  // Within a group, so that keys that come and go meanwhile are no surprise.
  platform::RegistryGroup group(registry);
  return group.BeginError() == RegistryError::kNone ? FindBelow(registry, std::u16string(start))
                                                    : std::string();
}

}  // namespace storage
