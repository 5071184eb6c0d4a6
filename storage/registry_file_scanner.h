#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace storage {

/// A place in the text of a registry file, and how to move on from it. Lines end with CR LF or LF;
/// the last one may end with the text. Blanks are spaces and tabs.
class RegistryFileScanner {
 public:
  /// `text` outlives this.
  explicit RegistryFileScanner(std::u16string_view text) : m_text(text) {}

  /// 1-based.
  [[nodiscard]] std::size_t GetLine() const { return m_line; }

  [[nodiscard]] bool IsAtEnd() const { return m_at == m_text.size(); }
  [[nodiscard]] bool IsAtLineEnd() const { return GetRestOfLine().empty(); }

  /// Whether the next unit is `unit`.
  [[nodiscard]] bool IsAt(char16_t unit) const { return !IsAtEnd() && m_text[m_at] == unit; }

  [[nodiscard]] std::u16string_view GetRestOfLine() const;

  void SkipBlanks();
  void SkipRestOfLine() { m_at += GetRestOfLine().size(); }

  /// Passes over `expected` where it is next.
  [[nodiscard]] bool Take(std::u16string_view expected);

  /// The same without regard to letter case.
  [[nodiscard]] bool TakeWord(std::u16string_view expected);

  /// Passes over blanks, and over the end of the line where it follows.
  [[nodiscard]] bool TakeLineEnd();

  /// Passes over the next unit, whatever it is, and gives it. Not to be called at the end.
  [[nodiscard]] char16_t TakeUnit();

  /// Passes over one to `mostDigits` hexadecimal digits, of which no more may follow, and stores
  /// the number in `number`.
  [[nodiscard]] bool TakeHexNumber(std::size_t mostDigits, std::uint32_t& number);

 private:
  std::u16string_view m_text;
  std::size_t m_at = 0;
  std::size_t m_line = 1;
};

}  // namespace storage
