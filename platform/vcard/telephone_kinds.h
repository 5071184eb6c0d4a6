#pragma once

#include <array>
#include <span>
#include <string>
#include <vector>

namespace vcard {

/// One telephone line of a card.
struct TelephoneLine {
  std::u16string number;
  /// Everything that says what the number is, in ASCII capitals: types, and the words of a label.
  std::vector<std::string> words;
  /// Only counted where one of `words` names a kind: for lines that carry other things besides.
  bool needsKind = false;
};

/// A contact's numbers, indexed by the code of platform::PhoneNumberKind.
using Numbers = std::array<std::u16string, 10>;

/// Appends the words that a type such as "X-EVOLUTION-RADIO" or "work,voice", or a label such as
/// "_$!<HomeFAX>!$_", stands for.
void AppendWords(std::string_view typeOrLabel, std::vector<std::string>& words);

/// Gives each line its place among the ten kinds, in the order of the card; a line for which no
/// place is left or meant is dropped. Where a kind has one place, a preferred number takes it
/// before the others. What says nothing about its kind takes what is left at the end.
[[nodiscard]] Numbers AssignNumbers(std::span<const TelephoneLine> lines);

}  // namespace vcard
