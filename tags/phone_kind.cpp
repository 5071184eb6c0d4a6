#include "tags/phone_kind.h"

#include <algorithm>
#include <cstddef>

#include "storage/phone_types.h"

namespace tags {
namespace {

/// The white space of Unicode. The table of the C library depends on the locale of the process.
constexpr bool IsWhiteSpace(char16_t c) {
  return (c >= 0x9 && c <= 0xD) || c == 0x20 || c == 0x85 || c == 0xA0 || c == 0x1680 ||
         (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F ||
         c == 0x3000;
}

}  // namespace

std::u16string ToComboItem(std::u16string_view number, PhoneKind kind) {
  return std::u16string(number) + u' ' + std::u16string(storage::GetPhoneType(kind).word);
}

std::u16string ToListNumber(std::u16string_view number, PhoneKind kind) {
  return std::u16string(number) + u' ' + std::u16string(storage::GetPhoneType(kind).abbreviation);
}

std::u16string_view PhoneTypeWord(std::u16string_view item) {
  // The word follows the last blank: a number may hold blanks, and a word holds none. An item
  // without a blank is all word.
  const auto lastBlank = std::find_if(item.rbegin(), item.rend(), IsWhiteSpace);
  return item.substr(static_cast<std::size_t>(item.rend() - lastBlank));
}

}  // namespace tags
