#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tags/phone_kind.h"

namespace tags {

/// Room for a contact's name, its terminating zero included.
inline constexpr std::size_t kNameCapacity = 128;

/// As much of `name` as that room holds; a character is not cut in half.
[[nodiscard]] std::u16string_view FitName(std::u16string_view name);

/// One contact that has a usable number.
struct ContactRecord {
  static constexpr std::int32_t kNoPhoneKind = -1;

  std::array<char16_t, kNameCapacity> name{};  ///< Zero-terminated; as the contact combo shows it.
  std::int32_t oid = 0;
  /// Codes of the numbers found, in reading order, packed from the front.
  std::array<std::int32_t, kReadingOrder.size()> phoneKinds;

  ContactRecord() { phoneKinds.fill(kNoPhoneKind); }

  void SetName(std::u16string_view text);
  [[nodiscard]] std::u16string_view GetName() const { return name.data(); }
  [[nodiscard]] bool HasNumber() const { return phoneKinds.front() != kNoPhoneKind; }
};

}  // namespace tags
