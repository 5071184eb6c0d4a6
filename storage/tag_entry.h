#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"

namespace storage {

/// What the registry says about one tag.
struct TagEntry {
  /// The contact's identifier. Nothing where the entry names no contact: its value is missing, is
  /// no text, or does not begin with a number of 32 bits. That is no proof of a contact that has
  /// gone.
  std::optional<std::int32_t> oid;

  /// The stored word, which need not be one of the phone types; empty where there is none.
  std::u16string phoneType;
};

/// The bytes that a text is stored with in a tag's entry: UTF-16, little-endian, as much of it as
/// leaves room for a terminator in kTagValueBytes, and zeros to that length.
[[nodiscard]] std::vector<std::byte> ToTagValue(std::u16string_view text);

/// The text that a value holds, up to its first zero or its end; empty where the value is no text.
[[nodiscard]] std::u16string TextOfValue(const platform::RegistryValue& value);

/// The number that `text` begins with: blanks, a sign, decimal digits. Nothing where there are no
/// digits or the number does not fit.
[[nodiscard]] std::optional<std::int32_t> ParseOid(std::u16string_view text);

}  // namespace storage
