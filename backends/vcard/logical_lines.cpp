#include "backends/vcard/logical_lines.h"

#include <algorithm>
#include <utility>

#include "backends/vcard/charset.h"

namespace vcard {
namespace {

/// Returns whether a line of the stream that nothing folds is a whole line: it is not empty, not
/// too long, and ends with no sign that may be a soft break.
bool IsWhole(std::string_view line) {
  return !line.empty() && line.size() <= LogicalLines::kMaxLength && line.back() != '=';
}

}  // namespace

/// Finds the ends of lines in some bytes, for places that only grow. Each kind of end is searched
/// for only after the last one found was passed. So a stream without line feeds, or full of
/// carriage returns, costs two fast passes and no more.
class LogicalLines::LineEnds {
 public:
  explicit LineEnds(std::string_view bytes)
      : m_bytes(bytes), m_lineFeed(bytes.find('\n')), m_carriageReturn(bytes.find('\r')) {}

  /// Returns where the line ends that holds the byte `at`.
  [[nodiscard]] std::size_t EndOf(std::size_t at) {
    if (m_lineFeed < at) {
      m_lineFeed = m_bytes.find('\n', at);
    }
    if (m_carriageReturn < at) {
      m_carriageReturn = m_bytes.find('\r', at);
    }
    return std::min({m_lineFeed, m_carriageReturn, m_bytes.size()});
  }

  /// Returns where the line after the one with this end begins. That is past the last byte if the
  /// bytes do not show it.
  [[nodiscard]] std::size_t BeginAfter(std::size_t end) const {
    const bool isPair =
        end + 1 < m_bytes.size() && m_bytes[end] == '\r' && m_bytes[end + 1] == '\n';
    return end + (isPair ? 2 : 1);
  }

 private:
  std::string_view m_bytes;
  std::size_t m_lineFeed;
  std::size_t m_carriageReturn;
};

// A line ends only after the next one has begun without a blank: a blank means that it goes on. So
// the line in progress is kept until then, and Finish hands on the last one. Most lines are one
// line of the stream, and the next one begins in the same piece. These are handed on as they stand
// there.
void LogicalLines::Feed(std::string_view bytes) {
  LineEnds ends(bytes);
  for (std::size_t at = 0; at < bytes.size();) {
    if (std::exchange(m_lastWasCarriageReturn, false) && bytes[at] == '\n') {
      ++at;
      continue;
    }
    if (m_state == State::kAtEnd && m_isPassedOver) {
      at = PassOver(bytes, at, ends);
    }
    const bool isBlank = IsBlank(bytes[at]);
    const std::size_t end = ends.EndOf(at);
    const std::size_t next = ends.BeginAfter(end);
    const bool isShown = m_state == State::kAtEnd && next < bytes.size();
    if (isShown && !isBlank && IsWhole(bytes.substr(at, end - at)) && !IsBlank(bytes[next])) {
      Emit();
      m_sink({bytes.substr(at, end - at), false, m_number++});
      at = next;
      continue;
    }
    if (m_state != State::kInLine) {
      BeginPhysicalLine(isBlank);
      at += isBlank && m_hasContent ? 1 : 0;
    }
    Append(bytes.substr(at, end - at));
    at = end;
    if (end < bytes.size()) {
      m_lastWasCarriageReturn = bytes[end] == '\r';
      EndPhysicalLine();
      ++at;
    }
  }
}

// A picture is hundreds of lines that go on.
std::size_t LogicalLines::PassOver(std::string_view bytes, std::size_t at, LineEnds& ends) {
  while (IsBlank(bytes[at])) {
    const std::size_t next = ends.BeginAfter(ends.EndOf(at));
    if (next >= bytes.size()) {
      break;
    }
    ++m_number;
    at = next;
  }
  return at;
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
  if (m_isPassedOver) {
    return;
  }
  const std::size_t taken = std::min(bytes.size(), kMaxLength - m_line.size());
  m_line.append(bytes.substr(0, taken));
  m_isTruncated = m_isTruncated || taken < bytes.size();
}

void LogicalLines::EndPhysicalLine() {
  const bool isSoftBreak = m_hasContent && m_lastOfLine == '=' && IsQuotedPrintable();
  if (isSoftBreak && !m_isTruncated) {
    m_line.pop_back();
  }
  if (m_hasContent && m_number == m_firstNumber) {
    m_isPassedOver =
        m_line.find(':') != std::string::npos && m_passesOver(m_line) && !IsQuotedPrintable();
  }
  ++m_number;
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
  m_isPassedOver = false;
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
