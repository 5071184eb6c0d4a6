#include "host/home/avatar.h"

#include <QStringList>
#include <QTextBoundaryFinder>
#include <algorithm>

#include "host/home/access.h"

namespace home {
namespace {

/// Returns the first letter of a word as people see it: with its accents, of two units if need be.
QString FirstLetterOf(const QString& word) {
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, word);
  const qsizetype end = finder.toNextBoundary();
  return word.left(std::max<qsizetype>(end, 0)).toUpper();
}

bool BeginsALetter(const QString& word) {
  // A first half of a character is taken for a letter: letters of most scripts outside the first
  // 65,536 characters are.
  return !word.isEmpty() && (word.at(0).isLetterOrNumber() || word.at(0).isSurrogate());
}

}  // namespace

QString InitialsOf(const QString& name) {
  QStringList words = name.simplified().split(u' ', Qt::SkipEmptyParts);
  words.erase(std::remove_if(words.begin(), words.end(),
                             [](const QString& word) { return !BeginsALetter(word); }),
              words.end());
  if (words.isEmpty()) {
    return {};
  }
  // The first and the last word are what people are known by, whichever of them the family's is.
  const QString first = FirstLetterOf(words.front());
  return words.size() == 1 ? first : first + FirstLetterOf(words.back());
}

void DrawAvatar(QPainter& painter, const QRect& area, const QString& name, const QColor& text,
                const QColor& ground) {
  const int size = std::min(area.width(), area.height());
  QRect circle(0, 0, size, size);
  circle.moveCenter(area.center());
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(ground);
  painter.drawEllipse(circle);
  QFont font = painter.font();
  font.setPixelSize(std::max(size * 2 / 5, 1));
  font.setBold(true);
  painter.setFont(font);
  painter.setPen(text);
  painter.drawText(circle, Qt::AlignCenter, InitialsOf(name));
  painter.restore();
}

Avatar::Avatar(double lines, QWidget* parent) : QWidget(parent), m_lines(lines) {
  SetAccessibleRole(*this, QAccessible::Graphic);
}

void Avatar::SetPerson(const QString& name) {
  setAccessibleName(name);
  update();
}

QSize Avatar::sizeHint() const {
  const int side = qRound(fontMetrics().lineSpacing() * m_lines);
  return {side, side};
}

void Avatar::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  DrawAvatar(painter, rect(), accessibleName(), palette().color(QPalette::HighlightedText),
             palette().color(QPalette::Highlight));
}

}  // namespace home
