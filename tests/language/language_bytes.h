#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "language/translation.h"

/// Bytes of a language file that holds `text` after the byte-order mark.
inline std::vector<std::byte> FileOf(std::u16string_view text) {
  return language::ToLanguageFile(text);
}

/// Bytes as they stand.
inline std::vector<std::byte> Bytes(std::string_view bytes) {
  std::vector<std::byte> result;
  for (const char byte : bytes) {
    result.push_back(static_cast<std::byte>(byte));
  }
  return result;
}
