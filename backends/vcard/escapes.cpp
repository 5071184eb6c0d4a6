#include "backends/vcard/escapes.h"

#include <cstddef>
#include <optional>

#include "backends/vcard/ascii.h"

namespace vcard {
namespace {

std::optional<int> HexDigit(char c) {
  const char upper = ToUpper(c);
  if (c >= '0' && c <= '9') {
    return c - '0';
  }
  if (upper >= 'A' && upper <= 'F') {
    return upper - 'A' + 10;
  }
  return std::nullopt;
}

/// Replaces `mark` and two hexadecimal digits by the byte that they stand for.
std::string DecodeHex(std::string_view text, char mark) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == mark && i + 2 < text.size()) {
      const std::optional<int> high = HexDigit(text[i + 1]);
      const std::optional<int> low = HexDigit(text[i + 2]);
      if (high && low) {
        decoded.push_back(static_cast<char>(*high * 16 + *low));
        i += 2;
        continue;
      }
    }
    decoded.push_back(text[i]);
  }
  return decoded;
}

/// What a backslash before `next` makes of it; nothing where it stands for itself.
std::optional<char> Unescape(char next) {
  constexpr std::string_view kLineBreaks = "nNrR";
  constexpr std::string_view kThemselves =
      ";,\\:";  // The colon is no version's, yet it is written.
  if (kLineBreaks.find(next) != std::string_view::npos) {
    return '\n';
  }
  return kThemselves.find(next) != std::string_view::npos ? std::optional(next) : std::nullopt;
}

}  // namespace

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

std::vector<std::string> SplitValue(std::string_view value, Commas commas) {
  std::vector<std::string> components(1);
  for (std::size_t i = 0; i < value.size(); ++i) {
    const std::optional<char> escaped =
        value[i] == '\\' && i + 1 < value.size() ? Unescape(value[i + 1]) : std::nullopt;
    if (escaped) {
      components.back() += *escaped;
      ++i;
    } else if (value[i] == ';') {
      components.emplace_back();
    } else {
      const bool isBetween = value[i] == ',' && (i + 1 == value.size() || value[i + 1] != ' ');
      components.back() += isBetween && commas == Commas::kBlanks ? ' ' : value[i];
    }
  }
  return components;
}

}  // namespace vcard
