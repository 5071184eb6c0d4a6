#include "backends/vcard/logical_lines.h"

#include <algorithm>
#include <utility>

#include "backends/vcard/ascii.h"

namespace vcard {

void LogicalLines::Feed(std::string_view bytes) {
  // Each end is looked for once only, so that neither a stream without the one nor one that is full
  // of the other costs more than two fast passes.
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

}  // namespace vcard
