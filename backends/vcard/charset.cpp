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
