#include "storage/tag_record.h"

#include <algorithm>

#include "language/texts.h"
#include "storage/stored_text.h"

namespace storage {

namespace {

template <std::size_t kLength>
void Store(std::u16string_view text, std::array<char16_t, kLength>& field) {
  const std::u16string_view kept = CutText(UpToZero(text), kLength - 1);
  field.fill(u'\0');
  std::copy(kept.begin(), kept.end(), field.begin());
}

bool HasRoomFor(std::int32_t index) { return index >= 0 && index < kMaxTags; }

template <std::size_t kLength>
std::u16string_view Read(const std::array<char16_t, kLength>& field) {
  return UpToZero({field.data(), field.size()});
}

}  // namespace

void TagRecord::SetTagName(std::u16string_view name) { Store(name, tagName); }

void TagRecord::SetDisplayText(std::u16string_view text) { Store(text, displayText); }

std::u16string_view TagRecord::GetTagName() const { return Read(tagName); }

std::u16string_view TagRecord::GetDisplayText() const { return Read(displayText); }

TagRecord* TagTable::GetRecord(std::int32_t index) {
  return HasRoomFor(index) ? &m_records[static_cast<std::size_t>(index)] : nullptr;
}

const TagRecord* TagTable::GetRecord(std::int32_t index) const {
  return HasRoomFor(index) ? &m_records[static_cast<std::size_t>(index)] : nullptr;
}

void TagTable::Remove(std::int32_t index) {
  if (!HasRoomFor(index) || index >= tagCount) {
    return;
  }
  const auto removed = m_records.begin() + index;
  *std::move(removed + 1, m_records.end(), removed) = {};
  --tagCount;
}

void TagTable::Clear() {
  m_records.fill({});
  tagCount = 0;
}

std::u16string TagNameOfTickCount(std::uint32_t tickCount) {
  return language::Decimal(static_cast<std::int32_t>(tickCount));
}

}  // namespace storage
