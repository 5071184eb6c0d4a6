#include "storage/unusable_key.h"

#include <cstdint>
#include <string_view>

#include "platform/registry_names.h"
#include "platform/text/utf.h"

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

// Ends at the depth to which the registry opens keys.
std::string FindBelow(platform::Registry& registry, const std::u16string& path) {
  const platform::OpenedKey opened = registry.OpenKey(path);
  if (!opened.key) {
    return opened.error == RegistryError::kInvalid ? text::ToUtf8(path) : std::string();
  }
  std::u16string name;
  for (std::uint32_t i = 0; opened.key->EnumerateSubkey(i, name) == RegistryError::kNone; ++i) {
    const std::u16string start = path.empty() ? path : path + u'\\';
    std::string found = platform::IsKeyName(name) ? FindBelow(registry, start + name)
                                                  : text::ToUtf8(start) + Escape(name);
    if (!found.empty()) {
      return found;
    }
  }
  return {};
}

}  // namespace

std::string FindUnusableKey(platform::Registry& registry) {
  // Within a group, so that keys that come and go meanwhile are no surprise.
  platform::RegistryGroup group(registry);
  return group.BeginError() == RegistryError::kNone ? FindBelow(registry, {}) : std::string();
}

}  // namespace storage
