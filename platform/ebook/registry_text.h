#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"

namespace ebook {

/// Whether the value was written; with its terminating zero.
[[nodiscard]] platform::RegistryError SetText(platform::RegistryKey& key, std::u16string_view name,
                                              std::u16string_view text);

/// Text of a value up to its first zero; nothing where the value holds no text.
[[nodiscard]] std::optional<std::u16string> ToText(const platform::RegistryValue& value);

}  // namespace ebook
