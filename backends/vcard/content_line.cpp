#include "backends/vcard/content_line.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <optional>
#include <utility>

#include "backends/text/utf.h"
#include "backends/vcard/charset.h"

namespace vcard {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::string_view kCustomPrefix = "X-CUSTOM(";

/// How the value of a line is written.
struct Encoding {
  std::string_view charset;
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

bool IsUnwanted(char c) { return c == '"' || IsControl(c); }

/// A type or a label may be quoted and, once it is decoded, hold anything.
std::string WithoutQuotes(std::string text) {
  std::erase_if(text, IsUnwanted);
  return text;
}

Words WordsOfType(std::string_view type) {
  return std::ranges::any_of(type, IsUnwanted) ? WordsOf(WithoutQuotes(std::string(type)))
                                               : WordsOf(type);
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
  return DecodeText(DecodeQuotedPrintable(label.substr(encoded + 1))).text;
}

void TakeParameter(std::string_view parameter, ContentLine& line, Encoding& encoding) {
  if (EqualIgnoringCase(parameter.substr(0, kCustomPrefix.size()), kCustomPrefix)) {
    line.label = WithoutQuotes(CustomLabel(parameter));
    return;
  }
  const std::size_t equals = parameter.find('=');
  const std::string_view name = Trim(parameter.substr(0, equals));
  const std::string_view value = equals == kNone ? parameter : Trim(parameter.substr(equals + 1));
  if (EqualIgnoringCase(name, "CHARSET")) {
    encoding.charset = value;
  } else if (EqualIgnoringCase(value, "QUOTED-PRINTABLE")) {
    encoding.isQuotedPrintable = true;
  } else if (IsBase64(name, value)) {
    encoding.isBase64 = true;
  } else if (equals == kNone || EqualIgnoringCase(name, "TYPE")) {
    line.words |= WordsOfType(value);
  } else if (EqualIgnoringCase(name, "PREF")) {
    line.words |= kPreferredWord;
    line.preference = ParsePreference(WithoutQuotes(std::string(value)));
  } else if (EqualIgnoringCase(name, "VALUE")) {
    std::string quoteless(value);
    std::erase(quoteless, '"');
    line.isUri = line.isUri || EqualIgnoringCase(quoteless, "uri");
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

/// Reads the value of a line twice: once with its commas, and if it is a name with such, once with
/// blanks in their place.
template <typename Split>
void SplitBoth(std::string_view text, ContentLine& line, const Split& split) {
  split(text, Commas::kKept, line.components);
  line.spacedComponents.clear();
  if (line.name == LineName::kName && text.find(',') != kNone) {
    split(text, Commas::kBlanks, line.spacedComponents);
  }
}

/// `decode` gives the UTF-8 of a text.
template <typename Decode>
void SplitQuotedPrintable(std::string_view value, Commas commas,
                          std::vector<std::string>& components, const Decode& decode) {
  SplitValue(value, commas, components);
  for (std::string& component : components) {
    component = decode(DecodeQuotedPrintable(component));
  }
}

/// Returns whether former versions read the same components.
bool ReadEncodedValue(std::string_view value, const Encoding& encoding, ContentLine& line) {
  const auto bytes = encoding.isBase64 ? DecodeBase64(value) : std::nullopt;
  const bool isDecodedFirst = encoding.isQuotedPrintable && IsStateful(encoding.charset);
  if (!bytes && encoding.isQuotedPrintable && !isDecodedFirst) {
    bool isAsBefore = true;
    SplitBoth(value, line, [&](std::string_view text, Commas commas, auto& components) {
      SplitQuotedPrintable(text, commas, components, [&](std::string_view component) {
        DecodedText decoded = DecodeText(component, encoding.charset);
        isAsBefore = isAsBefore && decoded.isAsBefore;
        return std::move(decoded.text);
      });
    });
    return isAsBefore;
  }
  const DecodedText decoded = bytes ? DecodeText(*bytes, encoding.charset)
                              : isDecodedFirst
                                  ? DecodeText(DecodeQuotedPrintable(value), encoding.charset)
                                  : DecodeText(value, encoding.charset);
  SplitBoth(decoded.text, line, SplitValue);
  return decoded.isAsBefore && !bytes && !isDecodedFirst;
}

void ReadFormerValue(std::string_view value, const Encoding& encoding, ContentLine& line) {
  const auto decode = [&encoding](std::string_view text) {
    return FormerUtf8(text, encoding.charset);
  };
  if (encoding.isQuotedPrintable) {
    SplitQuotedPrintable(value, Commas::kKept, line.formerComponents, decode);
  } else {
    SplitValue(decode(value), Commas::kKept, line.formerComponents);
  }
  if (line.formerComponents == line.components) {
    line.formerComponents.clear();
  }
}

void ReadValue(std::string_view value, const Encoding& encoding, ContentLine& line) {
  line.formerComponents.clear();
  const bool isEncoded =
      !encoding.charset.empty() || encoding.isBase64 || encoding.isQuotedPrintable;
  if (!isEncoded && text::IsUtf8(value)) {
    // The value stands there as it is meant, but for its backslashes. Most do.
    SplitBoth(value, line, SplitValue);
  } else if (!ReadEncodedValue(value, encoding, line)) {
    ReadFormerValue(value, encoding, line);
  }
}

LineName NameOf(std::string_view name) {
  using Names = std::span<const std::pair<std::string_view, LineName>>;
  static constexpr std::array<Names::value_type, 12> kNames = {{
      {"N", LineName::kName},
      {"FN", LineName::kFullName},
      {"TEL", LineName::kTelephone},
      {"ORG", LineName::kCompany},
      {"UID", LineName::kUid},
      {"END", LineName::kEnd},
      {"BEGIN", LineName::kBegin},
      {"EMAIL", LineName::kEmail},
      {"AGENT", LineName::kAgent},
      {"NICKNAME", LineName::kNickname},
      {"X-MS-TEL", LineName::kOutlookTelephone},
      {"X-ABLABEL", LineName::kLabel},
  }};
  // A stream has very many lines. Only the names of the same length are compared.
  static constexpr std::array<std::uint8_t, 11> kFirstOfLength = {0, 0, 1, 2,  6, 6,
                                                                  9, 9, 9, 11, 12};
  static_assert(std::ranges::all_of(kNames, [](const auto& known) {
    const auto place = static_cast<std::size_t>(&known - kNames.data());
    const std::size_t length = known.first.size();
    return kFirstOfLength[length] <= place && place < kFirstOfLength[length + 1];
  }));
  if (name.size() + 1 < kFirstOfLength.size()) {
    const std::size_t first = kFirstOfLength[name.size()];
    for (const auto& [known, meant] :
         Names(kNames).subspan(first, kFirstOfLength[name.size() + 1] - first)) {
      if (EqualIgnoringCase(name, known)) {
        return meant;
      }
    }
  }
  return LineName::kOther;
}

}  // namespace

Property PropertyOf(std::string_view line) {
  const auto found =
      std::find_if(line.begin(), line.end(), [](char c) { return c == ':' || c == ';'; });
  if (found == line.end()) {
    return {};
  }
  const std::string_view whole(line.begin(), found);
  const std::size_t stop = whole.rfind('.');
  return stop == kNone
             ? Property{{}, NameOf(Trim(whole))}
             : Property{Trim(whole.substr(0, stop)), NameOf(Trim(whole.substr(stop + 1)))};
}

void ParseContentLine(std::string_view line, const Property& property, ContentLine& parsed) {
  std::size_t colon = FindOutside(line, ':', false);
  const bool isQuoteOpen = colon == kNone;
  if (isQuoteOpen) {
    colon = line.find(':');
  }
  std::string_view head = line.substr(0, colon);
  head.remove_prefix(std::min(head.find(';'), head.size()));
  parsed.group = ToUpper(property.group);
  parsed.name = property.name;
  parsed.words = 0;
  parsed.label.clear();
  parsed.preference = 0;
  parsed.isUri = false;
  Encoding encoding;
  std::string decoded;
  if (isQuoteOpen || !text::IsAscii(head)) {
    decoded = head;
    if (isQuoteOpen) {
      std::erase(decoded, '"');
    }
    decoded = DecodeText(decoded).text;
    head = decoded;
  }
  TakeParameters(head, parsed, encoding);
  ReadValue(line.substr(colon + 1), encoding, parsed);
}

}  // namespace vcard
