#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"
#include "platform/result.h"
#include "storage/registry_file.h"

namespace storage {

// What the text of a registry file is made of: its encodings, its lines and its values.
inline constexpr char16_t kByteOrderMark = 0xFEFF;
inline constexpr std::u16string_view kRegistryFileHeader = u"Windows Registry Editor Version 5.00";
inline constexpr std::u16string_view kAnsiRegistryFileHeader = u"REGEDIT4";
inline constexpr std::u16string_view kRootName = u"HKEY_LOCAL_MACHINE";

/// Before the byte count of a value of four bytes that is a number, and before bytes.
inline constexpr std::u16string_view kDwordPrefix = u"dword:";
inline constexpr std::u16string_view kHexPrefix = u"hex";

/// Returns whether a file is of version 4, in which each byte is a character.
[[nodiscard]] bool IsAnsiRegistryFile(std::span<const std::byte> file);

/// Checks that a file of version 5 is UTF-16LE with its byte-order mark. Fails with what is wrong,
/// in English. The sentence names the encodings in which other programs save such files.
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

  /// Returns whether the next unit is `unit`.
  [[nodiscard]] bool IsAt(char16_t unit) const { return !IsAtEnd() && m_text[m_at] == unit; }

  [[nodiscard]] std::u16string_view GetRestOfLine() const;

  void SkipBlanks();
  void SkipRestOfLine() { m_at += GetRestOfLine().size(); }

  /// Passes over `expected` if it is next.
  [[nodiscard]] bool Take(std::u16string_view expected);

  /// Passes over `expected` if it is next in any letter case.
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

/// Reads what follows the "=" of a value in a registry file. Each call fails at the first thing
/// that is not what it should be.
class RegistryValueReader {
 public:
  template <typename Value>
  using Read = platform::Result<Value, RegistryFileError>;

  /// If `isAnsi`, the file is of version 4, and the bytes of texts are in its code page too.
  RegistryValueReader(RegistryFileScanner& scanner, bool isAnsi)
      : m_scanner(scanner), m_isAnsi(isAnsi) {}

  [[nodiscard]] Read<platform::RegistryValue> ReadValue();

  /// Reads a text in quotation marks. It may go on over line ends, which are then part of it.
  [[nodiscard]] Read<std::u16string> ReadQuoted();

 private:
  [[nodiscard]] Read<platform::RegistryValue> ReadString();
  [[nodiscard]] Read<platform::RegistryValue> ReadDword();
  [[nodiscard]] Read<platform::RegistryValue> ReadHex();
  [[nodiscard]] Read<platform::RegistryType> ReadHexType();
  [[nodiscard]] Read<std::vector<std::byte>> ReadBytes();

  /// Passes over blanks, and over each backslash that continues the line on the next one.
  [[nodiscard]] Read<void> SkipContinuations();

  [[nodiscard]] tl::unexpected<RegistryFileError> Fail(std::string message) const;

  RegistryFileScanner& m_scanner;
  const bool m_isAnsi;
};

/// Returns the failure of a registry file at `line`.
[[nodiscard]] tl::unexpected<RegistryFileError> FailAt(std::size_t line, std::string message);

}  // namespace storage
