#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/contacts_store.h"

namespace vcard {

/// One telephone line of a card.
struct TelephoneLine {
  std::u16string number;
  /// Everything that says what the number is, in ASCII capitals: types, and the words of a label.
  std::vector<std::string> words;
  /// The line only counts if one of `words` names a kind. Such lines carry other things too.
  bool needsKind = false;
  int preference = 0;  ///< 1 to 100, the first one first; 0 if the line does not say.
};

/// A contact's numbers, indexed by the code of platform::PhoneKind.
using Numbers = std::array<std::u16string, platform::kPhoneKindCount>;

/// Appends the words that a type such as "X-EVOLUTION-RADIO" or "work,voice", or a label such as
/// "_$!<HomeFAX>!$_", stands for.
void AppendWords(std::string_view typeOrLabel, std::vector<std::string>& words);

/// Does the same as AppendWords, but appends nothing if the label also says something else: "Car
/// Rental" is no number in a car.
void AppendLabel(std::string_view label, std::vector<std::string>& words);

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
[[nodiscard]] AssignedNumbers AssignNumbers(std::span<const TelephoneLine> lines,
                                            Rules rules = Rules::kNow);

}  // namespace vcard
