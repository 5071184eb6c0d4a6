#include "backends/qt/qt_canvas.h"

#include <QByteArray>
#include <QFontMetricsF>
#include <algorithm>
#include <cmath>
#include <utility>

#include "backends/qt/look.h"
#include "backends/qt/strings.h"

namespace qt {

Pictures::Pictures(PictureSource source) : m_source(std::move(source)) {}

QSizeF Pictures::GetSize(int picture) { return Find(picture).size; }

void Pictures::Draw(QPainter& painter, const QPointF& at, int picture) {
  const Picture& found = Find(picture);
  const QRectF area(at, found.size);
  if (found.drawing) {
    found.drawing->render(&painter, area);
  } else if (!found.image.isNull()) {
    // The painter is scaled, so the points of a picture do not fall on those of the screen.
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(area, found.image);
  }
}

// A picture that cannot be read is kept as an empty one, so it is tried once only.
Pictures::Picture& Pictures::Find(int picture) {
  const auto [place, isNew] = m_pictures.try_emplace(picture);
  Picture& found = place->second;
  if (!isNew || !m_source.getBytes) {
    return found;
  }
  const std::span<const std::byte> bytes = m_source.getBytes(picture);
  const QByteArray data(static_cast<const char*>(static_cast<const void*>(bytes.data())),
                        static_cast<qsizetype>(bytes.size()));
  // A picture of points or one of lines: the bytes say which.
  if (found.image.loadFromData(data, "PNG")) {
    found.size = found.image.size();
  } else if (!data.isEmpty()) {
    auto drawing = std::make_unique<QSvgRenderer>(data);
    if (drawing->isValid()) {
      found.size = drawing->defaultSize();
      found.drawing = std::move(drawing);
    }
  }
  return found;
}

namespace {

[[nodiscard]] QColor ToQColor(platform::Color color) {
  return {color.red, color.green, color.blue};
}

/// Returns the text with blanks for the characters that would break or shift a line.
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

// Returns the place of a pixel of the device in desktop pixels, moved to the nearest whole pixel of
// the screen. The screen's pixels are finer than the desktop's if the desktop is scaled.
double QtCanvas::Snap(double device) const {
  const double ratio = m_painter.device()->devicePixelRatioF();
  return std::round(device * Scale() * ratio) / ratio;
}

void QtCanvas::DrawLine(platform::Point from, platform::Point to, platform::Color color) {
  // A slanted line has no whole pixels to lie on. It is smoothed instead.
  if (from.x != to.x && from.y != to.y) {
    m_painter.save();
    m_painter.setRenderHint(QPainter::Antialiasing);
    m_painter.setPen(QPen(ToQColor(color), Scale(), Qt::SolidLine, Qt::SquareCap));
    m_painter.drawLine(QPointF(from.x + 0.5, from.y + 0.5) * Scale(),
                       QPointF(to.x + 0.5, to.y + 0.5) * Scale());
    m_painter.restore();
    return;
  }
  // A level or upright line is a filled rectangle, which has sharp edges at every scale. Both ends
  // belong to the line, so one is added to the larger one.
  const QPointF leftTop(Snap(std::min(from.x, to.x)), Snap(std::min(from.y, to.y)));
  // The thickness of a line that begins at the origin, so all lines are equally thick.
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
  // The page names the top of the line, and the library wants its base line.
  m_painter.drawText(QPointF(at.x(), at.y() + QFontMetricsF(made).ascent()),
                     WithNumbersInOrder(m_texts.back()));
}

void QtCanvas::DrawPicture(platform::Point at, int picture) {
  m_painter.save();
  m_painter.translate(Snap(at.x), Snap(at.y));
  m_painter.scale(Scale(), Scale());
  m_pictures.Draw(m_painter, {}, picture);
  m_painter.restore();
}

int QtCanvas::GetTextWidth(std::u16string_view text, const platform::Font& font) const {
  return ToDevice(QFontMetricsF(MakeFont(font)).horizontalAdvance(OneLine(text)));
}

}  // namespace qt
