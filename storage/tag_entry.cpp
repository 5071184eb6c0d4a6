#include "storage/tag_entry.h"

#include <limits>

#include "storage/fixed_text.h"
#include "storage/registry_keys.h"

namespace storage {

namespace {

constexpr unsigned kBitsOfByte = 8;

}  // namespace

std::vector<std::byte> ToTagValue(std::u16string_view text) {
  std::vector<std::byte> bytes(kTagValueBytes);
  std::size_t at = 0;
  for (const char16_t unit : CutText(UpToZero(text), kTagValueBytes / sizeof(char16_t) - 1)) {
    bytes[at++] = static_cast<std::byte>(unit & 0xFF);
    bytes[at++] = static_cast<std::byte>(unit >> kBitsOfByte);
  }
  return bytes;
}

std::u16string TextOfValue(const platform::RegistryValue& value) {
  std::u16string text;
  if (value.type != platform::RegistryType::kString) return text;
  for (std::size_t i = 0; i + 1 < value.bytes.size(); i += sizeof(char16_t)) {
    const auto unit =
        static_cast<char16_t>(std::to_integer<unsigned>(value.bytes[i]) |
                              std::to_integer<unsigned>(value.bytes[i + 1]) << kBitsOfByte);
    if (unit == u'\0') break;
    text += unit;
  }
  return text;
}

std::optional<std::int32_t> ParseOid(std::u16string_view text) {
  constexpr std::int64_t kBase = 10;
  std::size_t at = 0;
  while (at < text.size() && (text[at] == u' ' || text[at] == u'\t')) ++at;
  const bool isNegative = at < text.size() && text[at] == u'-';
  if (at < text.size() && (text[at] == u'-' || text[at] == u'+')) ++at;
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
  if (at == firstDigit) return std::nullopt;
  return static_cast<std::int32_t>(number);
}

}  // namespace storage
