#include "backends/qt/qt_canvas.h"

#include <QFontMetricsF>
#include <algorithm>
#include <cmath>

#include "backends/qt/fonts.h"
#include "backends/qt/scale.h"
#include "backends/qt/strings.h"

namespace qt {
namespace {

[[nodiscard]] QColor ToQColor(platform::Color color) {
  return {color.red, color.green, color.blue};
}

/// What a line of text may hold that would break or shift it is shown as blanks.
[[nodiscard]] QString OneLine(std::u16string_view text) {
  QString line = ToQString(text);
  for (QChar& unit : line) {
    if (unit.unicode() < u' ' || unit == QChar::LineSeparator ||
        unit == QChar::ParagraphSeparator) {
      unit = u' ';
    }
  }
  return line;
}

}  // namespace

QtCanvas::QtCanvas(QPainter& painter, const platform::Rect& client, Pictures& pictures)
    : m_painter(painter), m_client(client), m_pictures(pictures) {}

double QtCanvas::Snap(double device) const {
  const double ratio = m_painter.device()->devicePixelRatioF();
  return std::round(device * kScale * ratio) / ratio;
}

void QtCanvas::DrawLine(platform::Point from, platform::Point to, platform::Color color) {
  if (from.x != to.x && from.y != to.y) {
    m_painter.save();
    m_painter.setRenderHint(QPainter::Antialiasing);
    m_painter.setPen(QPen(ToQColor(color), kScale, Qt::SolidLine, Qt::SquareCap));
    m_painter.drawLine(QPointF(from.x + 0.5, from.y + 0.5) * kScale,
                       QPointF(to.x + 0.5, to.y + 0.5) * kScale);
    m_painter.restore();
    return;
  }
  const QPointF leftTop(Snap(std::min(from.x, to.x)), Snap(std::min(from.y, to.y)));
  // As thick as it would be with its first end at the origin, so that all lines are alike.
  const double thickness = Snap(1);
  const bool isLevel = from.y == to.y;
  const QPointF rightBottom(isLevel ? Snap(std::max(from.x, to.x) + 1) : leftTop.x() + thickness,
                            isLevel ? leftTop.y() + thickness : Snap(std::max(from.y, to.y) + 1));
  m_painter.fillRect(QRectF(leftTop, rightBottom), ToQColor(color));
}

void QtCanvas::DrawText(platform::Point at, std::u16string_view text, const platform::Font& font,
                        platform::Color color) {
  DrawLineOfText({Snap(at.x), Snap(at.y)}, text, font, color);
}

void QtCanvas::DrawTextIn(const platform::Rect& area, std::u16string_view text,
                          const platform::Font& font, platform::Color color) {
  const QPointF leftTop(Snap(area.left), Snap(area.top));
  m_painter.save();
  m_painter.setClipRect(QRectF(leftTop, QPointF(Snap(area.right), Snap(area.bottom))));
  DrawLineOfText(leftTop, text, font, color);
  m_painter.restore();
}

void QtCanvas::DrawLineOfText(const QPointF& at, std::u16string_view text,
                              const platform::Font& font, platform::Color color) {
  const QFont made = MakeFont(font);
  m_painter.setFont(made);
  m_painter.setPen(ToQColor(color));
  m_texts.append(OneLine(text));
  m_painter.drawText(QPointF(at.x(), at.y() + QFontMetricsF(made).ascent()), m_texts.back());
}

void QtCanvas::DrawPicture(platform::Point at, int picture) {
  m_painter.save();
  m_painter.translate(Snap(at.x), Snap(at.y));
  m_painter.scale(kScale, kScale);
  m_pictures.Draw(m_painter, {}, picture);
  m_painter.restore();
}

int QtCanvas::GetTextWidth(std::u16string_view text, const platform::Font& font) const {
  return ToDevice(QFontMetricsF(MakeFont(font)).horizontalAdvance(OneLine(text)));
}

}  // namespace qt
