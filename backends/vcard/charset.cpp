#include "backends/vcard/charset.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "backends/text/utf.h"

namespace vcard {
namespace {

constexpr const char* kLegacyCharset = "WINDOWS-1252";

constexpr std::string_view kJapaneseMail = "ISO-2022-JP";

constexpr std::array<std::string_view, 21> kSingleSets = {
    kJapaneseMail, "UTF-8",     "UTF8",   "US-ASCII", "ASCII",  "KOI8-R", "KOI8-U",
    "SHIFT_JIS",   "SHIFT-JIS", "EUC-JP", "EUC-KR",   "GB2312", "GBK",    "GB18030",
    "BIG5",        "TIS-620",   "CP874",  "CP932",    "CP936",  "CP949",  "CP950"};

/// Sets that differ in a number after the prefix.
struct Family {
  std::string_view prefix;
  std::size_t maxDigits;
};
constexpr std::array<Family, 3> kFamilies = {{{"ISO-8859-", 2}, {"WINDOWS-125", 1}, {"CP125", 1}}};

bool IsMember(const Family& family, std::string_view name) {
  if (!name.starts_with(family.prefix)) {
    return false;
  }
  const std::string_view number = name.substr(family.prefix.size());
  return !number.empty() && number.size() <= family.maxDigits &&
         number.find_first_not_of("0123456789") == std::string_view::npos;
}

bool IsKnownCharset(std::string_view name) {
  if (name.empty()) {
    return false;
  }
  const std::string upper = ToUpper(name);
  return std::find(kSingleSets.begin(), kSingleSets.end(), upper) != kSingleSets.end() ||
         std::any_of(kFamilies.begin(), kFamilies.end(),
                     [&upper](const Family& family) { return IsMember(family, upper); });
}

/// Returns nothing if address books do not write the set.
std::optional<Converted> ConvertFrom(std::string_view charset, std::string_view text) {
  // The converter would give the same, and most texts are of this set.
  if ((EqualIgnoringCase(charset, "UTF-8") || EqualIgnoringCase(charset, "UTF8")) &&
      text::IsUtf8(text)) {
    return Converted{std::string(text)};
  }
  return IsKnownCharset(charset) ? ConvertBySystem(std::string(charset), std::string(text))
                                 : std::nullopt;
}

/// Returns whether texts that name no set are read in this one first.
bool IsUnicode(std::string_view charset) {
  const std::string upper = ToUpper(charset);
  return upper.starts_with("UTF") || upper.ends_with("ASCII");
}

/// Whether some character beyond ASCII is well-formed UTF-8.
bool HasUtf8Beyond7Bits(std::string_view text) {
  const std::u16string decoded = text::FromUtf8(text);
  return std::any_of(decoded.begin(), decoded.end(),
                     [](char16_t unit) { return unit >= 0x80 && unit != u'\uFFFD'; });
}

constexpr std::size_t kUnitSize = 2;

bool IsFirstSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

constexpr int kNoDigit = -1;

/// What each byte is worth as a hexadecimal digit.
constexpr std::array<std::int8_t, 256> kHexDigits = [] {
  std::array<std::int8_t, 256> digits{};
  digits.fill(kNoDigit);
  for (int i = 0; i < 16; ++i) {
    const char digit = "0123456789ABCDEF"[i];
    digits[static_cast<unsigned char>(digit)] = static_cast<std::int8_t>(i);
    digits[static_cast<unsigned char>(digit | 0x20)] = static_cast<std::int8_t>(i);
  }
  return digits;
}();

/// Replaces `mark` and two hexadecimal digits by the byte that they stand for.
std::string DecodeHex(std::string_view text, char mark) {
  const auto digit = [text](std::size_t at) {
    return at < text.size() ? kHexDigits[static_cast<unsigned char>(text[at])] : kNoDigit;
  };
  std::string decoded(text.size(), '\0');
  char* to = decoded.data();
  for (std::size_t i = 0; i < text.size(); ++i) {
    const int high = text[i] == mark ? digit(i + 1) : kNoDigit;
    const int low = high != kNoDigit ? digit(i + 2) : kNoDigit;
    *to++ = low == kNoDigit ? text[i] : static_cast<char>(high * 16 + low);
    i += low == kNoDigit ? 0 : 2;
  }
  decoded.resize(static_cast<std::size_t>(to - decoded.data()));
  return decoded;
}

/// Returns the character that a backslash and `next` stand for. Returns nothing if the backslash
/// stands for itself.
std::optional<char> Unescape(char next) {
  constexpr std::string_view kLineBreaks = "nNrR";
  constexpr std::string_view kThemselves =
      ";,\\:";  // No version has the colon, but some programs write it.
  if (kLineBreaks.find(next) != std::string_view::npos) {
    return '\n';
  }
  return kThemselves.find(next) != std::string_view::npos ? std::optional(next) : std::nullopt;
}

}  // namespace

DecodedText DecodeText(std::string_view text, std::string_view charset) {
  auto named = ConvertFrom(charset, text);
  if (named && (named->isWhole || !(IsUnicode(charset) || text::IsUtf8(text)))) {
    return {std::move(named->text), named->isWhole && !IsStateful(charset)};
  }
  if (text::IsUtf8(text)) {
    return {std::string(text)};
  }
  if (!HasUtf8Beyond7Bits(text)) {
    if (auto legacy = ConvertFrom(kLegacyCharset, text)) {
      return {std::move(legacy->text), legacy->isWhole};
    }
  }
  return {std::string(text), false};
}

std::string FormerUtf8(std::string_view text, std::string_view charset) {
  auto converted = IsStateful(charset) ? std::nullopt : ConvertFrom(charset, text);
  if (!converted || !converted->isWhole) {
    converted = text::IsUtf8(text) ? std::nullopt : ConvertFrom(kLegacyCharset, text);
  }
  return converted && converted->isWhole ? std::move(converted->text) : std::string(text);
}

bool IsStateful(std::string_view charset) { return EqualIgnoringCase(charset, kJapaneseMail); }

std::string DecodeQuotedPrintable(std::string_view text) { return DecodeHex(text, '='); }

std::string DecodePercents(std::string_view text) { return DecodeHex(text, '%'); }

std::optional<std::string> DecodeBase64(std::string_view text) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  constexpr unsigned kBitsPerDigit = 6;
  constexpr unsigned kBitsPerByte = 8;
  text = text.substr(0, text.find_last_not_of("= \t") + 1);
  std::string decoded;
  std::uint32_t bits = 0;
  unsigned count = 0;
  for (const char c : text) {
    if (c == ' ' || c == '\t') {
      continue;
    }
    const std::size_t digit = kDigits.find(c);
    if (digit == std::string_view::npos) {
      return std::nullopt;
    }
    bits = (bits << kBitsPerDigit) | static_cast<std::uint32_t>(digit);
    count += kBitsPerDigit;
    if (count >= kBitsPerByte) {
      count -= kBitsPerByte;
      decoded.push_back(static_cast<char>((bits >> count) & 0xFF));
    }
  }
  return decoded;
}

