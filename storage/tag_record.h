#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"

namespace storage {

// A tag in its two forms: the record in which the pages hold it while they are open, and the entry
// of the registry, which the companion dialer reads too.

/// One learned tag as the pages know it. Both texts are terminated by a zero, so each holds one
/// unit less than its length; a longer text is cut there, but never between the two units of one
/// character.
struct TagRecord {
  std::array<char16_t, 20> tagName{};
  std::array<char16_t, 128> displayText{};

  void SetTagName(std::u16string_view name);
  void SetDisplayText(std::u16string_view text);

  [[nodiscard]] std::u16string_view GetTagName() const;
  [[nodiscard]] std::u16string_view GetDisplayText() const;
};

/// The most tags that there can be.
inline constexpr std::int32_t kMaxTags = 100;

/// The learned tags, and room for as many as there can be.
class TagTable {
 public:
  /// How many tags the registry has. Other programs write there as well, so it may be more than
  /// there is room for here.
  std::int32_t tagCount = 0;

  /// Returns the record at `index`. Returns null if there is no room for it.
  [[nodiscard]] TagRecord* GetRecord(std::int32_t index);
  [[nodiscard]] const TagRecord* GetRecord(std::int32_t index) const;

  /// Moves every record after `index` down by one and counts one tag less; the last place becomes
  /// empty. Nothing happens if there is no such record.
  void Remove(std::int32_t index);

  /// Empties every record, and the count.
  void Clear();

 private:
  std::array<TagRecord, kMaxTags> m_records{};
};

/// Returns the name of a tag that is recorded at this tick count: its decimal text as a signed
/// number.
[[nodiscard]] std::u16string TagNameOfTickCount(std::uint32_t tickCount);

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
