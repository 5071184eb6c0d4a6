#pragma once

#include <algorithm>
#include <span>
#include <string_view>

#include "resources/string_table.h"

namespace platform {

/// What Module::LoadString does, for back ends whose system has no string tables of its own.
inline int CopyModuleString(int id, std::span<char16_t> buffer) {
  const std::u16string_view text = resources::FindString(id);
  if (text.empty() || buffer.empty()) {
    return 0;
  }
  const std::u16string_view fitting = text.substr(0, buffer.size() - 1);
  std::ranges::copy(fitting, buffer.begin());
  buffer[fitting.size()] = u'\0';
  return static_cast<int>(fitting.size());
}

}  // namespace platform
