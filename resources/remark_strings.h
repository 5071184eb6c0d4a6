#pragma once

#include <string_view>

namespace resources {

// What the reader of an address book remarks about a place in it. Each follows the file, its line
// and a colon.

inline constexpr std::u16string_view kLineIsLong = u"the line is longer than 8 KiB";
inline constexpr std::u16string_view kCardIsLong =
    u"the card has more than 200 lines of names and numbers";
inline constexpr std::u16string_view kLineHasZero = u"the line holds a zero byte";
inline constexpr std::u16string_view kLineHasManyParts =
    u"the line has more than 64 commas and semicolons";
inline constexpr std::u16string_view kLineWithoutColon = u"the line has no colon";
inline constexpr std::u16string_view kLineOfNoCard = u"the line belongs to no card";
inline constexpr std::u16string_view kCardWithoutEnd =
    u"the card that begins here has no end and is passed over";
inline constexpr std::u16string_view kFileLeadsNowhere =
    u"the file leads nowhere and is passed over";
inline constexpr std::u16string_view kLinkNotFollowed =
    u"the link cannot be followed and is passed over";
inline constexpr std::u16string_view kFileNotOpened =
    u"the file cannot be opened and is passed over";
inline constexpr std::u16string_view kFileWithoutCard = u"the file holds no whole card";
/// "%1" is the number, "%2" the person.
inline constexpr std::u16string_view kNoKindIsFree =
    u"the number %1 of %2 finds no kind that is free";
inline constexpr std::u16string_view kChoiceNotRemembered =
    u"the choice of the address book cannot be remembered";

}  // namespace resources
