#include "platform/vcard/vcard_splitter.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "platform/vcard/ascii.h"

namespace vcard {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

constexpr std::array<std::string_view, 7> kKeptNames = {"N",   "FN",       "ORG",      "TEL",
                                                        "UID", "X-MS-TEL", "X-ABLABEL"};

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

VcardSplitter::VcardSplitter(CardSink sink)
    : m_sink(std::move(sink)), m_lines([this](const LogicalLines::Line& line) { OnLine(line); }) {}

void VcardSplitter::Feed(std::string_view bytes) { m_lines.Feed(bytes); }

void VcardSplitter::Finish() {
  m_lines.Finish();
  m_isDamaged = m_isDamaged || m_isInCard;
  m_isInCard = false;
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
      m_isDamaged = m_isDamaged || m_isInCard;
      BeginCard();
    }
  } else if (!m_isInCard) {
    m_isDamaged = m_isDamaged || !Trim(content).empty();
  } else if (IsBracket(content, name, "END")) {
    if (m_nesting > 0) {
      --m_nesting;
    } else {
      EndCard();
    }
  } else if (m_nesting == 0) {
    m_isAgentDue = IsAgentAnnounced(content, name);
    OnLineOfCard({content, line.isTruncated}, name);
  }
}

void VcardSplitter::OnLineOfCard(const LogicalLines::Line& line, std::string_view name) {
  if (!IsKept(name)) {
    return;
  }
  const bool isUsable = !line.isTruncated && m_card.size() < kMaxLines &&
                        line.text.find('\0') == std::string_view::npos &&
                        CountSeparators(line.text) <= kMaxSeparators;
  std::optional<ContentLine> parsed = isUsable ? ParseContentLine(line.text) : std::nullopt;
  if (!parsed) {
    m_isDamaged = true;
    return;
  }
  m_card.push_back(std::move(*parsed));
}

void VcardSplitter::BeginCard() {
  m_isInCard = true;
  m_card.clear();
}

void VcardSplitter::EndCard() {
  m_isInCard = false;
  m_sink(m_card);
}

}  // namespace vcard
