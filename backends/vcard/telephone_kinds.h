#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/contacts_store.h"

namespace vcard {

/// What words of a line say about its telephone, one bit each. Their order and number say nothing.
using Words = std::uint32_t;
inline constexpr Words kAssistantWord = 1U << 0;
inline constexpr Words kRadioWord = 1U << 1;
inline constexpr Words kCarWord = 1U << 2;
inline constexpr Words kCellWord = 1U << 3;
inline constexpr Words kWorkWord = 1U << 4;
inline constexpr Words kHomeWord = 1U << 5;
inline constexpr Words kFaxWord = 1U << 6;
inline constexpr Words kNoVoiceWord = 1U << 7;  ///< No telephone to speak through, and no fax.
inline constexpr Words kPreferredWord = 1U << 8;
inline constexpr Words kOtherWord = 1U << 9;  ///< Something that is no kind of telephone.

/// Returns what the words of a type such as "X-EVOLUTION-RADIO" or "work,voice", or of a label such
/// as "_$!<HomeFAX>!$_", say.
[[nodiscard]] Words WordsOf(std::string_view typeOrLabel);

/// Does the same, but a label that also says something else says nothing: "Car Rental" is no number
/// in a car.
[[nodiscard]] Words WordsOfLabel(std::string_view label);

/// One telephone line of a card.
struct TelephoneLine {
  std::u16string number;
  Words words = 0;  ///< Everything that says what the number is: types and labels.
  /// The line only counts if one of `words` names a kind. Such lines carry other things too.
  bool needsKind = false;
  int preference = 0;     ///< 1 to 100, the first one first; 0 if the line does not say.
  std::size_t place = 0;  ///< For the caller alone.
};

/// A contact's numbers, indexed by the code of platform::PhoneKind.
using Numbers = std::array<std::u16string, platform::kPhoneKindCount>;

enum class Rules : std::uint8_t {
  kNow,
  /// The rules of the time of the former entries (see StoredBook). Their contacts are found by
  /// them. A second mobile number has no place, and a preference only says whether a number is the
  /// first.
  kFormer,
};

struct AssignedNumbers {
  Numbers numbers;
  std::vector<std::size_t>
      unplaced;  ///< Indexes of lines that mean a telephone and found no place.
};

/// Gives each line its place among the ten kinds, in the order of the preferences and then of the
/// card. A preference without a number goes first if the kind has one place, and counts for nothing
/// otherwise. A line that says nothing about its kind takes what is left of Mobile, Home and
/// Business at the end. Further mobile numbers take what is left after that.
///
/// A number that finds a place is moved there.
[[nodiscard]] AssignedNumbers AssignNumbers(std::span<TelephoneLine> lines,
                                            Rules rules = Rules::kNow);

}  // namespace vcard
