#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vcard {

/// UTF-8 of `text`; nothing where the text is not in the set, or the set is none of those that
/// address books write. Other names are not handed to the system's converter: a file must not
/// choose which of its hundreds of modules is loaded.
[[nodiscard]] std::optional<std::string> ToUtf8(std::string_view text, std::string_view charset);

/// UTF-8 of text that names no character set: UTF-8 where it is valid as such, else the set of the
/// old western Windows programs, which wrote theirs without saying so.
[[nodiscard]] std::string GuessUtf8(std::string_view text);

}  // namespace vcard
