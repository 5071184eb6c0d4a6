#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vcard {

/// Returns `text` in UTF-8, with U+FFFD for each byte that means nothing in the set. Returns
/// nothing if there is such a byte and either the set is UTF-8 or ASCII, or the text is UTF-8 as it
/// stands, so that the name of the set is wrong. Returns nothing either if the set is none of those
/// that address books write. Other names are not handed to the system's converter: a file must not
/// choose which of its hundreds of modules is loaded.
[[nodiscard]] std::optional<std::string> ToUtf8(std::string_view text, std::string_view charset);

/// Text that names no character set: as it stands if some character beyond ASCII is UTF-8, even if
/// single bytes are not. Otherwise it is read in the set of the old western Windows programs, which
/// wrote theirs without naming it.
[[nodiscard]] std::string GuessUtf8(std::string_view text);

/// Returns what former versions made of the text: they did not know ISO-2022-JP, and gave up a set
/// at the first byte that means nothing in it.
[[nodiscard]] std::string FormerUtf8(std::string_view text, std::string_view charset);

/// Whether bytes of the set mean something else after an escape sequence.
[[nodiscard]] bool IsStateful(std::string_view charset);

}  // namespace vcard
