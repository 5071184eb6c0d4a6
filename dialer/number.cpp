#include "dialer/number.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "backends/text/printable.h"
#include "backends/text/say.h"
#include "backends/text/utf.h"
#include "resources/calling_strings.h"

// A text becomes a number only if every character of it is understood. To leave out what is not
// understood would dial another number: 55501010102 for "555 0101 or 0102".
namespace dialer {
namespace {

constexpr char kPause = ',';
constexpr char kWait = 'w';

bool IsDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

/// Returns whether a key of a telephone has this sign.
bool IsKey(char16_t unit) { return IsDigit(unit) || unit == u'*' || unit == u'#'; }

/// The signs that people put into numbers to read them more easily. Address books have the blanks
/// and dashes of typesetters too. A tab is a control character and no blank.
bool IsSeparator(char16_t unit) {
  constexpr std::u16string_view kSeparators =
      u" .-()[]"
      u"\u00A0\u2002\u2003\u2007\u2008\u2009\u200A\u202F"  // Blanks.
      u"\u2010\u2011\u2012\u2013\u2014\u2212";             // Dashes.
  return kSeparators.find(unit) != std::u16string_view::npos;
}

std::optional<char> FindPause(char16_t unit) {
  switch (unit) {
    case u',':
    case u'p':
    case u'P':
      return kPause;
    case u'w':
    case u'W':
      return kWait;
    default:
      return std::nullopt;
  }
}

bool IsPause(char dialled) { return dialled == kPause || dialled == kWait; }

/// Reads what is dialled, character after character.
class Reader {
 public:
  /// Returns what is wrong with the text before the extension.
  std::optional<NumberFault> ReadNumber(std::u16string_view text) {
    for (const char16_t unit : text) {
      if (const auto fault = Take(unit)) {
        return fault;
      }
    }
    if (m_dialled.empty() || m_dialled == "+") {
      return NumberFault::kNoDigits;
    }
    // A pause that nothing follows may be the beginning of a word: "5550101 w".
    return IsPause(m_dialled.back()) ? std::optional(NumberFault::kLonePause) : std::nullopt;
  }

  /// Returns what is wrong with the parameters of RFC 3966, which begin with ";".
  std::optional<NumberFault> ReadExtension(std::u16string_view parameters) {
    constexpr std::u16string_view kName = u";ext=";
    const std::u16string_view value = parameters.substr(std::min(kName.size(), parameters.size()));
    if (!std::ranges::equal(parameters.substr(0, kName.size()), kName, [](char16_t a, char16_t b) {
          return a == b || (a >= u'A' && a <= u'Z' && a + (u'a' - u'A') == b);
        })) {
      return NumberFault::kExtension;
    }
    for (const char16_t unit : value) {
      if (IsDigit(unit)) {
        m_extension += static_cast<char>(unit);
      } else if (!IsSeparator(unit)) {
        return NumberFault::kExtension;
      }
    }
    return m_extension.empty() ? std::optional(NumberFault::kExtension) : std::nullopt;
  }

  std::string m_dialled;
  std::string m_extension;

 private:
  std::optional<NumberFault> Take(char16_t unit) {
    if (IsSeparator(unit)) {
      return std::nullopt;
    }
    if (unit == u'+' && m_dialled.empty()) {
      m_dialled += '+';
    } else if (IsKey(unit)) {
      m_dialled += static_cast<char>(unit);
    } else if (const auto pause = FindPause(unit)) {
      if (m_dialled.empty() || m_dialled == "+") {
        return NumberFault::kLonePause;
      }
      m_dialled += *pause;
    } else {
      return unit == u'+' ? NumberFault::kPlusWithin : NumberFault::kWrongCharacter;
    }
    return std::nullopt;
  }
};

/// Returns whether nobody sees this character: a soft hyphen, a joiner, a mark of the order of
/// bytes.
bool IsInvisible(char16_t unit) {
  return unit == u'\u00AD' || (unit >= u'\u200B' && unit <= u'\u200D') ||
         (unit >= u'\u2060' && unit <= u'\u2065') || unit == u'\uFEFF';
}

/// Returns a text of which a person sees every character.
std::u16string Show(std::u16string_view stored) {
  constexpr std::size_t kMostShown = 80;
  constexpr std::u16string_view kHexDigits = u"0123456789ABCDEF";
  constexpr unsigned kBitsOfHexDigit = 4;
  std::u16string shown;
  for (const char16_t unit : stored.substr(0, kMostShown)) {
    if (!text::IsCommand(unit) && !IsInvisible(unit)) {
      shown += unit;
      continue;
    }
    shown += u"<U+";
    for (unsigned shift = 4 * kBitsOfHexDigit; shift > 0; shift -= kBitsOfHexDigit) {
      shown += kHexDigits[(unit >> (shift - kBitsOfHexDigit)) & 0xF];
    }
    shown += u'>';
  }
  return stored.size() > kMostShown ? shown + u"\u2026" : shown;
}

std::u16string_view TextOf(NumberFault fault) {
  switch (fault) {
    case NumberFault::kNoDigits:
      return resources::kNumberHasNoDigits;
    case NumberFault::kWrongCharacter:
      return resources::kNumberHasWrongCharacter;
    case NumberFault::kPlusWithin:
      return resources::kNumberHasPlusWithin;
    case NumberFault::kLonePause:
      return resources::kNumberHasLonePause;
    case NumberFault::kExtension:
      return resources::kNumberHasOddExtension;
    case NumberFault::kTooLong:
      break;
  }
  return resources::kNumberIsTooLong;
}

}  // namespace

Number::Number(std::u16string_view text, std::string dialled, std::string extension)
    : m_text(text), m_dialled(std::move(dialled)), m_extension(std::move(extension)) {}

std::string Number::ToUri() const {
  std::string uri = "tel:";
  for (const char character : m_dialled) {
    if (character == '#') {
      uri += "%23";
    } else {
      uri += IsPause(character) ? ',' : character;
    }
  }
  return m_extension.empty() ? uri : uri + ";ext=" + m_extension;
}

std::string Number::ToDialString() const {
  std::string dialled = m_dialled;
  std::ranges::replace(dialled, kWait, 'W');
  return m_extension.empty() ? dialled : dialled + kPause + m_extension;
}

platform::Result<Number, Refusal> MakeNumber(std::u16string_view stored) {
  const std::size_t parameters = std::min(stored.find(u';'), stored.size());
  Reader reader;
  std::optional<NumberFault> fault = reader.ReadNumber(stored.substr(0, parameters));
  if (!fault && parameters < stored.size()) {
    fault = reader.ReadExtension(stored.substr(parameters));
  }
  if (!fault && reader.m_dialled.size() + reader.m_extension.size() > kMostDialled) {
    fault = NumberFault::kTooLong;
  }
  if (fault) {
    return platform::Failure(Refusal{*fault, Show(stored)});
  }
  return Number(stored, std::move(reader.m_dialled), std::move(reader.m_extension));
}

std::string Explain(const Refusal& refusal) {
  return text::Say(TextOf(refusal.fault), {text::ToUtf8(refusal.shown)});
}

}  // namespace dialer
