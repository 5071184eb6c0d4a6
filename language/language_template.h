#pragma once

#include <string>
#include <vector>

namespace language {

/// The text of a complete English language file, with comments for translators.
[[nodiscard]] std::u16string LanguageTemplate();

/// A text as the bytes of a language file: UTF-16LE behind the byte-order mark.
[[nodiscard]] std::vector<std::byte> ToLanguageFile(std::u16string_view text);

}  // namespace language
