#include "storage/tag_entry.h"

#include <limits>

#include "storage/registry_keys.h"
#include "storage/stored_text.h"

namespace storage {

std::vector<std::byte> ToTagValue(std::u16string_view text) {
  constexpr std::size_t kMostUnits = kTagValueBytes / sizeof(char16_t) - 1;
  std::vector<std::byte> bytes = ToUtf16Bytes(CutText(UpToZero(text), kMostUnits));
  bytes.resize(kTagValueBytes);
  return bytes;
}

std::u16string TextOfValue(const platform::RegistryValue& value) {
  if (value.type != platform::RegistryType::kString) {
    return {};
  }
  return std::u16string(UpToZero(FromUtf16Bytes(value.bytes)));
}

std::optional<std::int32_t> ParseOid(std::u16string_view text) {
  constexpr std::int64_t kBase = 10;
  std::size_t at = 0;
  while (at < text.size() && (text[at] == u' ' || text[at] == u'\t')) {
    ++at;
  }
  const bool isNegative = at < text.size() && text[at] == u'-';
  if (at < text.size() && (text[at] == u'-' || text[at] == u'+')) {
    ++at;
  }
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
