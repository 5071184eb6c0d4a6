#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// What a translator gets: the template of a language file, and a check of what became of it.

namespace language {

/// Returns the text of a complete English language file, with comments for translators.
[[nodiscard]] std::u16string LanguageTemplate();

/// Returns a text as the bytes of a language file: the byte-order mark and UTF-16LE.
[[nodiscard]] std::vector<std::byte> ToLanguageFile(std::u16string_view text);

enum class FindingKind : std::uint8_t {
  kWrongEncoding,   ///< Not a byte-order mark and UTF-16LE, or half a character at the end.
  kStrayCharacter,  ///< A NUL, or a CR or LF that ends no line: an editor shows another file.
  kNoText,          ///< A key without a text, which the table does not take.
  kUnknownKey,
  kDuplicateKey,  ///< The text of an earlier line counts.
  kTextCut,       ///< A "/" ends the text, and it begins no comment.
  kPercentSign,   ///< In a text that takes part in formatting.
  kMissingKey,    ///< The text of this key is empty while the file is in use.
};

struct Finding {
  FindingKind kind = FindingKind::kWrongEncoding;
  std::size_t line = 0;  ///< From 1. 0 if it concerns no line.
  std::u16string key;    ///< Empty if it concerns no key.
  std::string message;   ///< What is wrong, in English, without the line.
};

/// Returns the kind as a word for other programs: "wrong-encoding".
[[nodiscard]] std::string_view ToWord(FindingKind kind);

/// Returns what a translator should mend in a language file, in the order of its lines, and missing
/// keys last. A file in a wrong encoding has that one finding. If a blank and "//" follow a text,
/// it is a comment; any other "/" has cut the text.
[[nodiscard]] std::vector<Finding> CheckLanguageFile(std::span<const std::byte> file);

}  // namespace language
