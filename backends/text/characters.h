#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace text {

/// The character of `text` at unit `at`, which moves behind it. An unpaired surrogate stands for
/// itself.
[[nodiscard]] char32_t NextCharacter(std::u16string_view text, std::size_t& at);

/// Appends one character, also an unpaired surrogate, as it stands.
void AppendCharacter(std::u16string& text, char32_t character);

[[nodiscard]] constexpr bool IsSurrogate(char32_t character) {
  return character >= 0xD800 && character <= 0xDFFF;
}

}  // namespace text
