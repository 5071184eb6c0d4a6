#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/result.h"

namespace storage {

// What reading and writing a registry file have in common.
inline constexpr char16_t kByteOrderMark = 0xFEFF;
inline constexpr std::u16string_view kRegistryFileHeader = u"Windows Registry Editor Version 5.00";
inline constexpr std::u16string_view kAnsiRegistryFileHeader = u"REGEDIT4";
inline constexpr std::u16string_view kRootName = u"HKEY_LOCAL_MACHINE";

/// Before the byte count of a value of four bytes that is a number, and before bytes.
inline constexpr std::u16string_view kDwordPrefix = u"dword:";
inline constexpr std::u16string_view kHexPrefix = u"hex";

/// Whether it is a file of version 4, each byte of which is a character.
[[nodiscard]] bool IsAnsiRegistryFile(std::span<const std::byte> file);

/// Fails with what is wrong, in English, if any other registry file is not UTF-16LE with its
/// byte-order mark. The sentence names the encodings that other programs save such files in.
[[nodiscard]] platform::Result<void, std::string_view> CheckRegistryFileEncoding(
    std::span<const std::byte> file);

/// Returns text in the code page Windows-1252. The five bytes that it leaves open stay as they are.
[[nodiscard]] std::u16string FromWindows1252(std::span<const std::byte> bytes);

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

  /// Passes over `expected` if it is next.
  [[nodiscard]] bool Take(std::u16string_view expected);

  /// The same, but letter case does not count.
  [[nodiscard]] bool TakeWord(std::u16string_view expected);

  /// Passes over blanks, and over the end of the line if it is next.
  [[nodiscard]] bool TakeLineEnd();

  /// Passes over the next unit, whatever it is, and returns it. Must not be called at the end.
  [[nodiscard]] char16_t TakeUnit();

  /// Passes over a number of one to `mostDigits` hexadecimal digits. Returns nothing if no digit is
  /// next, or more of them.
  [[nodiscard]] std::optional<std::uint32_t> TakeHexNumber(std::size_t mostDigits);

 private:
  std::u16string_view m_text;
  std::size_t m_at = 0;
  std::size_t m_line = 1;
};

}  // namespace storage
