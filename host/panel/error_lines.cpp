#include "host/panel/error_lines.h"

#include <algorithm>
#include <utility>

namespace panel {
namespace {

/// Nobody has to read more of a single line.
constexpr qsizetype kLongestLine = 4096;

}  // namespace

ErrorLines::ErrorLines(QByteArray prefix, PassOn passOn)
    : m_prefix(std::move(prefix)), m_passOn(std::move(passOn)) {}

void ErrorLines::Take(const QByteArray& bytes) {
  for (qsizetype begin = 0; begin < bytes.size();) {
    const qsizetype end = bytes.indexOf('\n', begin);
    const qsizetype length = (end < 0 ? bytes.size() : end) - begin;
    m_begun += bytes.mid(begin, std::min(length, kLongestLine - m_begun.size()));
    begin += length;
    if (end >= 0) {
      TakeLine(std::exchange(m_begun, {}));
      ++begin;
    }
  }
}

void ErrorLines::End() {
  if (!m_begun.isEmpty()) {
    TakeLine(std::exchange(m_begun, {}));
  }
}

void ErrorLines::TakeLine(const QByteArray& line) {
  if (line.startsWith(m_prefix)) {
    m_message = QString::fromUtf8(line.mid(m_prefix.size()));
  } else {
    m_passOn(line);
  }
}

}  // namespace panel
