#include "storage/registry_file_text.h"

#include <algorithm>
#include <utility>

#include "backends/text/names.h"
#include "storage/stored_text.h"

namespace storage {

using platform::RegistryType;
using platform::RegistryValue;

namespace {

bool BeginsWith(std::span<const std::byte> file, std::string_view bytes) {
  return file.size() >= bytes.size() &&
         std::equal(bytes.begin(), bytes.end(), file.begin(), [](char expected, std::byte actual) {
           return static_cast<std::byte>(expected) == actual;
         });
}

std::optional<std::uint32_t> HexDigit(char16_t unit) {
  constexpr std::u16string_view kDigits = u"0123456789abcdef0123456789ABCDEF";
  const std::size_t found = kDigits.find(unit);
  if (found == std::u16string_view::npos) {
    return std::nullopt;
  }
  return static_cast<std::uint32_t>(found % 16);
}

/// Texts, texts with variables in them, and lists of texts.
bool IsText(RegistryType type) {
  constexpr auto kExpandable = static_cast<RegistryType>(2);
  constexpr auto kList = static_cast<RegistryType>(7);
  return type == RegistryType::kString || type == kExpandable || type == kList;
}

}  // namespace

// Files of version 4 have one byte for each character, in the code page of the machine that wrote
// them, which no file names. Western machines wrote this one.
bool IsAnsiRegistryFile(std::span<const std::byte> file) { return BeginsWith(file, "REGEDIT4"); }

std::u16string FromWindows1252(std::span<const std::byte> bytes) {
  // From 0x80 on; all other bytes have the numbers of their characters.
  constexpr std::u16string_view kMiddle =
      u"\u20AC\x81\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152\x8D\u017D\x8F"
      u"\x90\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A\u0153\x9D\u017E"
      u"\u0178";
  constexpr std::size_t kFirst = 0x80;
  static_assert(kMiddle.size() == 32);
  std::u16string text;
  text.reserve(bytes.size());
  for (const std::byte byte : bytes) {
    const auto number = std::to_integer<char16_t>(byte);
    const bool isMiddle = number >= kFirst && number < kFirst + kMiddle.size();
    text += isMiddle ? kMiddle[number - kFirst] : number;
  }
  return text;
}

// A file in another encoding would only fail at its first line, with a message about the header.
// Users see no encodings, so the message says which one it is and what to do.
platform::Result<void, std::string_view> CheckRegistryFileEncoding(
    std::span<const std::byte> file) {
  const auto fail = [](std::string_view sentence) { return platform::Failure(sentence); };
  if (file.empty()) {
    return fail("the file is empty");
  }
  if (BeginsWith(file, "\xFF\xFE")) {
    if (file.size() % 2 != 0) {
      return fail("the file ends in the middle of a character");
    }
    return {};
  }
  if (BeginsWith(file, "\xEF\xBB\xBF") || BeginsWith(file, "Windows Registry Editor")) {
    return fail(
        "the file is saved as UTF-8 or in a Windows code page; save it as UTF-16LE, which some "
        "editors call Unicode");
  }
  if (BeginsWith(file, "\xFE\xFF")) {
    return fail("the file is saved as big-endian UTF-16; save it as UTF-16LE");
  }
  return fail(
      "this is not a registry file: it does not begin with the byte-order mark of UTF-16LE");
}

std::u16string_view RegistryFileScanner::GetRestOfLine() const {
  // A line ends with CR LF, or with LF alone, as editors of other systems leave it.
  std::u16string_view rest = m_text.substr(m_at);
  const std::size_t lineFeed = rest.find(u'\n');
  if (lineFeed == std::u16string_view::npos) {
    return rest;
  }
  rest = rest.substr(0, lineFeed);
  if (rest.ends_with(u'\r')) {
    rest.remove_suffix(1);
  }
  return rest;
}

void RegistryFileScanner::SkipBlanks() {
  m_at = std::min(m_text.find_first_not_of(u" \t", m_at), m_text.size());
}

bool RegistryFileScanner::Take(std::u16string_view expected) {
  if (!m_text.substr(m_at).starts_with(expected)) {
    return false;
  }
  m_at += expected.size();
  return true;
}

bool RegistryFileScanner::TakeWord(std::u16string_view expected) {
  if (!text::SameName(m_text.substr(m_at, expected.size()), expected)) {
    return false;
  }
  m_at += expected.size();
  return true;
}

bool RegistryFileScanner::TakeLineEnd() {
  SkipBlanks();
  if (IsAtEnd()) {
    return true;
  }
  if (!Take(u"\r\n") && !Take(u"\n")) {
    return false;
  }
  ++m_line;
  return true;
}

char16_t RegistryFileScanner::TakeUnit() {
  const char16_t unit = m_text[m_at++];
  // A quoted text may go over several lines, so lines are counted here too.
  if (unit == u'\n') {
    ++m_line;
  }
  return unit;
}

std::optional<std::uint32_t> RegistryFileScanner::TakeHexNumber(std::size_t mostDigits) {
  constexpr unsigned kBitsOfDigit = 4;
  std::size_t digits = 0;
  std::uint32_t number = 0;
  for (; !IsAtEnd() && HexDigit(m_text[m_at]); ++m_at) {
    if (++digits > mostDigits) {
      return std::nullopt;
    }
    number = number << kBitsOfDigit | *HexDigit(m_text[m_at]);
  }
  return digits > 0 ? std::optional(number) : std::nullopt;
}

// A value is a quoted string, a number ("dword:"), or bytes in hexadecimal ("hex:"), which can name
// any type in brackets.

RegistryValueReader::Read<RegistryValue> RegistryValueReader::ReadValue() {
  if (m_scanner.IsAt(u'"')) {
    return ReadString();
  }
  if (m_scanner.TakeWord(kDwordPrefix)) {
    return ReadDword();
  }
  if (m_scanner.TakeWord(kHexPrefix)) {
    return ReadHex();
  }
  return Fail("the value must be a string, \"dword:\", \"hex:\" or \"hex(...):\"");
}

RegistryValueReader::Read<RegistryValue> RegistryValueReader::ReadString() {
  return ReadQuoted().map([](const std::u16string& text) {
    // A text in quotes is stored with its terminating zero, as Windows does it.
    return RegistryValue{RegistryType::kString, ToUtf16Bytes(text + u'\0')};
  });
}

RegistryValueReader::Read<std::u16string> RegistryValueReader::ReadQuoted() {
  const std::size_t firstLine = m_scanner.GetLine();
  if (!m_scanner.Take(u"\"")) {
    return Fail("a quotation mark is missing");
  }
  std::u16string text;
  while (!m_scanner.IsAtEnd()) {
    if (m_scanner.Take(u"\"")) {
      return text;
    }
    if (m_scanner.Take(u"\\") && !m_scanner.IsAt(u'\\') && !m_scanner.IsAt(u'"')) {
      return Fail("\"\\\" in a text must stand before another one or before a quotation mark");
    }
    text += m_scanner.TakeUnit();
  }
  return FailAt(firstLine, "a quotation mark is not closed");
}

RegistryValueReader::Read<RegistryValue> RegistryValueReader::ReadDword() {
  constexpr std::size_t kMostDigits = 8;
  constexpr unsigned kBitsOfUnit = 16;
  const auto number = m_scanner.TakeHexNumber(kMostDigits);
  if (!number) {
    return Fail("\"dword:\" must be followed by one to eight hexadecimal digits");
  }
  RegistryValue value{RegistryType::kDword, {}};
  // Little-endian, the lower half first, on every machine.
  AppendUnit(static_cast<char16_t>(*number & 0xFFFF), value.bytes);
  AppendUnit(static_cast<char16_t>(*number >> kBitsOfUnit), value.bytes);
  return value;
}

RegistryValueReader::Read<RegistryValue> RegistryValueReader::ReadHex() {
  const auto type = ReadHexType();
  if (!type) {
    return platform::Failure(type.error());
  }
  return ReadBytes().map([&](std::vector<std::byte> bytes) {
    // In a file of version 4 the bytes of a text are those of the code page. Other bytes are what
    // they are.
    const bool isCoded = m_isAnsi && IsText(*type);
    return RegistryValue{*type, isCoded ? ToUtf16Bytes(FromWindows1252(bytes)) : std::move(bytes)};
  });
}

RegistryValueReader::Read<RegistryType> RegistryValueReader::ReadHexType() {
  constexpr std::size_t kMostDigits = 8;
  if (m_scanner.Take(u":")) {
    return RegistryType::kBinary;
  }
  const auto number =
      m_scanner.Take(u"(") ? m_scanner.TakeHexNumber(kMostDigits) : std::optional<std::uint32_t>();
  if (!number || !m_scanner.Take(u"):")) {
    return Fail("\"hex\" must be followed by \":\" or by a type in hexadecimal, as \"hex(2):\"");
  }
  return static_cast<RegistryType>(*number);
}

// Bytes stand between commas. A line may end with a backslash after any comma, and go on after the
// blanks of the next line. A value without bytes is allowed, as exporters write one.
RegistryValueReader::Read<std::vector<std::byte>> RegistryValueReader::ReadBytes() {
  constexpr std::size_t kMostDigits = 2;
  std::vector<std::byte> bytes;
  auto skipped = SkipContinuations();
  if (skipped && (m_scanner.IsAtLineEnd() || m_scanner.IsAt(u';'))) {
    return bytes;
  }
  while (skipped) {
    const auto number = m_scanner.TakeHexNumber(kMostDigits);
    if (!number) {
      return Fail("a byte of two hexadecimal digits is missing");
    }
    bytes.push_back(static_cast<std::byte>(*number));
    skipped = SkipContinuations();
    if (skipped && !m_scanner.Take(u",")) {
      return bytes;
    }
    if (skipped) {
      skipped = SkipContinuations();
    }
  }
  return platform::Failure(skipped.error());
}

RegistryValueReader::Read<void> RegistryValueReader::SkipContinuations() {
  m_scanner.SkipBlanks();
  while (m_scanner.Take(u"\\")) {
    if (!m_scanner.TakeLineEnd()) {
      return Fail("\"\\\" must be the last of its line");
    }
    m_scanner.SkipBlanks();
  }
  return {};
}

tl::unexpected<RegistryFileError> RegistryValueReader::Fail(std::string message) const {
  return FailAt(m_scanner.GetLine(), std::move(message));
}

tl::unexpected<RegistryFileError> FailAt(std::size_t line, std::string message) {
  return platform::Failure(RegistryFileError{line, std::move(message)});
}

}  // namespace storage
