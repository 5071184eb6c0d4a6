#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace text {

/// Returns the UTF-8 of a text. An unpaired surrogate becomes U+FFFD.
[[nodiscard]] std::string ToUtf8(std::u16string_view text);
/// Appends the same to `utf8`.
void AppendUtf8(std::u16string_view text, std::string& utf8);

/// Returns the UTF-16 of UTF-8. Each byte that is not part of well-formed UTF-8 becomes U+FFFD.
[[nodiscard]] std::u16string FromUtf8(std::string_view utf8);

[[nodiscard]] bool IsUtf8(std::string_view bytes);
[[nodiscard]] bool IsAscii(std::string_view bytes);

/// Returns the text of a name in the host's file system, which may hold any bytes. A byte that is
/// not part of well-formed UTF-8 becomes the lone surrogate U+DC00 + byte, so that ToHostName gives
/// back the same bytes.
[[nodiscard]] std::u16string FromHostName(std::string_view name);
[[nodiscard]] std::string ToHostName(std::u16string_view text);

/// Returns the character of `text` at unit `at`, and moves `at` past it. An unpaired surrogate
/// stands for itself.
[[nodiscard]] char32_t NextCharacter(std::u16string_view text, std::size_t& at);

/// Appends one character. An unpaired surrogate is appended as it stands.
void AppendCharacter(std::u16string& text, char32_t character);

[[nodiscard]] constexpr bool IsSurrogate(char32_t character) {
  return character >= 0xD800 && character <= 0xDFFF;
}

}  // namespace text
