#pragma once

#include <array>
#include <string>
#include <string_view>

#include "platform/contacts_store.h"

namespace tags {

using platform::PhoneKind;

/// The order in which the numbers of a contact are gathered.
inline constexpr std::array kReadingOrder = {
    PhoneKind::kMobile,   PhoneKind::kRadio,     PhoneKind::kCar,         PhoneKind::kAssistant,
    PhoneKind::kBusiness, PhoneKind::kBusiness2, PhoneKind::kBusinessFax, PhoneKind::kHome,
    PhoneKind::kHome2,    PhoneKind::kHomeFax};
static_assert(kReadingOrder.size() == platform::kPhoneKindCount);

/// Returns a number as the number combo box shows it: "555 Home2".
[[nodiscard]] std::u16string ToComboItem(std::u16string_view number, PhoneKind kind);

/// Returns a number as it stands after the name in the tag list: "555 H2".
[[nodiscard]] std::u16string ToListNumber(std::u16string_view number, PhoneKind kind);

/// Returns what follows the last white space of an item of the number combo box: "Home2" of
/// "555 Home2". Returns the whole item if it has no white space.
[[nodiscard]] std::u16string_view PhoneTypeWord(std::u16string_view item);

/// Returns whether a phone-type word can begin with this unit. The words that the system knows are
/// ASCII, and letters of other scripts count as well. No word begins with a digit, a blank or a
/// sign, as a bare number does.
[[nodiscard]] constexpr bool IsWordLetter(char16_t unit) {
  return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z') || unit >= 0xC0;
}

}  // namespace tags
