#pragma once

#include <QString>
#include <string_view>

#include "backends/qt/strings.h"

namespace home {

// Names, telephone numbers and their kinds, as the window shows them.

/// Returns a name for a place in a sentence. One that has letters that are read from right to left
/// is set apart, since it would turn the order of the words around it.
[[nodiscard]] QString InSentence(const QString& name);
[[nodiscard]] inline QString InSentence(std::u16string_view name) {
  return InSentence(qt::ToQString(name));
}

/// Returns the text between marks, so that it is read from left to right in every window and next
/// to every name. Returns a text with letters that are read from right to left as it is.
[[nodiscard]] QString FromLeftToRight(const QString& text);

/// Returns a number for any text of the window. Returns an empty text for an empty one.
[[nodiscard]] inline QString ShowNumber(std::u16string_view number) {
  return FromLeftToRight(qt::ToQString(number));
}

/// Returns the name of a kind, such as "Home fax" of "HomeFax", the word by which the store knows
/// it. Returns any other word as it is.
[[nodiscard]] QString NameKind(std::u16string_view word);

}  // namespace home
