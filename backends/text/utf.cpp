#include "backends/text/utf.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

// This is not left to a library, since libraries put one replacement character in the place of a
// whole broken sequence. Names of files need each byte of it kept.

namespace text {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kByteBase = 0xDC00;  ///< A stray byte b of a host name becomes kByteBase + b.

struct Sequence {
  std::size_t length = 0;  ///< Bytes; 0 if no well-formed sequence starts.
  char32_t character = 0;
};

std::uint8_t ByteAt(std::string_view bytes, std::size_t at) {
  return static_cast<std::uint8_t>(bytes[at]);
}

/// Returns the well-formed sequence at the start of `bytes`, which is not empty.
Sequence Decode(std::string_view bytes) {
  const std::uint8_t lead = ByteAt(bytes, 0);
  if (lead < 0x80) {
    return {1, lead};
  }
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  // 0x80 to 0xBF only continue a sequence. 0xC0 and 0xC1 would begin longer forms of ASCII, and
  // what begins above 0xF4 is beyond Unicode.
  if (lead < 0xC2 || lead > 0xF4 || bytes.size() < length) {
    return {};
  }
  char32_t character = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const std::uint8_t next = ByteAt(bytes, i);
    if ((next & 0xC0) != 0x80) {
      return {};
    }
    character = (character << 6) | (next & 0x3FU);
  }
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  // A longer form than is needed is no well-formed one: the same character would have two
  // spellings.
  if (character < kSmallest[length] || character > 0x10FFFF || IsSurrogate(character)) {
    return {};
  }
  return {length, character};
}

/// Writes one character as UTF-8. Returns the place after it.
char* Put(char* to, char32_t character) {
  const auto put = [&to](char32_t byte) { *to++ = static_cast<char>(byte); };
  const auto continuation = [&](int shift) { put(0x80 | ((character >> shift) & 0x3F)); };
  if (character < 0x80) {
    put(character);
  } else if (character < 0x800) {
    put(0xC0 | (character >> 6));
    continuation(0);
  } else if (character < 0x10000) {
    put(0xE0 | (character >> 12));
    continuation(6);
    continuation(0);
  } else {
    put(0xF0 | (character >> 18));
    continuation(12);
    continuation(6);
    continuation(0);
  }
  return to;
}

/// Writes one character as UTF-16. Returns the place after it.
char16_t* Put(char16_t* to, char32_t character) {
  if (character < 0x10000) {
    *to++ = static_cast<char16_t>(character);
  } else {
    const char32_t offset = character - 0x10000;
    *to++ = static_cast<char16_t>(0xD800 + (offset >> 10));
    *to++ = static_cast<char16_t>(0xDC00 + (offset & 0x3FF));
  }
  return to;
}

/// A unit of UTF-16 takes at most three bytes of UTF-8.
constexpr std::size_t kMostBytesOfUnit = 3;

/// Returns how many bytes at the start of `bytes` are ASCII. Nearly all text is, so they are taken
/// eight at a time.
std::size_t CountAscii(std::string_view bytes) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  std::size_t count = 0;
  for (std::uint64_t word = 0; bytes.size() - count >= sizeof word; count += sizeof word) {
    std::memcpy(&word, bytes.data() + count, sizeof word);
    if ((word & kHighBits) != 0) {
      break;
    }
  }
  while (count < bytes.size() && ByteAt(bytes, count) < 0x80) {
    ++count;
  }
  return count;
}

std::size_t CountAscii(std::u16string_view text) {
  constexpr std::uint64_t kHighBits = 0xFF80FF80FF80FF80;
  constexpr std::size_t kUnits = sizeof kHighBits / sizeof(char16_t);
  std::size_t count = 0;
  for (std::uint64_t word = 0; text.size() - count >= kUnits; count += kUnits) {
    std::memcpy(&word, text.data() + count, sizeof word);
    if ((word & kHighBits) != 0) {
      break;
    }
  }
  while (count < text.size() && text[count] < 0x80) {
    ++count;
  }
  return count;
}

