#include "backends/vcard/vcard_splitter.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "backends/vcard/ascii.h"

namespace vcard {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
static_assert(LogicalLines::kMaxLength == 8192 && VcardSplitter::kMaxLines == 200 &&
                  VcardSplitter::kMaxSeparators == 64,
              "sentences below name these");

constexpr std::array<std::string_view, 9> kKeptNames = {
    "N", "FN", "ORG", "TEL", "UID", "X-MS-TEL", "X-ABLABEL", "NICKNAME", "EMAIL"};

/// Whether the line is BEGIN:VCARD or END:VCARD.
bool IsBracket(std::string_view line, std::string_view name, std::string_view bracket) {
  return EqualIgnoringCase(name, bracket) &&
         EqualIgnoringCase(Trim(line.substr(line.find(':') + 1)), "VCARD");
}

bool IsKept(std::string_view name) {
  return std::any_of(kKeptNames.begin(), kKeptNames.end(),
                     [name](std::string_view kept) { return EqualIgnoringCase(name, kept); });
}

bool IsAgentAnnounced(std::string_view line, std::string_view name) {
  return EqualIgnoringCase(name, "AGENT") && Trim(line.substr(line.find(':') + 1)).empty();
}

std::size_t CountSeparators(std::string_view line) {
  return static_cast<std::size_t>(
      std::count_if(line.begin(), line.end(), [](char c) { return c == ',' || c == ';'; }));
}

}  // namespace

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

void VcardSplitter::OnLine(const LogicalLines::Line& line) {
  std::string_view content = line.text;
  // Anywhere in the stream: files are joined as they are, also behind one that ends within a card.
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
    Damage(line.number, "the line is longer than 8 KiB");
  } else if (m_card.size() >= kMaxLines) {
    Damage(line.number, "the card has more than 200 lines of names and numbers");
  } else if (line.text.find('\0') != std::string_view::npos) {
    Damage(line.number, "the line holds a zero byte");
  } else if (CountSeparators(line.text) > kMaxSeparators) {
    Damage(line.number, "the line has more than 64 commas and semicolons");
  } else if (std::optional<ContentLine> parsed = ParseContentLine(line.text)) {
    parsed->number = line.number;
    m_card.push_back(std::move(*parsed));
  } else {
    Damage(line.number, "the line has no colon");
  }
}

void VcardSplitter::OnLineBetweenCards(const LogicalLines::Line& line) {
  const bool isStray = !Trim(line.text).empty();
  if (isStray && !m_isStray) {
    Damage(line.number, "the line belongs to no card");
  }
  m_isStray = m_isStray || isStray;
}

void VcardSplitter::BeginCard(std::size_t line) {
  m_isInCard = true;
  m_firstLine = line;
  m_isStray = false;
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
  Damage(m_firstLine, "the card that begins here has no end and is passed over");
  if (m_torn) {
    m_torn(m_card);
  }
}

void VcardSplitter::Damage(std::size_t line, std::string_view sentence) {
  m_isDamaged = true;
  if (m_damage) {
    m_damage(line, sentence);
  }
}

}  // namespace vcard
