#include <algorithm>
#include <utility>

#include "platform/registry_names.h"
#include "platform/text/names.h"
#include "storage/registry_file.h"
#include "storage/registry_file_format.h"
#include "storage/registry_file_scanner.h"
#include "storage/utf16_bytes.h"

namespace storage {

using platform::RegistryType;
using platform::RegistryValue;

namespace {

/// Reads a registry file from its start to its end, or to the first thing that is wrong.
class Parser {
 public:
  /// `text` is the file without its byte-order mark.
  explicit Parser(std::u16string_view text) : m_scanner(text) {}

  [[nodiscard]] bool Parse() {
    if (!m_scanner.Take(kRegistryFileHeader) || !m_scanner.TakeLineEnd()) {
      return Fail("the first line must be \"Windows Registry Editor Version 5.00\"");
    }
    while (!m_scanner.IsAtEnd()) {
      if (!m_scanner.TakeLineEnd() && !ParseLine()) return false;
    }
    return true;
  }

  [[nodiscard]] std::vector<RegistryChange> TakeChanges() { return std::move(m_changes); }
  [[nodiscard]] RegistryFileError TakeError() { return std::move(m_error); }

 private:
  enum class Place : std::uint8_t { kNoKey, kKey, kDeletedKey };

  bool ParseLine() {
    if (m_scanner.IsAt(u';')) {
      m_scanner.SkipRestOfLine();
      return true;
    }
    if (m_scanner.IsAt(u'[')) return ParseKey();
    if (m_scanner.IsAt(u'"') || m_scanner.IsAt(u'@')) return ParseValue();
    return Fail("this is neither a key, nor a value, nor a comment");
  }

  bool ParseKey() {
    const std::u16string_view line = m_scanner.GetRestOfLine();
    const std::size_t bracket = line.rfind(u']');
    const bool isClosed = bracket != std::u16string_view::npos;
    if (!isClosed || line.find_first_not_of(u" \t", bracket + 1) != std::u16string_view::npos) {
      return Fail("a line that begins with \"[\" must end with \"]\"");
    }
    std::u16string_view path = line.substr(1, bracket - 1);
    const bool isDeletion = path.starts_with(u'-');
    if (isDeletion) path.remove_prefix(1);
    const std::size_t rootEnd = std::min(path.find(u'\\'), path.size());
    if (!text::SameName(path.substr(0, rootEnd), kRootName)) {
      return Fail("only keys below HKEY_LOCAL_MACHINE can be taken");
    }
    path.remove_prefix(rootEnd);
    const bool isRoot = path.empty();
    if (!isRoot) path.remove_prefix(1);
    if ((!isRoot && path.empty()) || !platform::SplitKeyPath(path)) {
      return Fail("this is not the name of a key");
    }
    if (isDeletion && isRoot) return Fail("HKEY_LOCAL_MACHINE itself cannot be deleted");
    m_key = path;
    m_place = isDeletion ? Place::kDeletedKey : Place::kKey;
    Add(isDeletion ? RegistryChange::Kind::kDeleteKey : RegistryChange::Kind::kCreateKey);
    m_scanner.SkipRestOfLine();
    return true;
  }

  bool ParseValue() {
    if (m_place == Place::kNoKey) return Fail("a value stands before the first key");
    if (m_place == Place::kDeletedKey) return Fail("a value stands below a key to be deleted");
    RegistryChange& change = Add(RegistryChange::Kind::kSetValue);
    if (!m_scanner.Take(u"@") && !ParseQuoted(change.valueName)) return false;
    if (!platform::IsValueName(change.valueName)) return Fail("this is not the name of a value");
    m_scanner.SkipBlanks();
    if (!m_scanner.Take(u"=")) return Fail("\"=\" is missing behind the name of the value");
    m_scanner.SkipBlanks();
    if (m_scanner.Take(u"-")) {
      change.kind = RegistryChange::Kind::kDeleteValue;
    } else if (!ParseContent(change.value)) {
      return false;
    }
    m_scanner.SkipBlanks();
    if (m_scanner.IsAtLineEnd() || m_scanner.IsAt(u';')) return true;
    return Fail("something stands behind the value");
  }

  bool ParseContent(RegistryValue& value) {
    bool isRead = false;
    if (m_scanner.IsAt(u'"')) {
      isRead = ParseString(value);
    } else if (m_scanner.TakeWord(kDwordPrefix)) {
      isRead = ParseDword(value);
    } else if (m_scanner.TakeWord(kHexPrefix)) {
      isRead = ParseHexType(value.type) && ParseBytes(value.bytes);
    } else {
      return Fail("the value must be a string, \"dword:\", \"hex:\" or \"hex(...):\"");
    }
    if (isRead && value.bytes.size() > platform::kMaxValueBytes) {
      return Fail("the value is too long");
    }
    return isRead;
  }

  bool ParseString(RegistryValue& value) {
    std::u16string text;
    if (!ParseQuoted(text)) return false;
    value.type = RegistryType::kString;
    value.bytes = ToUtf16Bytes(text + u'\0');
    return true;
  }

