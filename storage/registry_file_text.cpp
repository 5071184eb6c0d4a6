#include "storage/registry_file_text.h"

#include <algorithm>

#include "backends/text/names.h"

namespace storage {
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

}  // namespace

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

}  // namespace storage
