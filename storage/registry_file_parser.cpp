#include <algorithm>
#include <optional>
#include <utility>

#include "backends/text/names.h"
#include "backends/text/utf.h"
#include "storage/registry_file.h"
#include "storage/registry_file_text.h"
#include "storage/stored_text.h"

namespace storage {

namespace {

/// Without the hive that is known.
constexpr std::u16string_view kOtherHives[] = {
    u"HKEY_CLASSES_ROOT", u"HKEY_CURRENT_USER",     u"HKEY_USERS",
    u"HKEY_DYN_DATA",     u"HKEY_PERFORMANCE_DATA", u"HKEY_CURRENT_CONFIG"};

bool IsOtherHive(std::u16string_view name) {
  return std::ranges::any_of(
      kOtherHives, [name](std::u16string_view hive) { return text::SameName(hive, name); });
}

// On 64-bit systems a registry shows programs of 32 bits a view of their own, below WOW6432Node. A
// file that was exported there names that place. Here both are one place.
constexpr std::u16string_view kRedirected = u"Software";
constexpr std::u16string_view kRedirection = u"\\WOW6432Node";

/// The part of `path` after Software\WOW6432Node; nothing if it does not lead there.
std::optional<std::u16string_view> FindRedirectedPart(std::u16string_view path) {
  const std::size_t end = kRedirected.size() + kRedirection.size();
  const bool isRedirected =
      path.size() >= end && (path.size() == end || path[end] == u'\\') &&
      text::SameName(path.substr(0, kRedirected.size()), kRedirected) &&
      text::SameName(path.substr(kRedirected.size(), kRedirection.size()), kRedirection);
  return isRedirected ? std::optional(path.substr(end)) : std::nullopt;
}

/// Reads a registry file from its start to its end, or to the first thing that is wrong. A line is
/// a key, a value of the key above it, a comment, or empty. Keys of other hives are passed over
/// with their values, which are parsed all the same: a file that is wrong anywhere is refused as a
/// whole.
class Parser {
 public:
  /// `text` is the file without its byte-order mark, of version 4 if it `isAnsi`.
  Parser(std::u16string_view text, bool isAnsi)
      : m_header(isAnsi ? kAnsiRegistryFileHeader : kRegistryFileHeader),
        m_scanner(text),
        m_values(m_scanner, isAnsi) {}

  [[nodiscard]] platform::Result<RegistryFileContent, RegistryFileError> Parse() {
    if (!m_scanner.Take(m_header) || !m_scanner.TakeLineEnd()) {
      return Fail("the first line must be \"" + text::ToUtf8(m_header) + '"');
    }
    while (!m_scanner.IsAtEnd()) {
      if (m_scanner.TakeLineEnd()) {
        continue;
      }
      if (auto parsed = ParseLine(); !parsed) {
        return platform::Failure(std::move(parsed.error()));
      }
    }
    return std::move(m_content);
  }

 private:
  using Parsed = platform::Result<void, RegistryFileError>;

  enum class Place : std::uint8_t { kNoKey, kKey, kDeletedKey, kOtherHive };

  Parsed ParseLine() {
    if (m_scanner.IsAt(u';')) {
      m_scanner.SkipRestOfLine();
      return {};
    }
    if (m_scanner.IsAt(u'[')) {
      return ParseKey();
    }
    if (m_scanner.IsAt(u'"') || m_scanner.IsAt(u'@')) {
      return ParseValue();
    }
    return Fail("this is neither a key, nor a value, nor a comment");
  }

  Parsed ParseKey() {
    const std::u16string_view line = m_scanner.GetRestOfLine();
    // The last bracket closes the line, since a key's name may hold brackets.
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
    m_scanner.SkipRestOfLine();
    const std::size_t rootEnd = std::min(path.find(u'\\'), path.size());
    const std::u16string_view root = path.substr(0, rootEnd);
    path.remove_prefix(rootEnd);
    // An exported file often has more in it than this system's keys. That is no mistake of the
    // user.
    if (IsOtherHive(root)) {
      m_place = Place::kOtherHive;
      ++m_content.passedOver;
      return {};
    }
    if (!text::SameName(root, kRootName)) {
      return Fail("only keys below HKEY_LOCAL_MACHINE can be taken");
    }
    return TakeKey(path, isDeletion);
  }

