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
  /// The contact's identifier. Nothing if the entry names no contact: its value is missing, is no
  /// text, or does not begin with a number of 32 bits. That does not prove that the contact has
  /// gone.
  std::optional<std::int32_t> oid;

  /// The stored word, which need not be one of the phone types. Empty if there is none.
  std::u16string phoneType;
};

/// Returns the bytes that a text is stored with in a tag's entry: UTF-16, little-endian, as much of
/// it as leaves room for a terminator in kTagValueBytes, and zeros to that length.
[[nodiscard]] std::vector<std::byte> ToTagValue(std::u16string_view text);

/// Returns the text that a value holds, up to its first zero or its end. Returns an empty text if
/// the value is no text.
[[nodiscard]] std::u16string TextOfValue(const platform::RegistryValue& value);

/// Returns the number that `text` begins with: blanks, a sign, decimal digits. Returns nothing if
/// there are no digits or the number does not fit.
[[nodiscard]] std::optional<std::int32_t> ParseOid(std::u16string_view text);

}  // namespace storage
