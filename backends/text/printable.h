#pragma once

#include <string>
#include <string_view>

namespace text {

/// Returns whether a terminal may take the character for a command, or may turn or break the line
/// at it: control characters, marks and overrides of the direction of writing, and the separators
/// of lines and paragraphs.
[[nodiscard]] bool IsCommand(char16_t unit);

/// Returns `utf8` in a form that is safe for a terminal, since it may hold names that others chose.
/// A control character or a separator becomes a blank; ends of lines and tabs stay. A mark of
/// direction has no width and is left out: letters that are written from right to left need none. A
/// byte that is not part of well-formed UTF-8 becomes U+FFFD.
[[nodiscard]] std::string Printable(std::string_view utf8);

}  // namespace text
