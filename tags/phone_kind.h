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

/// A number as the number combo box shows it: "555 Home2".
[[nodiscard]] std::u16string ToComboItem(std::u16string_view number, PhoneKind kind);

/// A number as it stands behind the name in the tag list: "555 H2".
[[nodiscard]] std::u16string ToListNumber(std::u16string_view number, PhoneKind kind);

/// What follows the last white space of an item of the number combo box: "Home2" of "555 Home2". An
/// item without white space is kept whole.
[[nodiscard]] std::u16string_view PhoneTypeWord(std::u16string_view item);

}  // namespace tags
