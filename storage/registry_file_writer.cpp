#include <algorithm>
#include <utility>

#include "storage/registry_file.h"
#include "storage/registry_file_text.h"
#include "storage/stored_text.h"

namespace storage {

using platform::Failure;
using platform::RegistryError;
using platform::RegistryType;
using platform::RegistryValue;
using platform::Result;

namespace {

constexpr std::u16string_view kLineEnd = u"\r\n";
constexpr unsigned kBitsOfByte = 8;
constexpr std::size_t kDwordBytes = 4;

/// From this column on a line of bytes is continued on the next one, as Windows does it.
constexpr std::size_t kLastColumn = 77;

bool IsSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; }
bool IsLeading(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

/// Whether an editor shows the text as it is and keeps it so.
bool IsPlain(std::u16string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] < u' ' || text[i] == u'\x7F' || text[i] == kByteOrderMark) {
      return false;
    }
    if (!IsSurrogate(text[i])) {
      continue;
    }
    // Half a character alone becomes something else in most editors, so it is written as bytes.
    const bool isPair = IsLeading(text[i]) && i + 1 < text.size() && IsSurrogate(text[i + 1]) &&
                        !IsLeading(text[i + 1]);
    if (!isPair) {
      return false;
    }
    ++i;
  }
  return true;
}

/// The text of a value that is nothing but that text and its terminator.
std::optional<std::u16string> PlainText(const RegistryValue& value) {
  const auto& bytes = value.bytes;
  // What is not exactly a text and one zero would come back with other bytes.
  if (value.type != RegistryType::kString || bytes.empty() || bytes.size() % 2 != 0) {
    return std::nullopt;
  }
  std::u16string text = FromUtf16Bytes(bytes);
  if (text.back() != u'\0') {
    return std::nullopt;
  }
  text.pop_back();
  return IsPlain(text) ? std::optional(std::move(text)) : std::nullopt;
}

std::u16string Hex(std::uint32_t number, std::size_t digits) {
  constexpr std::u16string_view kDigits = u"0123456789abcdef";
  constexpr unsigned kBitsOfDigit = 4;
  std::u16string text(digits, u'0');
  for (std::size_t i = digits; i > 0; number >>= kBitsOfDigit) {
    text[--i] = kDigits[number & 0xF];
  }
  return text;
}

std::u16string Quoted(std::u16string_view text) {
  std::u16string quoted = u"\"";
  for (const char16_t unit : text) {
    if (unit == u'"' || unit == u'\\') {
      quoted += u'\\';
    }
    quoted += unit;
  }
  return quoted + u'"';
}

std::u16string HexPrefix(RegistryType type) {
  if (type == RegistryType::kBinary) {
    return u"hex:";
  }
  const std::u16string digits = Hex(static_cast<std::uint32_t>(type), 8);
  // Without leading zeros, and "0" for none: "hex(2):" and "hex(0):".
  const std::size_t first = std::min(digits.find_first_not_of(u'0'), digits.size() - 1);
  return u"hex(" + digits.substr(first) + u"):";
}

std::u16string Dword(std::span<const std::byte> bytes) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < kDwordBytes; ++i) {
    number |= std::to_integer<std::uint32_t>(bytes[i]) << (kBitsOfByte * i);
  }
  return std::u16string(kDwordPrefix) + Hex(number, 2 * kDwordBytes);
}

std::u16string Join(std::u16string_view path, std::u16string_view name) {
  std::u16string joined(path);
  if (!joined.empty()) {
    joined += u'\\';
  }
  return joined += name;
}

/// Writes a key, its values and then the keys below it, each with its heading, as Windows does. A
/// value is written as text, as a number or as bytes: the first form from which it can be read
/// again byte for byte.
class Writer {
 public:
  explicit Writer(platform::Registry& registry) : m_registry(registry) {
    m_text += kByteOrderMark;
    m_text += kRegistryFileHeader;
    m_text += kLineEnd;
  }

