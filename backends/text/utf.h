#pragma once

#include <string>
#include <string_view>

namespace text {

/// UTF-8 of a text; an unpaired surrogate becomes U+FFFD.
[[nodiscard]] std::string ToUtf8(std::u16string_view text);

/// UTF-16 of UTF-8; each byte that is not part of well-formed UTF-8 becomes U+FFFD.
[[nodiscard]] std::u16string FromUtf8(std::string_view utf8);

[[nodiscard]] bool IsUtf8(std::string_view bytes);

/// Text of a name in the host's file system, which may hold any bytes: a byte that is not part of
/// well-formed UTF-8 becomes the lone surrogate U+DC00 + byte, so that ToHostName gives back the
/// same bytes.
[[nodiscard]] std::u16string FromHostName(std::string_view name);
[[nodiscard]] std::string ToHostName(std::u16string_view text);

}  // namespace text
