#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ebook {

/// Whether `name` is one of the character sets that address books write. Other names are not handed
/// to the system's converter: a file must not choose which of its hundreds of modules is loaded.
[[nodiscard]] bool IsKnownCharset(std::string_view name);

[[nodiscard]] bool IsUtf8(std::string_view text);

/// UTF-8 of `text`; nothing where the set is unknown or the text is not in it.
[[nodiscard]] std::optional<std::string> ToUtf8(std::string_view text, std::string_view charset);

/// UTF-8 of text that names no character set: UTF-8 where it is valid as such, else the set of the
/// old western Windows programs, which wrote theirs without saying so.
[[nodiscard]] std::string GuessUtf8(std::string_view text);

}  // namespace ebook
