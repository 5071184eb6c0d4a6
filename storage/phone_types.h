#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "platform/contacts_store.h"

namespace storage {

/// How a kind of telephone number is written: in a tag's entry, and after the number in lists.
struct PhoneType {
  platform::PhoneKind kind = platform::PhoneKind::kCar;
  std::u16string_view word;
  std::u16string_view abbreviation;
};

/// In the order of the kinds' codes, which is also that in which a stored word is tested.
inline constexpr std::array kPhoneTypes = std::to_array<PhoneType>({
    {platform::PhoneKind::kCar, u"Car", u"C"},
    {platform::PhoneKind::kRadio, u"Radio", u"R"},
    {platform::PhoneKind::kMobile, u"Mobile", u"M"},
    {platform::PhoneKind::kAssistant, u"Assistant", u"A"},
    {platform::PhoneKind::kBusiness, u"Business", u"B"},
    {platform::PhoneKind::kBusiness2, u"Business2", u"B2"},
    {platform::PhoneKind::kBusinessFax, u"BusinessFax", u"Bx"},
    {platform::PhoneKind::kHome, u"Home", u"H"},
    {platform::PhoneKind::kHome2, u"Home2", u"H2"},
    {platform::PhoneKind::kHomeFax, u"HomeFax", u"Hx"},
});
static_assert(kPhoneTypes.size() == platform::kPhoneKindCount);

/// Returns the type whose word is exactly `word`, letter case included. Returns nothing for any
/// other word. That is no error: such a tag is shown without a number.
[[nodiscard]] constexpr std::optional<PhoneType> FindPhoneType(std::u16string_view word) {
  for (const PhoneType& type : kPhoneTypes) {
    if (type.word == word) {
      return type;
    }
  }
  return std::nullopt;
}

[[nodiscard]] constexpr const PhoneType& GetPhoneType(platform::PhoneKind kind) {
  return kPhoneTypes[static_cast<std::size_t>(kind)];
}

}  // namespace storage
