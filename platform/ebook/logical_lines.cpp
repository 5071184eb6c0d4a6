#include "platform/ebook/logical_lines.h"

#include <algorithm>

#include "platform/ebook/ascii.h"

namespace ebook {

void LogicalLines::Feed(std::string_view bytes) {
  while (!bytes.empty()) {
    if (m_lastWasCarriageReturn && bytes.front() == '\n') {
      m_lastWasCarriageReturn = false;
      bytes.remove_prefix(1);
      continue;
    }
    m_lastWasCarriageReturn = false;
    if (m_state != State::kInLine) {
      const char first = bytes.front();
      BeginPhysicalLine(first);
      if (first == ' ' || first == '\t') {
        bytes.remove_prefix(m_hasContent ? 1 : 0);
      }
    }
    const std::size_t end = bytes.find_first_of("\r\n");
    Append(bytes.substr(0, end));
    if (end == std::string_view::npos) {
      return;
    }
    m_lastWasCarriageReturn = bytes[end] == '\r';
    bytes.remove_prefix(end + 1);
    EndPhysicalLine();
  }
}

void LogicalLines::Finish() {
  Emit();
  m_state = State::kInLine;
  m_lastWasCarriageReturn = false;
}

void LogicalLines::BeginPhysicalLine(char first) {
  const bool goesOn = m_state == State::kAtSoftBreak || first == ' ' || first == '\t';
  if (!goesOn) {
    Emit();
  }
  m_state = State::kInLine;
}

void LogicalLines::Append(std::string_view bytes) {
  if (bytes.empty()) {
    return;
  }
  m_hasContent = true;
  m_lastOfLine = bytes.back();
  const std::size_t taken = std::min(bytes.size(), kMaxLength - m_line.size());
  m_line.append(bytes.substr(0, taken));
  m_isTruncated = m_isTruncated || taken < bytes.size();
}

void LogicalLines::EndPhysicalLine() {
  const bool isSoftBreak = m_hasContent && m_lastOfLine == '=' && IsQuotedPrintable();
  if (isSoftBreak && !m_isTruncated) {
    m_line.pop_back();
  }
  m_lastOfLine = 0;
  m_state = isSoftBreak ? State::kAtSoftBreak : State::kAtEnd;
}

void LogicalLines::Emit() {
  if (m_hasContent) {
    m_sink({m_line, m_isTruncated});
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

}  // namespace ebook
