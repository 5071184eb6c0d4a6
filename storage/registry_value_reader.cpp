#include "storage/registry_value_reader.h"

#include <utility>

#include "storage/registry_file_encoding.h"
#include "storage/registry_file_format.h"
#include "storage/utf16_bytes.h"

namespace storage {

using platform::RegistryType;
using platform::RegistryValue;

namespace {

/// Texts, texts with variables in them, and lists of texts.
bool IsText(RegistryType type) {
  constexpr auto kExpandable = static_cast<RegistryType>(2);
  constexpr auto kList = static_cast<RegistryType>(7);
  return type == RegistryType::kString || type == kExpandable || type == kList;
}

}  // namespace

bool RegistryValueReader::Read(RegistryValue& value) {
  if (m_scanner.IsAt(u'"')) {
    return ReadString(value);
  }
  if (m_scanner.TakeWord(kDwordPrefix)) {
    return ReadDword(value);
  }
  if (!m_scanner.TakeWord(kHexPrefix)) {
    return Fail("the value must be a string, \"dword:\", \"hex:\" or \"hex(...):\"");
  }
  if (!ReadHexType(value.type) || !ReadBytes(value.bytes)) {
    return false;
  }
  if (m_isAnsi && IsText(value.type)) {
    value.bytes = ToUtf16Bytes(FromWindows1252(value.bytes));
  }
  return true;
}

bool RegistryValueReader::ReadString(RegistryValue& value) {
  std::u16string text;
  if (!ReadQuoted(text)) {
    return false;
  }
  value.type = RegistryType::kString;
  value.bytes = ToUtf16Bytes(text + u'\0');
  return true;
}

bool RegistryValueReader::ReadQuoted(std::u16string& text) {
  const std::size_t firstLine = m_scanner.GetLine();
  if (!m_scanner.Take(u"\"")) {
    return Fail("a quotation mark is missing");
  }
  while (!m_scanner.IsAtEnd()) {
    if (m_scanner.Take(u"\"")) {
      return true;
    }
    if (m_scanner.Take(u"\\") && !m_scanner.IsAt(u'\\') && !m_scanner.IsAt(u'"')) {
      return Fail("\"\\\" in a text must stand before another one or before a quotation mark");
    }
    text += m_scanner.TakeUnit();
  }
  return FailAt(firstLine, "a quotation mark is not closed");
}

bool RegistryValueReader::ReadDword(RegistryValue& value) {
  constexpr std::size_t kMostDigits = 8;
  constexpr unsigned kBitsOfUnit = 16;
  std::uint32_t number = 0;
  if (!m_scanner.TakeHexNumber(kMostDigits, number)) {
    return Fail("\"dword:\" must be followed by one to eight hexadecimal digits");
  }
  value.type = RegistryType::kDword;
  AppendUnit(static_cast<char16_t>(number & 0xFFFF), value.bytes);
  AppendUnit(static_cast<char16_t>(number >> kBitsOfUnit), value.bytes);
  return true;
}

bool RegistryValueReader::ReadHexType(RegistryType& type) {
  constexpr std::size_t kMostDigits = 8;
  type = RegistryType::kBinary;
  if (m_scanner.Take(u":")) {
    return true;
  }
  std::uint32_t number = 0;
  if (!m_scanner.Take(u"(") || !m_scanner.TakeHexNumber(kMostDigits, number) ||
      !m_scanner.Take(u"):")) {
    return Fail("\"hex\" must be followed by \":\" or by a type in hexadecimal, as \"hex(2):\"");
  }
  type = static_cast<RegistryType>(number);
  return true;
}

bool RegistryValueReader::ReadBytes(std::vector<std::byte>& bytes) {
  constexpr std::size_t kMostDigits = 2;
  if (!SkipContinuations()) {
    return false;
  }
  if (m_scanner.IsAtLineEnd() || m_scanner.IsAt(u';')) {
    return true;
  }
  while (true) {
    std::uint32_t number = 0;
    if (!m_scanner.TakeHexNumber(kMostDigits, number)) {
      return Fail("a byte of two hexadecimal digits is missing");
    }
    bytes.push_back(static_cast<std::byte>(number));
    if (!SkipContinuations()) {
      return false;
    }
    if (!m_scanner.Take(u",")) {
      return true;
    }
    if (!SkipContinuations()) {
      return false;
    }
  }
}

bool RegistryValueReader::SkipContinuations() {
  m_scanner.SkipBlanks();
  while (m_scanner.Take(u"\\")) {
    if (!m_scanner.TakeLineEnd()) {
      return Fail("\"\\\" must be the last of its line");
    }
    m_scanner.SkipBlanks();
  }
  return true;
}

bool RegistryValueReader::Fail(std::string message) {
  return FailAt(m_scanner.GetLine(), std::move(message));
}

bool RegistryValueReader::FailAt(std::size_t line, std::string message) {
  m_error = {line, std::move(message)};
  return false;
}

}  // namespace storage
