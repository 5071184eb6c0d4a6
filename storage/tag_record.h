#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace storage {

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
  /// How many tags there are said to be. Counted from the registry, which other programs write as
  /// well, so it may be more than there is room for.
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

/// The name of a tag that is recorded at this tick count: its decimal text as a signed number.
[[nodiscard]] std::u16string TagNameOfTickCount(std::uint32_t tickCount);

}  // namespace storage
