#include <algorithm>
#include <utility>

#include "platform/registry_names.h"
#include "platform/text/names.h"
#include "storage/registry_file.h"
#include "storage/registry_file_encoding.h"
#include "storage/registry_file_format.h"
#include "storage/registry_file_scanner.h"
#include "storage/registry_value_reader.h"
#include "storage/utf16_bytes.h"

namespace storage {

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
      if (!m_scanner.TakeLineEnd() && !ParseLine()) {
        return false;
      }
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
    if (m_scanner.IsAt(u'[')) {
      return ParseKey();
    }
    if (m_scanner.IsAt(u'"') || m_scanner.IsAt(u'@')) {
      return ParseValue();
    }
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
    if (isDeletion) {
      path.remove_prefix(1);
    }
    const std::size_t rootEnd = std::min(path.find(u'\\'), path.size());
    if (!text::SameName(path.substr(0, rootEnd), kRootName)) {
      return Fail("only keys below HKEY_LOCAL_MACHINE can be taken");
    }
    path.remove_prefix(rootEnd);
    const bool isRoot = path.empty();
    if (!isRoot) {
      path.remove_prefix(1);
    }
    if ((!isRoot && path.empty()) || !platform::SplitKeyPath(path)) {
      return Fail("this is not the name of a key");
    }
    if (isDeletion && isRoot) {
      return Fail("HKEY_LOCAL_MACHINE itself cannot be deleted");
    }
    m_key = path;
    m_place = isDeletion ? Place::kDeletedKey : Place::kKey;
    Add(isDeletion ? RegistryChange::Kind::kDeleteKey : RegistryChange::Kind::kCreateKey);
    m_scanner.SkipRestOfLine();
    return true;
  }

  bool ParseValue() {
    if (m_place == Place::kNoKey) {
      return Fail("a value stands before the first key");
    }
    if (m_place == Place::kDeletedKey) {
      return Fail("a value stands below a key to be deleted");
    }
    RegistryChange& change = Add(RegistryChange::Kind::kSetValue);
    if (!m_scanner.Take(u"@") && !m_values.ReadQuoted(change.valueName)) {
      return false;
    }
    if (!platform::IsValueName(change.valueName)) {
      return Fail("this is not the name of a value");
    }
    m_scanner.SkipBlanks();
    if (!m_scanner.Take(u"=")) {
      return Fail("\"=\" is missing behind the name of the value");
    }
    m_scanner.SkipBlanks();
    if (m_scanner.Take(u"-")) {
      change.kind = RegistryChange::Kind::kDeleteValue;
    } else if (!m_values.Read(change.value)) {
      return false;
    }
    m_scanner.SkipBlanks();
    if (m_scanner.IsAtLineEnd() || m_scanner.IsAt(u';')) {
      return true;
    }
    return Fail("something stands behind the value");
  }

  RegistryChange& Add(RegistryChange::Kind kind) {
    RegistryChange& change = m_changes.emplace_back();
    change.kind = kind;
    change.line = m_scanner.GetLine();
    change.key = m_key;
    return change;
  }

  bool Fail(std::string message) {
    m_error = {m_scanner.GetLine(), std::move(message)};
    return false;
  }

  RegistryFileScanner m_scanner;
  RegistryFileError m_error;
  RegistryValueReader m_values{m_scanner, m_error};
  Place m_place = Place::kNoKey;
  std::u16string m_key;
  std::vector<RegistryChange> m_changes;
};

}  // namespace

std::variant<std::vector<RegistryChange>, RegistryFileError> ParseRegistryFile(
    std::span<const std::byte> file) {
  if (const std::string_view wrong = CheckRegistryFileEncoding(file); !wrong.empty()) {
    return RegistryFileError{0, std::string(wrong)};
  }
  const std::u16string text = FromUtf16Bytes(file.subspan(sizeof(kByteOrderMark)));
  Parser parser(text);
  if (!parser.Parse()) {
    return parser.TakeError();
  }
  return parser.TakeChanges();
}

}  // namespace storage
