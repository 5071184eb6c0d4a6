#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace language {

enum class LineKind : std::uint8_t {
  kEntry,    ///< A key and a text.
  kNoText,   ///< A key alone: the format drops the line.
  kComment,  ///< Begins with "//".
  kEmpty,    ///< Nothing that the format reads.
};

/// One line of a language file, in views into the reader that gave it.
struct LanguageLine {
  LineKind kind = LineKind::kEmpty;
  std::size_t number = 0;     ///< From 1, as editors count: for them a lone LF ends a line too.
  std::u16string_view key;    ///< With kEntry.
  std::u16string_view text;   ///< With kEntry; never empty, never with a NUL.
  std::u16string_view rest;   ///< With kEntry: what follows the text in the line, blanks too.
  std::u16string_view whole;  ///< The line without its CR LF.
};

/// Reads the lines of a language file. The file is a byte-order mark and UTF-16LE. Each line is a
/// key, blanks, and a text that ends before the first "/". Never reads beyond the bytes that it was
/// given, whatever they hold.
///
/// Language files in use were written for its rules, so it keeps the odd ones too: what it makes of
/// a torn line or a stray character has to stay the same.
class LanguageFileReader {
 public:
  explicit LanguageFileReader(std::span<const std::byte> file);
  ~LanguageFileReader() = default;

  // The lines point into the reader.
  LanguageFileReader(const LanguageFileReader&) = delete;
  LanguageFileReader& operator=(const LanguageFileReader&) = delete;

  /// Returns whether the bytes begin as a language file must. If not, the reader gives no line.
  [[nodiscard]] bool IsAccepted() const { return m_isAccepted; }

  /// Returns the next line. Returns nothing after the last one.
  [[nodiscard]] std::optional<LanguageLine> Next();

 private:
  [[nodiscard]] LanguageLine Parse(std::size_t start) const;
  void TakeText(std::size_t start, LanguageLine& line) const;
  [[nodiscard]] bool IsLineEnd(std::size_t at) const;
  [[nodiscard]] bool StopsAt(std::size_t at) const;
  [[nodiscard]] std::size_t FindLineEnd(std::size_t start) const;
  [[nodiscard]] std::u16string_view Between(std::size_t begin, std::size_t end) const;

  bool m_isAccepted = false;
  std::u16string m_characters;  ///< With the byte-order mark, without a last half character.

  /// From this index on neither a key nor a text nor another line may begin.
  std::size_t m_limit = 0;

  std::size_t m_next;
  std::size_t m_lineNumber = 1;
  bool m_isAtEnd = false;
};

[[nodiscard]] constexpr bool IsBlank(char16_t character) {
  return character == u' ' || character == u'\t';
}

}  // namespace language
