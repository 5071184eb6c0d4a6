#pragma once

#include <string_view>

#include "resources/strings.h"

namespace resources {

inline constexpr int kAppletNameString = 1;

/// An entry of the string table; empty where there is none.
[[nodiscard]] constexpr std::u16string_view FindString(int id) {
  return id == kAppletNameString ? kAppletName : std::u16string_view();
}

}  // namespace resources