  Result<void, RegistryError> WriteTree(std::u16string_view path) {
    return WriteKey(std::u16string(path));
  }

  [[nodiscard]] std::vector<std::byte> GetBytes() const { return ToUtf16Bytes(m_text); }

 private:
  // Keys nest no deeper than the registry lets them.
  Result<void, RegistryError> WriteKey(const std::u16string& path) {
    const platform::OpenedKey opened = m_registry.OpenKey(path);
    if (!opened) {
      return Failure(opened.error());
    }
    if (const auto written = WriteValues(path, **opened); !written) {
      return written;
    }
    for (std::uint32_t i = 0;; ++i) {
      const auto name = (*opened)->EnumerateSubkey(i);
      if (!name) {
        return Failure(name.error());
      }
      if (!*name) {
        return {};
      }
      // Another program's name can lead anywhere: an empty one back to this key.
      if (!platform::IsKeyName(**name)) {
        return Failure(RegistryError::kInvalid);
      }
      if (const auto written = WriteKey(Join(path, **name)); !written) {
        return written;
      }
    }
  }

  Result<void, RegistryError> WriteValues(const std::u16string& path, platform::RegistryKey& key) {
    for (std::uint32_t i = 0;; ++i) {
      const auto name = key.EnumerateValue(i);
      if (!name) {
        return Failure(name.error());
      }
      // The root is there in every store, so it is worth a line only for its values.
      if (i == 0 && (*name || !path.empty())) {
        WriteHeading(path);
      }
      if (!*name) {
        return {};
      }
      const auto value = key.Query(**name);
      if (!value) {
        return Failure(value.error());
      }
      if (!platform::IsValueName(**name) || value->bytes.size() > platform::kMaxValueBytes) {
        return Failure(RegistryError::kInvalid);
      }
      WriteValue(**name, *value);
    }
  }

  void WriteHeading(const std::u16string& path) {
    m_text += kLineEnd;
    m_text += u'[';
    m_text += kRootName;
    if (!path.empty()) {
      m_text += u'\\';
    }
    m_text += path;
    m_text += u']';
    m_text += kLineEnd;
  }

  void WriteValue(std::u16string_view name, const RegistryValue& value) {
    const std::size_t lineStart = m_text.size();
    m_text += name.empty() ? u"@" : Quoted(name);
    m_text += u'=';
    if (const auto text = PlainText(value)) {
      m_text += Quoted(*text);
    } else if (value.type == RegistryType::kDword && value.bytes.size() == kDwordBytes) {
      m_text += Dword(value.bytes);
    } else {
      m_text += HexPrefix(value.type);
      WriteBytes(value.bytes, lineStart);
    }
    m_text += kLineEnd;
  }

  void WriteBytes(std::span<const std::byte> bytes, std::size_t lineStart) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      m_text += Hex(std::to_integer<std::uint32_t>(bytes[i]), 2);
      if (i + 1 == bytes.size()) {
        break;
      }
      m_text += u',';
      if (m_text.size() - lineStart < kLastColumn) {
        continue;
      }
      m_text += u'\\';
      m_text += kLineEnd;
      lineStart = m_text.size();
      m_text += u"  ";
    }
  }

  platform::Registry& m_registry;
  std::u16string m_text;
};

}  // namespace

Result<std::vector<std::byte>, RegistryError> WriteRegistryFile(platform::Registry& registry,
                                                                std::u16string_view path) {
  // Within a group, so that the file is one state of the registry.
  auto group = platform::RegistryGroup::Begin(registry);
  if (!group) {
    return Failure(group.error());
  }
  Writer writer(registry);
  if (const auto written = writer.WriteTree(path); !written) {
    return Failure(written.error());
  }
  if (const auto committed = group->Commit(); !committed) {
    return Failure(committed.error());
  }
  return writer.GetBytes();
}

}  // namespace storage
