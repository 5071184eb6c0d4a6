#include "storage/tag_record.h"

#include <algorithm>
#include <limits>

#include "backends/text/registry_text.h"
#include "language/texts.h"
#include "storage/registry_keys.h"
#include "storage/stored_text.h"

namespace storage {

namespace {

/// What was in the field before goes to its last unit, so that equal records have equal bytes.
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
  // The records below move up by one, and the last place is empty again. All of them move, as rows
  // beyond the count may hold something too.
  *std::move(removed + 1, m_records.end(), removed) = {};
  --tagCount;
}

void TagTable::Clear() {
  m_records.fill({});
  tagCount = 0;
}

std::u16string TagNameOfTickCount(std::uint32_t tickCount) {
  // As a signed number: after 24.8 days of running, names begin with a minus.
  return language::Decimal(static_cast<std::int32_t>(tickCount));
}

std::vector<std::byte> ToTagValue(std::u16string_view text) {
  constexpr std::size_t kMostUnits = kTagValueBytes / sizeof(char16_t) - 1;
  std::vector<std::byte> bytes = ToUtf16Bytes(CutText(UpToZero(text), kMostUnits));
  // The value always has the same length. What follows the text is zeros.
  bytes.resize(kTagValueBytes);
  return bytes;
}

std::u16string TextOfValue(const platform::RegistryValue& value) {
  return text::ToText(value).value_or(std::u16string());
}

std::optional<std::int32_t> ParseOid(std::u16string_view text) {
  constexpr std::int64_t kBase = 10;
  std::size_t at = 0;
  // As the C library reads numbers: blanks, a sign, digits, and whatever follows is not looked at.
  while (at < text.size() && (text[at] == u' ' || text[at] == u'\t')) {
    ++at;
  }
  const bool isNegative = at < text.size() && text[at] == u'-';
  if (at < text.size() && (text[at] == u'-' || text[at] == u'+')) {
    ++at;
  }
  // Away from zero in both directions, since the smallest number has no positive counterpart.
  const std::size_t firstDigit = at;
  std::int64_t number = 0;
  for (; at < text.size() && text[at] >= u'0' && text[at] <= u'9'; ++at) {
    const std::int64_t digit = text[at] - u'0';
    number = number * kBase + (isNegative ? -digit : digit);
    if (number < std::numeric_limits<std::int32_t>::min() ||
        number > std::numeric_limits<std::int32_t>::max()) {
      return std::nullopt;
    }
  }
  if (at == firstDigit) {
    return std::nullopt;
  }
  return static_cast<std::int32_t>(number);
}

}  // namespace storage
