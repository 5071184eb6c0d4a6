#include "backends/vcard/content_line.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <utility>

#include "backends/text/utf.h"
#include "backends/vcard/ascii.h"
#include "backends/vcard/charset.h"
#include "backends/vcard/telephone_kinds.h"

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

constexpr std::string_view kName = "N";
constexpr std::size_t kNone = std::string_view::npos;
constexpr std::string_view kCustomPrefix = "X-CUSTOM(";

/// How the value of a line is written.
struct Encoding {
  std::string charset;
  bool isQuotedPrintable = false;
  bool isBase64 = false;
};

/// Returns the position of the first `wanted` outside quotes, and outside parentheses if those
/// count.
std::size_t FindOutside(std::string_view text, char wanted, bool parenthesesCount) {
  const std::size_t first = text.find(wanted);
  const std::string_view before = text.substr(0, first);
  if (first == kNone ||
      (before.find('"') == kNone && (!parenthesesCount || before.find('(') == kNone))) {
    return first;  // Nothing encloses it.
  }
  bool isQuoted = false;
  int depth = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"') {
      isQuoted = !isQuoted;
    } else if (!isQuoted && c == wanted && depth <= 0) {
      return i;
    } else if (!isQuoted && parenthesesCount) {
      depth += (c == '(' ? 1 : 0) - (c == ')' ? 1 : 0);
    }
  }
  return kNone;
}

/// A type or a label may be quoted and, once it is decoded, hold anything.
std::string WithoutQuotes(std::string text) {
  std::erase_if(text, [](char c) { return c == '"' || IsControl(c); });
  return text;
}

/// Returns 0 if the value is no number from 1 to 100.
int ParsePreference(std::string_view value) {
  int preference = 0;
  const char* const end = value.data() + value.size();
  const auto [parsed, error] = std::from_chars(value.data(), end, preference);
  const bool isMeant = error == std::errc() && parsed == end && preference <= 100;
  return isMeant ? std::max(preference, 0) : 0;
}

bool IsBase64(std::string_view name, std::string_view value) {
  return EqualIgnoringCase(value, "BASE64") ||
         (EqualIgnoringCase(name, "ENCODING") && EqualIgnoringCase(value, "B"));
}

/// Returns the label of "X-CUSTOM(Label)" or
/// "X-CUSTOM(CHARSET=UTF-8,ENCODING=QUOTED-PRINTABLE,=4C=61)".
std::string CustomLabel(std::string_view parameter) {
  std::string_view label = parameter.substr(kCustomPrefix.size());
  label = label.substr(0, label.rfind(')'));
  if (!ContainsIgnoringCase(label, "ENCODING=QUOTED-PRINTABLE,")) {
    return std::string(label);
  }
  const std::size_t encoded = label.rfind(',');
  return GuessUtf8(DecodeQuotedPrintable(label.substr(encoded + 1)));
}

void TakeParameter(std::string_view parameter, ContentLine& line, Encoding& encoding) {
  if (EqualIgnoringCase(parameter.substr(0, kCustomPrefix.size()), kCustomPrefix)) {
    line.label = WithoutQuotes(CustomLabel(parameter));
    return;
  }
  const std::size_t equals = parameter.find('=');
  const std::string_view name = Trim(parameter.substr(0, equals));
  std::string value(equals == kNone ? parameter : Trim(parameter.substr(equals + 1)));
  if (EqualIgnoringCase(name, "CHARSET")) {
    encoding.charset = std::move(value);
  } else if (EqualIgnoringCase(value, "QUOTED-PRINTABLE")) {
    encoding.isQuotedPrintable = true;
  } else if (IsBase64(name, value)) {
    encoding.isBase64 = true;
  } else if (equals == kNone || EqualIgnoringCase(name, "TYPE")) {
    AppendWords(WithoutQuotes(std::move(value)), line.words);
  } else if (EqualIgnoringCase(name, "PREF")) {
    line.words.emplace_back("PREF");
    line.preference = ParsePreference(WithoutQuotes(std::move(value)));
  } else if (EqualIgnoringCase(name, "VALUE")) {
    std::erase(value, '"');
    line.isUri = line.isUri || EqualIgnoringCase(value, "uri");
  }
}

/// `parameters` holds the semicolon before each of them.
void TakeParameters(std::string_view parameters, ContentLine& line, Encoding& encoding) {
  while (!parameters.empty()) {
    parameters.remove_prefix(1);
    const std::size_t end = std::min(FindOutside(parameters, ';', true), parameters.size());
    TakeParameter(Trim(parameters.substr(0, end)), line, encoding);
    parameters.remove_prefix(end);
  }
}

// A value has to be decoded and cut at its semicolons, and the encoding says which comes first. In
// quoted-printable a semicolon of the text is "=3B", so the value is cut first. Base64 hides every
// semicolon, and in a set with escape sequences any byte may look like one, so these are decoded
// first. So are all other values, since the second byte of a character may look like a backslash.

/// `decode` gives the UTF-8 of a text.
template <typename Decode>
std::vector<std::string> ReadComponents(std::string_view value, bool isQuotedPrintable,
                                        Commas commas, const Decode& decode) {
  if (!isQuotedPrintable) {
    return SplitValue(decode(value), commas);
  }
  std::vector<std::string> components = SplitValue(value, commas);
  for (std::string& component : components) {
    component = decode(DecodeQuotedPrintable(component));
  }
  return components;
}

