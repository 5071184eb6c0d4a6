#include "tests/language/twins/language_table_twin.h"

#include <limits>
#include <utility>

namespace twins {
namespace {

using Position = std::int64_t;  // Offsets in bytes; the scan end less 4 may be negative.
using Copy = std::unique_ptr<char16_t[]>;

class Scan {
 public:
  explicit Scan(std::span<const std::byte> file)
      : m_file(file), m_end(static_cast<Position>(file.size())) {}

  Position End() const { return m_end; }

  bool IsAccepted() const {
    return m_end > 2 && Byte(0) == 0xFF && Byte(1) == 0xFE && Byte(2) != 0;
  }

  // A character that lies wholly or half after the end matches nothing.
  bool Is(Position at, char16_t wanted) const { return at + 2 <= m_end && Character(at) == wanted; }

  bool IsBlank(Position at) const { return Is(at, u' ') || Is(at, u'\t'); }

  bool IsCrLf(Position at) const { return Is(at, 13) && Is(at + 2, 10); }

  char16_t Character(Position at) const {
    return static_cast<char16_t>(Byte(at) + 256U * Byte(at + 1));
  }

  Copy CopyOf(Position begin, Position end) const {
    const auto length = static_cast<std::size_t>((end - begin) / 2);
    Copy copy = std::make_unique<char16_t[]>(length + 1);
    for (std::size_t i = 0; i < length; ++i) {
      copy[i] = Character(begin + 2 * static_cast<Position>(i));
    }
    copy[length] = 0;
    return copy;
  }

 private:
  unsigned Byte(Position at) const {
    return std::to_integer<unsigned>(m_file[static_cast<std::size_t>(at)]);
  }

  std::span<const std::byte> m_file;
  Position m_end;
};

bool ParseLine(const Scan& scan, Position p, Copy& key, Copy& text) {
  const Position end = scan.End();
  if (p >= end) {
    return false;
  }
  if (scan.Is(p, 0)) {
    return false;
  }
  if (scan.Is(p, u'/') && scan.Is(p + 2, u'/')) {
    return false;
  }
  if (p >= end - 4) {
    return false;
  }

  Position keyStart = -1;
  Position textStart = -1;
  bool keyEnded = false;
  for (Position at = p; at < end - 4; at += 2) {
    if (scan.Is(at, 0) || scan.IsCrLf(at)) {
      break;
    }
    if (keyStart < 0) {
      if (!scan.IsBlank(at)) {
        keyStart = at;
      }
    } else if (!keyEnded) {
      if (scan.IsBlank(at)) {
        keyEnded = true;
      }
    } else if (!scan.IsBlank(at)) {
      if (!scan.Is(at, u'/')) {
        textStart = at;
      }
      break;
    }
  }
  if (textStart < 0) {
    return false;
  }

  Position keyEnd = keyStart;
  while (!scan.IsBlank(keyEnd)) {
    keyEnd += 2;
  }

  Position textEnd = textStart;
  while (textEnd + 2 <= end && !scan.Is(textEnd, u'/') && !scan.IsCrLf(textEnd)) {
    textEnd += 2;
  }
  while (textEnd > textStart && scan.IsBlank(textEnd - 2)) {
    textEnd -= 2;
  }
  if (textEnd == textStart) {
    return false;
  }

  key = scan.CopyOf(keyStart, keyEnd);
  text = scan.CopyOf(textStart, textEnd);
  return true;
}

bool Equal(const char16_t* a, const char16_t* b) {
  while (*a != 0 && *a == *b) {
    ++a;
    ++b;
  }
  return *a == *b;
}

}  // namespace

void LanguageTableTwin::Load(std::span<const std::byte> file) {
  m_keys.reset();
  m_texts.reset();
  m_count = 0;
  const Scan scan(file);
  if (!scan.IsAccepted()) {
    return;
  }
  Position line = 2;
  while (true) {
    Copy key;
    Copy text;
    if (ParseLine(scan, line, key, text)) {
      Append(std::move(key), std::move(text));
    }
    Position at = line;
    while (at < scan.End() - 4 && !scan.IsCrLf(at)) {
      at += 2;
    }
    if (at >= scan.End() - 4) {
      return;
    }
    line = at + 4;
  }
}

void LanguageTableTwin::Append(Copy key, Copy text) {
  if (m_count == std::numeric_limits<std::uint16_t>::max()) {
    return;
  }
  auto keys = std::make_unique<Copy[]>(m_count + 1U);
  auto texts = std::make_unique<Copy[]>(m_count + 1U);
  for (std::size_t i = 0; i < m_count; ++i) {
    keys[i] = std::move(m_keys[i]);
    texts[i] = std::move(m_texts[i]);
  }
  keys[m_count] = std::move(key);
  texts[m_count] = std::move(text);
  m_keys = std::move(keys);
  m_texts = std::move(texts);
  ++m_count;
}

const char16_t* LanguageTableTwin::LookUp(const char16_t* key, const char16_t* defaultText) const {
  if (key == nullptr || m_count == 0) {
    return defaultText;
  }
  for (std::size_t i = 0; i < m_count; ++i) {
    if (Equal(m_keys[i].get(), key)) {
      return m_texts[i].get();
    }
  }
  return defaultText;
}

}  // namespace twins