/// Writes units of one width, all of them ASCII, as those of the other. Returns the place after
/// them.
template <typename To, typename From>
To* PutAscii(To* to, From from) {
  return std::transform(from.begin(), from.end(), to,
                        [](auto unit) { return static_cast<To>(unit); });
}

/// `strayByte` gives the character that stands for a byte which is no part of well-formed UTF-8.
template <typename StrayByte>
std::u16string Convert(std::string_view utf8, StrayByte strayByte) {
  std::u16string text(utf8.size(), u'\0');
  char16_t* to = text.data();
  while (true) {
    const std::size_t ascii = CountAscii(utf8);
    to = PutAscii(to, utf8.substr(0, ascii));
    utf8.remove_prefix(ascii);
    if (utf8.empty()) {
      text.resize(static_cast<std::size_t>(to - text.data()));
      return text;
    }
    const Sequence sequence = Decode(utf8);
    if (sequence.length == 0) {
      to = Put(to, strayByte(ByteAt(utf8, 0)));
      // One byte only. The next one may begin a sequence.
      utf8.remove_prefix(1);
    } else {
      to = Put(to, sequence.character);
      utf8.remove_prefix(sequence.length);
    }
  }
}

}  // namespace

char32_t NextCharacter(std::u16string_view text, std::size_t& at) {
  const char32_t first = text[at++];
  if (first < 0xD800 || first > 0xDBFF || at == text.size()) {
    return first;
  }
  const char32_t second = text[at];
  if (second < 0xDC00 || second > 0xDFFF) {
    return first;
  }
  ++at;
  return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

void AppendCharacter(std::u16string& text, char32_t character) {
  std::array<char16_t, 2> units{};
  text.append(units.data(), Put(units.data(), character));
}

std::string ToUtf8(std::u16string_view text) {
  std::string utf8;
  AppendUtf8(text, utf8);
  return utf8;
}

void AppendUtf8(std::u16string_view text, std::string& utf8) {
  const std::size_t before = utf8.size();
  utf8.resize(before + text.size() * kMostBytesOfUnit);
  char* to = utf8.data() + before;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t ascii = CountAscii(text.substr(at));
    to = PutAscii(to, text.substr(at, ascii));
    at += ascii;
    if (at < text.size()) {
      const char32_t character = NextCharacter(text, at);
      to = Put(to, IsSurrogate(character) ? kReplacement : character);
    }
  }
  utf8.resize(static_cast<std::size_t>(to - utf8.data()));
}

std::u16string FromUtf8(std::string_view utf8) {
  return Convert(utf8, [](std::uint8_t) { return kReplacement; });
}

bool IsAscii(std::string_view bytes) { return CountAscii(bytes) == bytes.size(); }

bool IsUtf8(std::string_view bytes) {
  while (true) {
    bytes.remove_prefix(CountAscii(bytes));
    if (bytes.empty()) {
      return true;
    }
    const Sequence sequence = Decode(bytes);
    if (sequence.length == 0) {
      return false;
    }
    bytes.remove_prefix(sequence.length);
  }
}

std::u16string FromHostName(std::string_view name) {
  return Convert(name, [](std::uint8_t byte) { return kByteBase + byte; });
}

std::string ToHostName(std::u16string_view text) {
  std::string name(text.size() * kMostBytesOfUnit, '\0');
  char* to = name.data();
  for (std::size_t at = 0; at < text.size();) {
    const char32_t character = NextCharacter(text, at);
    // Bytes below 0x80 are never stray, so a surrogate for one, a "/" say, is not from a host name.
    if (character >= kByteBase + 0x80 && character <= kByteBase + 0xFF) {
      *to++ = static_cast<char>(character - kByteBase);
    } else {
      to = Put(to, IsSurrogate(character) ? kReplacement : character);
    }
  }
  name.resize(static_cast<std::size_t>(to - name.data()));
  return name;
}

}  // namespace text
