#pragma once

#include <QString>
#include <string_view>

namespace home {

// Telephone numbers and their kinds, as the window shows them.

/// Returns a number for any text of the window: between marks, so that its blocks are read from
/// left to right in every script and next to every name. Returns an empty text for an empty one.
[[nodiscard]] QString ShowNumber(std::u16string_view number);

/// Returns the name of a kind, such as "Home fax" of "HomeFax", the word by which the store knows
/// it. Returns any other word as it is.
[[nodiscard]] QString NameKind(std::u16string_view word);

}  // namespace home
