#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace language {

enum class FindingKind : std::uint8_t {
  kWrongEncoding,   ///< Not UTF-16LE behind its byte-order mark, or half a character at the end.
  kStrayCharacter,  ///< A NUL, or a CR or LF that ends no line: an editor shows another file.
  kNoText,          ///< A key without a text, which the table does not take.
  kUnknownKey,
  kDuplicateKey,  ///< The text of an earlier line counts.
  kTextCut,       ///< A text that a "/" ends, where no comment begins.
  kPercentSign,   ///< In a text that takes part in formatting.
  kMissingKey,    ///< The text of this key is empty while the file is in use.
};

struct Finding {
  FindingKind kind = FindingKind::kWrongEncoding;
  std::size_t line = 0;  ///< 1-based; 0 where no line is to blame.
  std::u16string key;    ///< Empty where no key is to blame.
  std::string message;   ///< What is wrong, in English, without the line.
};

/// The kind as a word for other programs: "wrong-encoding".
[[nodiscard]] std::string_view ToWord(FindingKind kind);

/// What a translator should mend in a language file, in the order of its lines, missing keys last.
/// A file in a wrong encoding has that one finding. A comment behind a text is told from a cut text
/// by its "//" and the blank before it.
[[nodiscard]] std::vector<Finding> CheckLanguageFile(std::span<const std::byte> file);

}  // namespace language
