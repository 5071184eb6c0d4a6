#pragma once

#include <string>
#include <string_view>

namespace ebook {

/// Appends one unfolded content line to `card` in a form from which the library's parser loses
/// nothing: it drops lines with parameters such as Android's "X-CUSTOM(Label)", reads eight-bit
/// text as UTF-8 whatever its character set, and warns on the standard error about stray
/// backslashes. False where the line has no name or value; nothing is appended then.
[[nodiscard]] bool AppendForParser(std::string_view line, std::string& card);

}  // namespace ebook
