#include "language/language_file_reader.h"

#include <algorithm>

namespace language {
namespace {

constexpr std::size_t kFirstCharacter = 1;  // The byte-order mark is the one before.

// In the last four bytes of a file only a CR LF is expected. Nothing begins there.
constexpr std::size_t kTailBytes = 4;

// The marks of UTF-16 and UTF-32 begin with the same two bytes. The third byte is 0 in UTF-32.
bool HasAcceptedStart(std::span<const std::byte> file) {
  return file.size() >= 3 && file[0] == std::byte{0xFF} && file[1] == std::byte{0xFE} &&
         file[2] != std::byte{0};
}

std::u16string Decode(std::span<const std::byte> file) {
  std::u16string characters(file.size() / 2, u'\0');
  for (std::size_t i = 0; i < characters.size(); ++i) {
    const auto low = std::to_integer<unsigned>(file[2 * i]);
    const auto high = std::to_integer<unsigned>(file[2 * i + 1]);
    characters[i] = static_cast<char16_t>(low | (high << 8U));
  }
  return characters;
}

}  // namespace

LanguageFileReader::LanguageFileReader(std::span<const std::byte> file) : m_next(kFirstCharacter) {
  m_isAccepted = HasAcceptedStart(file);
  m_isAtEnd = !m_isAccepted;
  if (!m_isAccepted) {
    return;
  }
  // The device reads pairs of bytes, whatever character they make. So does this, and half a
  // character at the end is lost.
  m_characters = Decode(file);
  // Counted in bytes, so a last half character moves it by one.
  m_limit = file.size() < kTailBytes ? 0 : (file.size() - kTailBytes + 1) / 2;
}

std::optional<LanguageLine> LanguageFileReader::Next() {
  if (m_isAtEnd) {
    return std::nullopt;
  }
  LanguageLine line = Parse(m_next);
  const std::size_t end = FindLineEnd(m_next);
  m_isAtEnd = end >= m_limit;
  line.number = m_lineNumber;
  line.whole = Between(m_next, end);
  m_lineNumber +=
      1 + static_cast<std::size_t>(std::count(line.whole.begin(), line.whole.end(), u'\n'));
  m_next = end + 2;
  return line;
}

/// Goes along the line from its start: blanks, key, blanks, text. If the line ends on the way, it
/// has no text, or not even a key.
LanguageLine LanguageFileReader::Parse(std::size_t start) const {
  LanguageLine line;
  if (StopsAt(start)) {
    return line;
  }
  // There is a next character: nothing begins in the last four bytes of the file.
  if (m_characters[start] == u'/' && m_characters[start + 1] == u'/') {
    line.kind = LineKind::kComment;
    return line;
  }
  std::size_t at = start;
  while (!StopsAt(at) && IsBlank(m_characters[at])) {
    ++at;
  }
  if (StopsAt(at)) {
    return line;
  }
  const std::size_t keyStart = at;
  while (!StopsAt(at) && !IsBlank(m_characters[at])) {
    ++at;
  }
  line.kind = LineKind::kNoText;
  const std::size_t keyEnd = at;
  while (!StopsAt(at) && IsBlank(m_characters[at])) {
    ++at;
  }
  // A slash ends a text, so one that begins with it is empty.
  if (StopsAt(at) || m_characters[at] == u'/') {
    return line;
  }
  line.key = Between(keyStart, keyEnd);
  TakeText(at, line);
  return line;
}

/// The text may reach into the last four bytes of the file, where no text may begin: a file without
/// a CR LF at its end keeps its last text.
void LanguageFileReader::TakeText(std::size_t start, LanguageLine& line) const {
  std::size_t end = start;
  while (end < m_characters.size() && m_characters[end] != u'/' && !IsLineEnd(end)) {
    ++end;
  }
  while (end > start && IsBlank(m_characters[end - 1])) {
    --end;
  }
  line.kind = LineKind::kEntry;
  line.text = Between(start, end);
  // For the check of a file only: what the dialer drops without a word.
  line.rest = Between(end, FindLineEnd(end));
  // Texts are zero-terminated, so nobody sees what follows a NUL; the blanks before it stay.
  line.text = line.text.substr(0, line.text.find(u'\0'));
}

bool LanguageFileReader::IsLineEnd(std::size_t at) const {
  return at + 1 < m_characters.size() && m_characters[at] == u'\r' && m_characters[at + 1] == u'\n';
}

bool LanguageFileReader::StopsAt(std::size_t at) const {
  return at >= m_limit || m_characters[at] == u'\0' || IsLineEnd(at);
}

std::size_t LanguageFileReader::FindLineEnd(std::size_t start) const {
  const std::size_t end = m_characters.find(u"\r\n", start);
  return end == std::u16string::npos ? m_characters.size() : end;
}

std::u16string_view LanguageFileReader::Between(std::size_t begin, std::size_t end) const {
  return std::u16string_view(m_characters).substr(begin, end - begin);
}

}  // namespace language
