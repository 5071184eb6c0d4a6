#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "platform/contacts_store.h"

namespace storage {

/// How a kind of telephone number stands in a tag, and behind the number in lists.
struct PhoneType {
  platform::PhoneNumberKind kind = platform::PhoneNumberKind::kCar;
  std::u16string_view word;
  std::u16string_view abbreviation;
};

/// In the order of the kinds' codes, which is also that in which a stored word is tested.
inline constexpr std::array<PhoneType, 10> kPhoneTypes{{
    {platform::PhoneNumberKind::kCar, u"Car", u"C"},
    {platform::PhoneNumberKind::kRadio, u"Radio", u"R"},
    {platform::PhoneNumberKind::kMobile, u"Mobile", u"M"},
    {platform::PhoneNumberKind::kAssistant, u"Assistant", u"A"},
    {platform::PhoneNumberKind::kBusiness, u"Business", u"B"},
    {platform::PhoneNumberKind::kBusiness2, u"Business2", u"B2"},
    {platform::PhoneNumberKind::kBusinessFax, u"BusinessFax", u"Bx"},
    {platform::PhoneNumberKind::kHome, u"Home", u"H"},
    {platform::PhoneNumberKind::kHome2, u"Home2", u"H2"},
    {platform::PhoneNumberKind::kHomeFax, u"HomeFax", u"Hx"},
}};

/// The type whose word is exactly `word`, letter case included. A word that is none of them is no
/// error: such a tag is shown without a number.
[[nodiscard]] constexpr std::optional<PhoneType> FindPhoneType(std::u16string_view word) {
  for (const PhoneType& type : kPhoneTypes) {
    if (type.word == word) {
      return type;
    }
  }
  return std::nullopt;
}

[[nodiscard]] constexpr const PhoneType& GetPhoneType(platform::PhoneNumberKind kind) {
  return kPhoneTypes[static_cast<std::size_t>(kind)];
}

}  // namespace storage
