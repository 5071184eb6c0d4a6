#include "storage/registry_file_scanner.h"

#include <algorithm>
#include <optional>

#include "backends/text/names.h"

namespace storage {

namespace {

std::optional<std::uint32_t> HexDigit(char16_t unit) {
  constexpr std::u16string_view kDigits = u"0123456789abcdef0123456789ABCDEF";
  const std::size_t found = kDigits.find(unit);
  if (found == std::u16string_view::npos) {
    return std::nullopt;
  }
  return static_cast<std::uint32_t>(found % 16);
}

}  // namespace

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

bool RegistryFileScanner::TakeHexNumber(std::size_t mostDigits, std::uint32_t& number) {
  constexpr unsigned kBitsOfDigit = 4;
  std::size_t digits = 0;
  number = 0;
  for (; !IsAtEnd() && HexDigit(m_text[m_at]); ++m_at) {
    if (++digits > mostDigits) {
      return false;
    }
    number = number << kBitsOfDigit | *HexDigit(m_text[m_at]);
  }
  return digits > 0;
}

}  // namespace storage