void SplitValue(std::string_view value, Commas commas, std::vector<std::string>& components) {
  const auto isSpecial = [commas](char c) {
    return c == ';' || c == '\\' || (c == ',' && commas == Commas::kBlanks);
  };
  std::size_t count = 0;
  const auto begin = [&]() -> std::string& {
    if (count == components.size()) {
      components.emplace_back();
    }
    components[count].clear();
    return components[count++];
  };
  std::string* component = &begin();
  for (std::size_t i = 0; i < value.size(); ++i) {
    const std::size_t first = i;
    while (i < value.size() && !isSpecial(value[i])) {
      ++i;
    }
    component->append(value, first, i - first);
    if (i == value.size()) {
      break;
    }
    const std::optional<char> escaped =
        value[i] == '\\' && i + 1 < value.size() ? Unescape(value[i + 1]) : std::nullopt;
    if (escaped) {
      *component += *escaped;
      ++i;
    } else if (value[i] == ';') {
      component = &begin();
    } else {
      const bool isBetween = value[i] == ',' && (i + 1 == value.size() || value[i + 1] != ' ');
      *component += isBetween ? ' ' : value[i];
    }
  }
  components.resize(count);
}

// The first two bytes decide. A card begins with an ASCII letter, which has a zero next to it in
// UTF-16 and in nothing else. The mark, if there is one, is handed on as the character that it is.
void StreamDecoder::Feed(std::string_view bytes) {
  if (m_encoding == Encoding::kUnknown) {
    const std::size_t taken = std::min(kUnitSize - m_start.size(), bytes.size());
    m_start.append(bytes.substr(0, taken));
    bytes.remove_prefix(taken);
    if (m_start.size() < kUnitSize) {
      return;
    }
    const bool isLittle = m_start == "\xFF\xFE" || (m_start[0] != 0 && m_start[1] == 0);
    const bool isBig = m_start == "\xFE\xFF" || (m_start[0] == 0 && m_start[1] != 0);
    m_encoding = isLittle ? Encoding::kLittleEndian
                 : isBig  ? Encoding::kBigEndian
                          : Encoding::kBytes;
    Feed(std::exchange(m_start, {}));
  }
  if (m_encoding == Encoding::kBytes) {
    m_sink(bytes);
  } else {
    FeedUtf16(bytes);
  }
}

// A piece may end within a unit or between two surrogates. What is left waits for the next piece.
void StreamDecoder::FeedUtf16(std::string_view bytes) {
  for (const char byte : bytes) {
    if (!m_half) {
      m_half = byte;
      continue;
    }
    const bool isLittle = m_encoding == Encoding::kLittleEndian;
    const auto low = static_cast<unsigned char>(isLittle ? *m_half : byte);
    const auto high = static_cast<unsigned char>(isLittle ? byte : *m_half);
    m_units.push_back(static_cast<char16_t>(high << 8 | low));
    m_half.reset();
  }
  std::u16string rest;
  if (!m_units.empty() && IsFirstSurrogate(m_units.back())) {
    rest = m_units.back();
    m_units.pop_back();
  }
  m_sink(text::ToUtf8(std::exchange(m_units, std::move(rest))));
}

void StreamDecoder::Finish() {
  if (m_encoding == Encoding::kUnknown) {
    m_sink(m_start);
  } else if (m_encoding != Encoding::kBytes && (m_half || !m_units.empty())) {
    m_sink("\xEF\xBF\xBD");  // U+FFFD: the stream was cut within a character.
  }
}

}  // namespace vcard
