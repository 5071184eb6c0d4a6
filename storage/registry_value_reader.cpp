#include "storage/registry_value_reader.h"

#include <utility>

#include "storage/stored_text.h"

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
