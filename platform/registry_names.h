#pragma once

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/registry.h"

namespace platform {

/// Whether a registry takes `name` as the name of one key.
[[nodiscard]] inline bool IsKeyName(std::u16string_view name) {
  constexpr char16_t kFirstPrintable = u' ';
  return !name.empty() && name.size() <= kMaxKeyNameLength &&
         std::none_of(name.begin(), name.end(),
                      [](char16_t unit) { return unit < kFirstPrintable || unit == u'\\'; });
}

[[nodiscard]] inline bool IsValueName(std::u16string_view name) {
  return name.size() <= kMaxValueNameLength && name.find(u'\0') == std::u16string_view::npos;
}

/// The key names of `path` from the root downwards, none for the root itself; nothing where it is
/// not a path.
[[nodiscard]] inline std::optional<std::vector<std::u16string_view>> SplitKeyPath(
    std::u16string_view path) {
  std::vector<std::u16string_view> names;
  if (path.empty()) {
    return names;
  }
  while (true) {
    const std::size_t end = path.find(u'\\');
    const std::u16string_view name = path.substr(0, end);
    if (!IsKeyName(name) || names.size() == kMaxKeyDepth) {
      return std::nullopt;
    }
    names.push_back(name);
    if (end == std::u16string_view::npos) {
      return names;
    }
    path.remove_prefix(end + 1);
  }
}

}  // namespace platform