/// Returns whether former versions may have read the value otherwise.
bool MayReadOtherwise(std::string_view value, const Encoding& encoding) {
  return encoding.isBase64 || encoding.isQuotedPrintable || IsStateful(encoding.charset) ||
         !text::IsAscii(value);
}

/// Returns whether the value stands there as it is meant, but for its backslashes. Most do.
bool IsPlain(std::string_view value, const Encoding& encoding) {
  return encoding.charset.empty() && !encoding.isBase64 && !encoding.isQuotedPrintable &&
         text::IsAscii(value);
}

std::vector<std::string> ReadValue(std::string_view value, const Encoding& encoding,
                                   Commas commas) {
  if (IsPlain(value, encoding)) {
    return SplitValue(value, commas);
  }
  const auto decode = [&encoding](std::string_view text) {
    std::optional<std::string> converted = ToUtf8(text, encoding.charset);
    return converted ? std::move(*converted) : GuessUtf8(text);
  };
  if (const auto bytes = encoding.isBase64 ? DecodeBase64(value) : std::nullopt) {
    return SplitValue(decode(*bytes), commas);
  }
  if (encoding.isQuotedPrintable && IsStateful(encoding.charset)) {
    return SplitValue(decode(DecodeQuotedPrintable(value)), commas);
  }
  return ReadComponents(value, encoding.isQuotedPrintable, commas, decode);
}

std::vector<std::string> ReadFormerValue(std::string_view value, const Encoding& encoding) {
  return ReadComponents(
      value, encoding.isQuotedPrintable, Commas::kKept,
      [&encoding](std::string_view text) { return FormerUtf8(text, encoding.charset); });
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
  const auto isPlain = [commas](char c) {
    return c != ';' && c != '\\' && (c != ',' || commas == Commas::kKept);
  };
  std::vector<std::string> components;
  components.reserve(1 + static_cast<std::size_t>(std::count(value.begin(), value.end(), ';')));
  if (std::all_of(value.begin(), value.end(), [&](char c) { return c == ';' || isPlain(c); })) {
    for (std::size_t end = value.find(';'); end != kNone; end = value.find(';')) {
      components.emplace_back(value.substr(0, end));
      value.remove_prefix(end + 1);
    }
    components.emplace_back(value);
    return components;
  }
  components.emplace_back();
  for (std::size_t i = 0; i < value.size(); ++i) {
    const std::size_t first = i;
    while (i < value.size() && isPlain(value[i])) {
      ++i;
    }
    components.back().append(value, first, i - first);
    if (i == value.size()) {
      break;
    }
    const std::optional<char> escaped =
        value[i] == '\\' && i + 1 < value.size() ? Unescape(value[i + 1]) : std::nullopt;
    if (escaped) {
      components.back() += *escaped;
      ++i;
    } else if (value[i] == ';') {
      components.emplace_back();
    } else {
      const bool isBetween = value[i] == ',' && (i + 1 == value.size() || value[i + 1] != ' ');
      components.back() += isBetween ? ' ' : value[i];
    }
  }
  return components;
}

Property PropertyOf(std::string_view line) {
  const auto found =
      std::find_if(line.begin(), line.end(), [](char c) { return c == ':' || c == ';'; });
  if (found == line.end()) {
    return {};
  }
  const std::string_view whole(line.begin(), found);
  const std::size_t stop = whole.rfind('.');
  return stop == kNone ? Property{{}, Trim(whole)}
                       : Property{Trim(whole.substr(0, stop)), Trim(whole.substr(stop + 1))};
}

std::optional<ContentLine> ParseContentLine(std::string_view line) {
  std::size_t colon = FindOutside(line, ':', false);
  const bool isQuoteOpen = colon == kNone;
  if (isQuoteOpen) {
    colon = line.find(':');
  }
  if (colon == kNone) {
    return std::nullopt;
  }
  std::string_view head = line.substr(0, colon);
  head.remove_prefix(std::min(head.find(';'), head.size()));
  const Property property = PropertyOf(line);
  ContentLine parsed;
  parsed.group = ToUpper(property.group);
  parsed.name = ToUpper(property.name);
  Encoding encoding;
  if (isQuoteOpen || !text::IsAscii(head)) {
    std::string parameters(head);
    if (isQuoteOpen) {
      std::erase(parameters, '"');
    }
    TakeParameters(GuessUtf8(parameters), parsed, encoding);
  } else {
    TakeParameters(head, parsed, encoding);
  }
  const std::string_view value = line.substr(colon + 1);
  parsed.components = ReadValue(value, encoding, Commas::kKept);
  if (parsed.name == kName && (value.find(',') != kNone || !IsPlain(value, encoding))) {
    parsed.spacedComponents = ReadValue(value, encoding, Commas::kBlanks);
  }
  if (MayReadOtherwise(value, encoding)) {
    parsed.formerComponents = ReadFormerValue(value, encoding);
    if (parsed.formerComponents == parsed.components) {
      parsed.formerComponents.clear();
    }
  }
  return parsed;
}

}  // namespace vcard
