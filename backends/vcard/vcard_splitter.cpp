#include "backends/vcard/vcard_splitter.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "backends/text/say.h"
#include "backends/text/utf.h"
#include "backends/vcard/ascii.h"
#include "resources/remark_strings.h"

namespace vcard {
namespace {

using std::string_view_literals::operator""sv;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
static_assert(LogicalLines::kMaxLength == 8192 && VcardSplitter::kMaxLines == 200 &&
                  VcardSplitter::kMaxSeparators == 64,
              "sentences name these");

constexpr std::array<std::string_view, 9> kKeptNames = {
    "N", "FN", "ORG", "TEL", "UID", "X-MS-TEL", "X-ABLABEL", "NICKNAME", "EMAIL"};

/// Returns whether the line is BEGIN:VCARD or END:VCARD.
bool IsBracket(std::string_view line, std::string_view name, std::string_view bracket) {
  return EqualIgnoringCase(name, bracket) &&
         EqualIgnoringCase(Trim(line.substr(line.find(':') + 1)), "VCARD");
}

bool IsKept(std::string_view name) {
  return std::any_of(kKeptNames.begin(), kKeptNames.end(),
                     [name](std::string_view kept) { return EqualIgnoringCase(name, kept); });
}

/// Returns whether lines of that name only count on a card without a name.
bool IsSubstitute(std::string_view name) {
  return EqualIgnoringCase(name, "FN") || EqualIgnoringCase(name, "EMAIL") ||
         EqualIgnoringCase(name, "NICKNAME");
}

/// Returns whether the line gives a last or a first name that shows, by whatever rules.
bool IsName(const ContentLine& line) {
  const auto shows = [](const std::string& text) {
    return std::ranges::any_of(text, [](char c) { return static_cast<unsigned char>(c) > ' '; });
  };
  return line.name == "N"sv && line.formerComponents.empty() &&
         (shows(line.components[0]) || (line.components.size() > 1 && shows(line.components[1])));
}

bool IsAgentAnnounced(std::string_view line, std::string_view name) {
  return EqualIgnoringCase(name, "AGENT") && Trim(line.substr(line.find(':') + 1)).empty();
}

bool HasManySeparators(std::string_view line) {
  // A short line has no room for many.
  return line.size() > VcardSplitter::kMaxSeparators &&
         std::count_if(line.begin(), line.end(), [](char c) { return c == ',' || c == ';'; }) >
             static_cast<std::ptrdiff_t>(VcardSplitter::kMaxSeparators);
}

}  // namespace

// A line ends only after the next one has begun without a blank: a blank means that it goes on. So
// the line in progress is kept until then, and Finish hands on the last one.
void LogicalLines::Feed(std::string_view bytes) {
  // Each kind of end is searched for only after the last one found was passed. So a stream without
  // line feeds, or full of carriage returns, costs two fast passes and no more.
  std::size_t lineFeed = bytes.find('\n');
  std::size_t carriageReturn = bytes.find('\r');
  for (std::size_t at = 0; at < bytes.size();) {
    if (lineFeed < at) {
      lineFeed = bytes.find('\n', at);
    }
    if (carriageReturn < at) {
      carriageReturn = bytes.find('\r', at);
    }
    if (std::exchange(m_lastWasCarriageReturn, false) && bytes[at] == '\n') {
      ++at;
      continue;
    }
    if (m_state != State::kInLine) {
      const bool isBlank = bytes[at] == ' ' || bytes[at] == '\t';
      BeginPhysicalLine(isBlank);
      at += isBlank && m_hasContent ? 1 : 0;
    }
    const std::size_t end = std::min({lineFeed, carriageReturn, bytes.size()});
    Append(bytes.substr(at, end - at));
    at = end;
    if (end < bytes.size()) {
      m_lastWasCarriageReturn = bytes[end] == '\r';
      EndPhysicalLine();
      ++at;
    }
  }
}

void LogicalLines::Finish() {
  Emit();
  m_state = State::kInLine;
  m_lastWasCarriageReturn = false;
}

void LogicalLines::BeginPhysicalLine(bool isFolded) {
  const bool goesOn = m_state == State::kAtSoftBreak || isFolded;
  if (!goesOn) {
    Emit();
  }
  m_state = State::kInLine;
}

void LogicalLines::Append(std::string_view bytes) {
  if (bytes.empty()) {
    return;
  }
  m_firstNumber = m_hasContent ? m_firstNumber : m_number;
  m_hasContent = true;
  m_lastOfLine = bytes.back();
  const std::size_t taken = std::min(bytes.size(), kMaxLength - m_line.size());
  m_line.append(bytes.substr(0, taken));
  m_isTruncated = m_isTruncated || taken < bytes.size();
}

void LogicalLines::EndPhysicalLine() {
  ++m_number;
  const bool isSoftBreak = m_hasContent && m_lastOfLine == '=' && IsQuotedPrintable();
  if (isSoftBreak && !m_isTruncated) {
    m_line.pop_back();
  }
  m_lastOfLine = 0;
  m_state = isSoftBreak ? State::kAtSoftBreak : State::kAtEnd;
}

void LogicalLines::Emit() {
  if (m_hasContent) {
    m_sink({m_line, m_isTruncated, m_firstNumber});
  }
  m_line.clear();
  m_encoding = Encoding::kUnknown;
  m_isTruncated = false;
  m_hasContent = false;
  m_lastOfLine = 0;
}

bool LogicalLines::IsQuotedPrintable() {
  if (m_encoding == Encoding::kUnknown) {
    const std::string_view header = std::string_view(m_line).substr(0, m_line.find(':'));
    m_encoding = ContainsIgnoringCase(header, "QUOTED-PRINTABLE") ? Encoding::kQuotedPrintable
                                                                  : Encoding::kOther;
  }
  return m_encoding == Encoding::kQuotedPrintable;
}

VcardSplitter::VcardSplitter(CardSink sink, CardSink torn, DamageSink damage)
    : m_sink(std::move(sink)),
      m_torn(std::move(torn)),
      m_damage(std::move(damage)),
      m_decoder([this](std::string_view bytes) { m_lines.Feed(bytes); }),
      m_lines([this](const LogicalLines::Line& line) { OnLine(line); }) {}

void VcardSplitter::Feed(std::string_view bytes) { m_decoder.Feed(bytes); }

void VcardSplitter::Finish() {
  m_decoder.Finish();
  m_lines.Finish();
  TearCard();
}

// vCard 2.1 writes the card of an agent within the card: AGENT with an empty value, and then a
// whole card. Its lines must not count for the person around it, so they are passed over up to its
// end. A BEGIN that no AGENT announced means that the card before it has no end.
void VcardSplitter::OnLine(const LogicalLines::Line& line) {
  std::string_view content = line.text;
  // A mark may be anywhere in the stream: people join files as they are, also after one that ends
  // within a card.
  if (content.starts_with(kByteOrderMark)) {
    content.remove_prefix(kByteOrderMark.size());
  }
  const std::string_view name = PropertyOf(content).name;
  const bool isNested = std::exchange(m_isAgentDue, false) || m_nesting > 0;
  if (IsBracket(content, name, "BEGIN")) {
    if (isNested) {
      ++m_nesting;
    } else {
      TearCard();
      BeginCard(line.number);
    }
  } else if (!m_isInCard) {
    OnLineBetweenCards({content, line.isTruncated, line.number});
  } else if (IsBracket(content, name, "END")) {
    if (m_nesting > 0) {
      --m_nesting;
    } else {
      EndCard();
    }
  } else if (m_nesting == 0) {
    m_isAgentDue = IsAgentAnnounced(content, name);
    OnLineOfCard({content, line.isTruncated, line.number}, name);
  }
}

void VcardSplitter::OnLineOfCard(const LogicalLines::Line& line, std::string_view name) {
  if (!IsKept(name)) {
    return;
  }
  if (line.isTruncated) {
    Damage(line.number, resources::kLineIsLong);
  } else if (m_linesOfCard >= kMaxLines) {
    Damage(line.number, resources::kCardIsLong);
  } else if (line.text.find('\0') != std::string_view::npos) {
    Damage(line.number, resources::kLineHasZero);
  } else if (HasManySeparators(line.text)) {
    Damage(line.number, resources::kLineHasManyParts);
  } else if (m_isNamed && IsSubstitute(name) && line.text.find(':') != std::string_view::npos) {
    ++m_linesOfCard;
  } else if (std::optional<ContentLine> parsed = ParseContentLine(line.text)) {
    ++m_linesOfCard;
    parsed->number = line.number;
    m_isNamed = m_isNamed || (!m_hasName && IsName(*parsed));
    m_hasName = m_hasName || parsed->name == "N"sv;
    m_card.push_back(std::move(*parsed));
  } else {
    Damage(line.number, resources::kLineWithoutColon);
  }
}

// A run of lines that belong to no card is reported once, at its first line.
void VcardSplitter::OnLineBetweenCards(const LogicalLines::Line& line) {
  const bool isStray = !Trim(line.text).empty();
  if (isStray && !m_isStray) {
    Damage(line.number, resources::kLineOfNoCard);
  }
  m_isStray = m_isStray || isStray;
}

void VcardSplitter::BeginCard(std::size_t line) {
  m_isInCard = true;
  m_firstLine = line;
  m_isStray = false;
  m_linesOfCard = 0;
  m_hasName = false;
  m_isNamed = false;
  m_card.clear();
}

void VcardSplitter::EndCard() {
  m_isInCard = false;
  m_sink(m_card);
}

void VcardSplitter::TearCard() {
  if (!std::exchange(m_isInCard, false)) {
    return;
  }
  m_nesting = 0;
  Damage(m_firstLine, resources::kCardWithoutEnd);
  if (m_torn) {
    m_torn(m_card);
  }
}

void VcardSplitter::Damage(std::size_t line, std::u16string_view english) {
  m_isDamaged = true;
  if (m_damage) {
    m_damage(line, text::Say(english));
  }
}

}  // namespace vcard
