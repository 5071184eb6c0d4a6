#pragma once

#include <string_view>

namespace vcard {

// Where the choice of the address book and the numbers of its contacts are remembered. Apart from
// the key of the tags, which holds nothing but tags.

inline constexpr std::u16string_view kContactsKey = u"Software\\Zedra\\Voxtrel Contacts";

/// Text: "eds" or the path of a vCard file or folder.
inline constexpr std::u16string_view kChoiceValue = u"chosen";

/// Text, in the subkey of each address book: its lasting name.
inline constexpr std::u16string_view kSourceValue = u"source";

}  // namespace vcard
