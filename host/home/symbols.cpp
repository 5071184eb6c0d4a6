#include "host/home/symbols.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainterPath>
#include <QPalette>
#include <QPixmap>
#include <QPolygonF>
#include <algorithm>

// The symbols of desktops differ in style and are not all there everywhere, so the window draws its
// own. They are lines in the colour of the text, and sharp at every scale.
namespace home {
namespace {

// Each symbol is drawn on a square of 16 units.
constexpr double kUnits = 16;
constexpr double kLineWidth = 1.6;

void DrawLines(QPainter& painter, std::initializer_list<QPointF> points) {
  painter.drawPolyline(QPolygonF(QList<QPointF>(points)));
}

void DrawBin(QPainter& painter) {
  DrawLines(painter, {{2.5, 4.5}, {13.5, 4.5}});
  DrawLines(painter, {{6, 4.5}, {6, 2.5}, {10, 2.5}, {10, 4.5}});
  DrawLines(painter, {{4, 4.5}, {4.6, 13.8}, {11.4, 13.8}, {12, 4.5}});
  DrawLines(painter, {{6.8, 7}, {6.8, 11.2}});
  DrawLines(painter, {{9.2, 7}, {9.2, 11.2}});
}

void DrawWarning(QPainter& painter) {
  QPainterPath path;
  path.addPolygon(QPolygonF({{8, 2}, {14.6, 13.8}, {1.4, 13.8}}));
  path.closeSubpath();
  painter.drawPath(path);
  DrawLines(painter, {{8, 6.6}, {8, 9.6}});
  painter.drawPoint(QPointF(8, 11.8));
}

void DrawUnknown(QPainter& painter) {
  QPainterPath path(QPointF(5, 5.6));
  path.cubicTo(5, 1.2, 11, 1.2, 11, 5.4);
  path.cubicTo(11, 8, 8, 8, 8, 10.6);
  painter.drawPath(path);
  painter.drawPoint(QPointF(8, 13.4));
}

/// A handset: an ear and a mouth piece with the handle between them.
void DrawCall(QPainter& painter) {
  QPainterPath path(QPointF(3.4, 2.6));
  path.lineTo(6.2, 2.6);
  path.lineTo(7.2, 6);
  path.lineTo(5.6, 7.2);
  path.quadTo(6.8, 9.6, 8.8, 10.6);
  path.lineTo(10.2, 8.9);
  path.lineTo(13.4, 10);
  path.lineTo(13.4, 12.8);
  path.quadTo(10.4, 14.6, 6, 10.4);
  path.quadTo(2, 6.4, 3.4, 2.6);
  path.closeSubpath();
  painter.drawPath(path);
}

void DrawFilled(QPainter& painter, Symbol symbol) {
  switch (symbol) {
    case Symbol::kPlay:
      painter.drawPolygon(QPolygonF({{4.5, 3}, {13, 8}, {4.5, 13}}));
      break;
    case Symbol::kStop:
      painter.drawRect(QRectF(4, 4, 8, 8));
      break;
    default:
      painter.drawEllipse(QPointF(8, 8), 4.4, 4.4);
  }
}

void DrawOutline(QPainter& painter, Symbol symbol) {
  switch (symbol) {
    case Symbol::kBack:
      DrawLines(painter, {{10, 3}, {5, 8}, {10, 13}});
      break;
    case Symbol::kMenu:
      DrawLines(painter, {{2.5, 4}, {13.5, 4}});
      DrawLines(painter, {{2.5, 8}, {13.5, 8}});
      DrawLines(painter, {{2.5, 12}, {13.5, 12}});
      break;
    case Symbol::kSort:
      DrawLines(painter, {{5, 13}, {5, 3}, {2.5, 5.5}});
      DrawLines(painter, {{5, 3}, {7.5, 5.5}});
      DrawLines(painter, {{11, 3}, {11, 13}, {8.5, 10.5}});
      DrawLines(painter, {{11, 13}, {13.5, 10.5}});
      break;
    case Symbol::kClose:
      DrawLines(painter, {{4, 4}, {12, 12}});
      DrawLines(painter, {{12, 4}, {4, 12}});
      break;
    case Symbol::kCall:
      DrawCall(painter);
      break;
    case Symbol::kDelete:
      DrawBin(painter);
      break;
    case Symbol::kGood:
      DrawLines(painter, {{3, 8.6}, {6.5, 12}, {13, 4}});
      break;
    case Symbol::kWarning:
      DrawWarning(painter);
      break;
    default:
      DrawUnknown(painter);
  }
}

/// Draws the symbol whenever it is asked, so that its colour is that of the desktop's present
/// palette.
class SymbolEngine final : public QIconEngine {
 public:
  explicit SymbolEngine(Symbol symbol) : m_symbol(symbol) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
             QIcon::State /*state*/) override {
    const QPalette palette = QGuiApplication::palette();
    const QColor colour =
        palette.color(mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active,
                      mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText);
    DrawSymbol(*painter, rect, m_symbol, colour);
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect(QPoint(), size), mode, state);
    return pixmap;
  }

  [[nodiscard]] QIconEngine* clone() const override { return new SymbolEngine(m_symbol); }

 private:
  Symbol m_symbol;
};

}  // namespace

void DrawSymbol(QPainter& painter, const QRectF& area, Symbol symbol, const QColor& colour) {
  const double size = std::min(area.width(), area.height());
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(area.center());
  painter.scale(size / kUnits, size / kUnits);
  // It points to where reading begins. The signs of a recorder are the same in every language.
  if (symbol == Symbol::kBack && QGuiApplication::isRightToLeft()) {
    painter.scale(-1, 1);
  }
  painter.translate(-kUnits / 2, -kUnits / 2);
  // Filled, as on every recorder. All others are lines.
  if (symbol == Symbol::kPlay || symbol == Symbol::kStop || symbol == Symbol::kRecord) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    DrawFilled(painter, symbol);
  } else {
    painter.setPen(QPen(colour, kLineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    DrawOutline(painter, symbol);
  }
  painter.restore();
}

QIcon IconOf(Symbol symbol) { return QIcon(new SymbolEngine(symbol)); }

}  // namespace home
