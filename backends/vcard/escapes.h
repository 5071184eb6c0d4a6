#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vcard {

// What keeps text apart from what is written around it. None of these refuses anything: what is no
// escape stands for itself.

/// The text without soft line breaks, which are gone when lines are put together.
[[nodiscard]] std::string DecodeQuotedPrintable(std::string_view text);

/// The text of a URI.
[[nodiscard]] std::string DecodePercents(std::string_view text);

/// Returns the bytes that base64 stands for. Blanks within it are passed over. Returns nothing if
/// it is not base64.
[[nodiscard]] std::optional<std::string> DecodeBase64(std::string_view text);

enum class Commas : std::uint8_t {
  kKept,
  kBlanks,  ///< One without a backslash and without a blank after it stands between two names.
};

/// The components of a value between its semicolons, each without its backslashes.
[[nodiscard]] std::vector<std::string> SplitValue(std::string_view value,
                                                  Commas commas = Commas::kKept);

}  // namespace vcard
