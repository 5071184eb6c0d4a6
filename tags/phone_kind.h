#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "platform/contacts_store.h"

namespace tags {

using PhoneKind = platform::PhoneNumberKind;

/// The texts of one kind of telephone number.
struct PhoneKindTexts {
  PhoneKind kind;
  std::u16string_view word;         ///< As the registry keeps it.
  std::u16string_view comboSuffix;  ///< Behind a number in the combo box.
  std::u16string_view listMark;     ///< Behind a number in the tag list.
};

/// Indexed by the stored code. The companion dialer reads the words, and they are tested in this
/// order.
inline constexpr std::array<PhoneKindTexts, 10> kPhoneKinds = {{
    {PhoneKind::kCar, u"Car", u" Car", u" C"},
    {PhoneKind::kRadio, u"Radio", u" Radio", u" R"},
    {PhoneKind::kMobile, u"Mobile", u" Mobile", u" M"},
    {PhoneKind::kAssistant, u"Assistant", u" Assistant", u" A"},
    {PhoneKind::kBusiness, u"Business", u" Business", u" B"},
    {PhoneKind::kBusiness2, u"Business2", u" Business2", u" B2"},
    {PhoneKind::kBusinessFax, u"BusinessFax", u" BusinessFax", u" Bx"},
    {PhoneKind::kHome, u"Home", u" Home", u" H"},
    {PhoneKind::kHome2, u"Home2", u" Home2", u" H2"},
    {PhoneKind::kHomeFax, u"HomeFax", u" HomeFax", u" Hx"},
}};

/// The order in which the numbers of a contact are gathered.
inline constexpr std::array<PhoneKind, 10> kReadingOrder = {
    PhoneKind::kMobile,   PhoneKind::kRadio,     PhoneKind::kCar,         PhoneKind::kAssistant,
    PhoneKind::kBusiness, PhoneKind::kBusiness2, PhoneKind::kBusinessFax, PhoneKind::kHome,
    PhoneKind::kHome2,    PhoneKind::kHomeFax};

[[nodiscard]] constexpr const PhoneKindTexts& TextsOf(PhoneKind kind) {
  return kPhoneKinds[static_cast<std::size_t>(kind)];
}

/// The kind that a stored word names, letter case included; null where it names none.
[[nodiscard]] const PhoneKindTexts* FindPhoneKind(std::u16string_view word);

/// What follows the last white space of an item of the number combo box: "Home2" of "555 Home2". An
/// item without white space is kept whole.
[[nodiscard]] std::u16string_view PhoneTypeWord(std::u16string_view item);

}  // namespace tags