  /// `path` is what follows the root's name: nothing, or a backslash and names.
  Parsed TakeKey(std::u16string_view path, bool isDeletion) {
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
    // As often as it leads there, so that what is exported later is read as the same keys.
    while (const auto redirected = FindRedirectedPart(m_key)) {
      if (isDeletion && redirected->empty()) {
        return Fail("WOW6432Node itself cannot be deleted, since all of Software would go");
      }
      m_key = m_key.substr(0, kRedirected.size()).append(*redirected);
    }
    m_place = isDeletion ? Place::kDeletedKey : Place::kKey;
    m_content.changes.push_back(NewChange(isDeletion ? RegistryChange::Kind::kDeleteKey
                                                     : RegistryChange::Kind::kCreateKey));
    return {};
  }

  Parsed ParseValue() {
    if (m_place == Place::kNoKey) {
      return Fail("a value stands before the first key");
    }
    if (m_place == Place::kDeletedKey) {
      return Fail("a value stands below a key to be deleted");
    }
    RegistryChange change = NewChange(RegistryChange::Kind::kSetValue);
    if (!m_scanner.Take(u"@")) {
      auto name = m_values.ReadQuoted();
      if (!name) {
        return platform::Failure(std::move(name.error()));
      }
      change.valueName = std::move(*name);
    }
    // What is passed over need not fit into this registry.
    const bool isTaken = m_place == Place::kKey;
    if (isTaken && !platform::IsValueName(change.valueName)) {
      return Fail("this is not the name of a value");
    }
    m_scanner.SkipBlanks();
    if (!m_scanner.Take(u"=")) {
      return Fail("\"=\" is missing after the name of the value");
    }
    m_scanner.SkipBlanks();
    if (m_scanner.Take(u"-")) {
      change.kind = RegistryChange::Kind::kDeleteValue;
    } else if (auto value = m_values.ReadValue()) {
      change.value = std::move(*value);
    } else {
      return platform::Failure(std::move(value.error()));
    }
    if (isTaken && change.value.bytes.size() > platform::kMaxValueBytes) {
      return Fail("the value is too long");
    }
    m_scanner.SkipBlanks();
    if (!m_scanner.IsAtLineEnd() && !m_scanner.IsAt(u';')) {
      return Fail("there is something after the value");
    }
    if (isTaken) {
      m_content.changes.push_back(std::move(change));
    }
    return {};
  }

  [[nodiscard]] RegistryChange NewChange(RegistryChange::Kind kind) const {
    RegistryChange change;
    change.kind = kind;
    change.line = m_scanner.GetLine();
    change.key = m_key;
    return change;
  }

  [[nodiscard]] tl::unexpected<RegistryFileError> Fail(std::string message) const {
    return FailAt(m_scanner.GetLine(), std::move(message));
  }

  const std::u16string_view m_header;
  RegistryFileScanner m_scanner;
  RegistryValueReader m_values;
  Place m_place = Place::kNoKey;
  std::u16string m_key;
  RegistryFileContent m_content;
};

}  // namespace

platform::Result<RegistryFileContent, RegistryFileError> ParseRegistryFile(
    std::span<const std::byte> file) {
  const bool isAnsi = IsAnsiRegistryFile(file);
  if (const auto checked = CheckRegistryFileEncoding(file); !isAnsi && !checked) {
    return FailAt(0, std::string(checked.error()));
  }
  const std::u16string text =
      isAnsi ? FromWindows1252(file) : FromUtf16Bytes(file.subspan(sizeof(kByteOrderMark)));
  return Parser(text, isAnsi).Parse();
}

}  // namespace storage