  /// A text in quotation marks may go on over line ends, which are then part of it.
  bool ParseQuoted(std::u16string& text) {
    const std::size_t firstLine = m_scanner.GetLine();
    if (!m_scanner.Take(u"\"")) return Fail("a quotation mark is missing");
    while (!m_scanner.IsAtEnd()) {
      if (m_scanner.Take(u"\"")) return true;
      if (m_scanner.Take(u"\\") && !m_scanner.IsAt(u'\\') && !m_scanner.IsAt(u'"')) {
        return Fail("\"\\\" in a text must stand before another one or before a quotation mark");
      }
      text += m_scanner.TakeUnit();
    }
    return FailAt(firstLine, "a quotation mark is not closed");
  }

  bool ParseDword(RegistryValue& value) {
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

  bool ParseHexType(RegistryType& type) {
    constexpr std::size_t kMostDigits = 8;
    type = RegistryType::kBinary;
    if (m_scanner.Take(u":")) return true;
    std::uint32_t number = 0;
    if (!m_scanner.Take(u"(") || !m_scanner.TakeHexNumber(kMostDigits, number) ||
        !m_scanner.Take(u"):")) {
      return Fail("\"hex\" must be followed by \":\" or by a type in hexadecimal, as \"hex(2):\"");
    }
    type = static_cast<RegistryType>(number);
    return true;
  }

  bool ParseBytes(std::vector<std::byte>& bytes) {
    constexpr std::size_t kMostDigits = 2;
    if (!SkipContinuations()) return false;
    if (m_scanner.IsAtLineEnd() || m_scanner.IsAt(u';')) return true;
    while (true) {
      std::uint32_t number = 0;
      if (!m_scanner.TakeHexNumber(kMostDigits, number)) {
        return Fail("a byte of two hexadecimal digits is missing");
      }
      bytes.push_back(static_cast<std::byte>(number));
      if (!SkipContinuations()) return false;
      if (!m_scanner.Take(u",")) return true;
      if (!SkipContinuations()) return false;
    }
  }

  /// Passes over blanks, and over each backslash that continues the line on the next one.
  bool SkipContinuations() {
    m_scanner.SkipBlanks();
    while (m_scanner.Take(u"\\")) {
      if (!m_scanner.TakeLineEnd()) return Fail("\"\\\" must be the last of its line");
      m_scanner.SkipBlanks();
    }
    return true;
  }

  RegistryChange& Add(RegistryChange::Kind kind) {
    RegistryChange& change = m_changes.emplace_back();
    change.kind = kind;
    change.line = m_scanner.GetLine();
    change.key = m_key;
    return change;
  }

  bool Fail(std::string message) { return FailAt(m_scanner.GetLine(), std::move(message)); }

  bool FailAt(std::size_t line, std::string message) {
    m_error = {line, std::move(message)};
    return false;
  }

  RegistryFileScanner m_scanner;
  Place m_place = Place::kNoKey;
  std::u16string m_key;
  std::vector<RegistryChange> m_changes;
  RegistryFileError m_error;
};

bool BeginsWith(std::span<const std::byte> file, std::string_view bytes) {
  return file.size() >= bytes.size() &&
         std::equal(bytes.begin(), bytes.end(), file.begin(), [](char expected, std::byte actual) {
           return static_cast<std::byte>(expected) == actual;
         });
}

/// What is wrong with the file's encoding; empty where it is UTF-16LE behind a byte-order mark.
std::string_view CheckEncoding(std::span<const std::byte> file) {
  if (file.empty()) return "the file is empty";
  if (BeginsWith(file, "\xFF\xFE")) {
    return file.size() % 2 == 0 ? "" : "the file ends in the middle of a character";
  }
  if (BeginsWith(file, "REGEDIT4")) {
    return "this is a file of version 4 in a Windows code page; export it as version 5.00";
  }
  if (BeginsWith(file, "\xEF\xBB\xBF") || BeginsWith(file, "Windows Registry Editor")) {
    return "the file is saved as UTF-8 or in a Windows code page; save it as UTF-16LE, which some "
           "editors call Unicode";
  }
  if (BeginsWith(file, "\xFE\xFF")) {
    return "the file is saved as big-endian UTF-16; save it as UTF-16LE";
  }
  return "this is not a registry file: it does not begin with the byte-order mark of UTF-16LE";
}

}  // namespace

std::variant<std::vector<RegistryChange>, RegistryFileError> ParseRegistryFile(
    std::span<const std::byte> file) {
  if (const std::string_view wrong = CheckEncoding(file); !wrong.empty()) {
    return RegistryFileError{0, std::string(wrong)};
  }
  const std::u16string text = FromUtf16Bytes(file.subspan(sizeof(kByteOrderMark)));
  Parser parser(text);
  if (!parser.Parse()) return parser.TakeError();
  return parser.TakeChanges();
}

}  // namespace storage
