#include "backends/vcard/vcard_splitter.h"

#include <algorithm>
#include <utility>

#include "backends/text/say.h"
#include "backends/text/utf.h"
#include "resources/remark_strings.h"

namespace vcard {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
static_assert(LogicalLines::kMaxLength == 8192 && VcardSplitter::kMaxLines == 200 &&
                  VcardSplitter::kMaxSeparators == 64,
              "sentences name these");

/// A mark may be anywhere in the stream: people join files as they are, also after one that ends
/// within a card.
std::string_view WithoutMark(std::string_view line) {
  return line.substr(line.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
}

/// Returns whether the line is BEGIN:VCARD or END:VCARD.
bool IsBracket(std::string_view line, LineName name, LineName bracket) {
  return name == bracket && EqualIgnoringCase(Trim(line.substr(line.find(':') + 1)), "VCARD");
}

bool IsKept(LineName name) { return name > LineName::kOther; }

/// Returns whether lines of that name only count on a card without a name.
bool IsSubstitute(LineName name) {
  return name == LineName::kFullName || name == LineName::kEmail || name == LineName::kNickname;
}

/// Returns whether the line gives a last or a first name that shows, by whatever rules.
bool IsName(const ContentLine& line) {
  const auto shows = [](const std::string& text) {
    return std::ranges::any_of(text, [](char c) { return static_cast<unsigned char>(c) > ' '; });
  };
  return line.name == LineName::kName && line.formerComponents.empty() &&
         (shows(line.components[0]) || (line.components.size() > 1 && shows(line.components[1])));
}

bool IsAgentAnnounced(std::string_view line, LineName name) {
  return name == LineName::kAgent && Trim(line.substr(line.find(':') + 1)).empty();
}

bool HasManySeparators(std::string_view line) {
  // A short line has no room for many.
  return line.size() > VcardSplitter::kMaxSeparators &&
         std::count_if(line.begin(), line.end(), [](char c) { return c == ',' || c == ';'; }) >
             static_cast<std::ptrdiff_t>(VcardSplitter::kMaxSeparators);
}

}  // namespace

VcardSplitter::VcardSplitter(CardSink sink, CardSink torn, DamageSink damage)
    : m_sink(std::move(sink)),
      m_torn(std::move(torn)),
      m_damage(std::move(damage)),
      m_decoder([this](std::string_view bytes) { m_lines.Feed(bytes); }),
      m_lines([this](const LogicalLines::Line& line) { OnLine(line); },
              [](std::string_view firstPart) {
                return PropertyOf(WithoutMark(firstPart)).name == LineName::kOther;
              }) {}

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
  const std::string_view content = WithoutMark(line.text);
  const Property property = PropertyOf(content);
  const LineName name = property.name;
  const bool isNested = std::exchange(m_isAgentDue, false) || m_nesting > 0;
  if (IsBracket(content, name, LineName::kBegin)) {
    if (isNested) {
      ++m_nesting;
    } else {
      TearCard();
      BeginCard(line.number);
    }
  } else if (!m_isInCard) {
    OnLineBetweenCards({content, line.isTruncated, line.number});
  } else if (IsBracket(content, name, LineName::kEnd)) {
    if (m_nesting > 0) {
      --m_nesting;
    } else {
      EndCard();
    }
  } else if (m_nesting == 0) {
    m_isAgentDue = IsAgentAnnounced(content, name);
    OnLineOfCard({content, line.isTruncated, line.number}, property);
  }
}

void VcardSplitter::OnLineOfCard(const LogicalLines::Line& line, const Property& property) {
  if (!IsKept(property.name)) {
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
  } else if (line.text.find(':') == std::string_view::npos) {
    Damage(line.number, resources::kLineWithoutColon);
  } else {
    ++m_linesOfCard;
    if (!m_isNamed || !IsSubstitute(property.name)) {
      KeepLine(line, property);
    }
  }
}

void VcardSplitter::KeepLine(const LogicalLines::Line& line, const Property& property) {
  if (m_keptLines == m_card.size()) {
    m_card.emplace_back();
  }
  ContentLine& kept = m_card[m_keptLines++];
  ParseContentLine(line.text, property, kept);
  kept.number = line.number;
  m_isNamed = m_isNamed || (!m_hasName && IsName(kept));
  m_hasName = m_hasName || kept.name == LineName::kName;
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
  m_keptLines = 0;
}

void VcardSplitter::EndCard() {
  m_isInCard = false;
  m_sink(Card(m_card).first(m_keptLines));
}

void VcardSplitter::TearCard() {
  if (!std::exchange(m_isInCard, false)) {
    return;
  }
  m_nesting = 0;
  Damage(m_firstLine, resources::kCardWithoutEnd);
  if (m_torn) {
    m_torn(Card(m_card).first(m_keptLines));
  }
}

void VcardSplitter::Damage(std::size_t line, std::u16string_view english) {
  m_isDamaged = true;
  if (m_damage) {
    m_damage(line, text::Say(english));
  }
}

}  // namespace vcard
