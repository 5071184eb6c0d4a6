#include "platform/ebook/content_line.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "platform/ebook/ascii.h"
#include "platform/ebook/charset.h"

namespace ebook {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::string_view kCustomPrefix = "X-CUSTOM(";

bool IsNameCharacter(char c) { return IsAlphanumeric(c) || c == '-' || c == '_'; }

/// Position of the first of `wanted` outside quotes, and outside parentheses where those count.
std::size_t FindOutside(std::string_view text, char wanted, bool parenthesesCount) {
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

/// Text made fit to stand in the header of a line: "-" for what the parser does not take.
std::string CleanName(std::string_view name) {
  std::string clean(Trim(name));
  std::replace_if(
      clean.begin(), clean.end(), [](char c) { return !IsNameCharacter(c); }, '-');
  return clean;
}

/// The same for a property with its group, which only the last full stop ends.
std::string CleanProperty(std::string_view property) {
  const std::size_t stop = property.rfind('.');
  if (stop == kNone) {
    return CleanName(property);
  }
  const std::string group = CleanName(property.substr(0, stop));
  const std::string name = CleanName(property.substr(stop + 1));
  return group.empty() ? name : group + '.' + name;
}

/// A decoded label may hold anything: a control character in it would end the line, or with a zero
/// the whole card, for the parser.
std::string Quote(std::string_view text) {
  std::string quoted = "\"";
  std::copy_if(text.begin(), text.end(), std::back_inserter(quoted),
               [](char c) { return c != '"' && !IsControl(c); });
  return quoted + '"';
}

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

std::string DecodeQuotedPrintable(std::string_view text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '=' && i + 2 < text.size()) {
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

/// Label of "X-CUSTOM(Label)" or "X-CUSTOM(CHARSET=UTF-8,ENCODING=QUOTED-PRINTABLE,=4C=61)".
std::string CustomLabel(std::string_view parameter) {
  std::string_view label = parameter.substr(kCustomPrefix.size());
  label = label.substr(0, label.rfind(')'));
  if (!ContainsIgnoringCase(label, "ENCODING=QUOTED-PRINTABLE,")) {
    return std::string(label);
  }
  const std::size_t encoded = label.rfind(',');
  return GuessUtf8(DecodeQuotedPrintable(label.substr(encoded + 1)));
}

struct Header {
  std::string text;
  std::string charset;
  bool isQuotedPrintable = false;
};

void AppendParameter(std::string_view parameter, Header& header) {
  parameter = Trim(parameter);
  if (parameter.empty()) {
    return;
  }
  if (EqualIgnoringCase(parameter.substr(0, kCustomPrefix.size()), kCustomPrefix)) {
    header.text += ";TYPE=" + Quote(CustomLabel(parameter));
    return;
  }
  const std::size_t equals = parameter.find('=');
  const std::string name = CleanName(parameter.substr(0, equals));
  const std::string_view value = equals == kNone ? parameter : Trim(parameter.substr(equals + 1));
  if (EqualIgnoringCase(name, "CHARSET")) {
    header.charset = std::string(value);
  } else if (EqualIgnoringCase(value, "QUOTED-PRINTABLE")) {
    header.isQuotedPrintable = true;
  } else if (equals == kNone) {
    header.text += ";TYPE=" + Quote(value);
  } else if (EqualIgnoringCase(name, "ENCODING")) {
    // None that a name or a number is written in.
  } else if (!name.empty() && !value.empty()) {
    header.text += ';' + name + '=' + Quote(value);
  }
}

Header RewriteHeader(std::string_view header) {
  const std::size_t nameEnd = header.find(';');
  Header rewritten;
  rewritten.text = CleanProperty(header.substr(0, nameEnd));
  while (true) {
    const std::size_t semicolon = FindOutside(header, ';', true);
    if (semicolon == kNone) {
      break;
    }
    header.remove_prefix(semicolon + 1);
    AppendParameter(header.substr(0, FindOutside(header, ';', true)), rewritten);
  }
  return rewritten;
}

bool IsOf(std::string_view text, std::string_view alsoTaken) {
  return std::all_of(text.begin(), text.end(), [alsoTaken](char c) {
    return IsNameCharacter(c) || alsoTaken.find(c) != kNone;
  });
}

/// Whether the parser takes the header as it stands and loses nothing.
bool IsPlainHeader(std::string_view header) {
  const std::size_t nameEnd = std::min(header.find(';'), header.size());
  const std::string_view property = header.substr(0, nameEnd);
  bool isPlain = IsOf(property, ".") && property.find('.') == property.rfind('.');
  header.remove_prefix(nameEnd);
  while (isPlain && !header.empty()) {
    header.remove_prefix(1);
    const std::string_view parameter = header.substr(0, header.find(';'));
    const std::size_t equals = std::min(parameter.find('='), parameter.size());
    isPlain = IsOf(parameter.substr(0, equals), "") &&
              IsOf(parameter.substr(std::min(equals + 1, parameter.size())), ",") &&
              !ContainsIgnoringCase(parameter, "CHARSET") &&
              !ContainsIgnoringCase(parameter, "ENCODING") &&
              !ContainsIgnoringCase(parameter, "PRINTABLE");
    header.remove_prefix(parameter.size());
  }
  return isPlain;
}

/// Appends `value` with the escapes that the parser knows as they are, and every other backslash
/// standing for itself.
void AppendValue(std::string_view value, std::string& card) {
  constexpr std::string_view kEscaped = "n;,\\";
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] != '\\') {
      card += value[i];
      continue;
    }
    const char next = i + 1 < value.size() ? value[i + 1] : '\0';
    if (kEscaped.find(next) != kNone) {
      card += {'\\', next};
      ++i;
    } else if (next == 'N' || next == 'r' || next == 'R') {
      card += "\\n";
      ++i;
    } else if (next == ':') {
      card += next;  // Not an escape of any version, yet some programs write it.
      ++i;
    } else {
      card += "\\\\";
    }
  }
}

}  // namespace

bool AppendForParser(std::string_view line, std::string& card) {
  std::size_t colon = FindOutside(line, ':', false);
  std::string header(line.substr(0, colon));
  if (colon == kNone) {  // A quote without its other half.
    colon = line.find(':');
    if (colon == kNone) {
      return false;
    }
    header.assign(line.substr(0, colon));
    std::erase(header, '"');
  }
  const std::string_view value = line.substr(colon + 1);
  if (IsPlainHeader(header) && IsUtf8(value)) {
    card += header + ':';
    AppendValue(value, card);
    return true;
  }

  const Header rewritten = RewriteHeader(GuessUtf8(header));
  const bool isKnownCharset = IsKnownCharset(rewritten.charset);
  card += rewritten.text;
  if (rewritten.isQuotedPrintable) {
    card += ";ENCODING=QUOTED-PRINTABLE";
    card += isKnownCharset ? ";CHARSET=" + rewritten.charset : "";
    card += ':';
    AppendValue(value, card);
  } else {
    const std::optional<std::string> converted = ToUtf8(value, rewritten.charset);
    card += ':';
    AppendValue(converted ? *converted : GuessUtf8(value), card);
  }
  return true;
}

}  // namespace ebook
