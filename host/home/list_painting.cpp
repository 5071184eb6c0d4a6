#include "host/home/list_painting.h"

#include <QApplication>
#include <QFontMetrics>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionViewItem>

namespace home {

QColor WithShare(QColor colour, float share) {
  colour.setAlphaF(share);
  return colour;
}

QColor ColourOf(const QStyleOptionViewItem& option, bool isQuiet) {
  // The style paints a selection in another colour while the window is not the active one.
  const auto group =
      (option.state & QStyle::State_Active) != 0 ? QPalette::Active : QPalette::Inactive;
  if ((option.state & QStyle::State_Selected) != 0) {
    return option.palette.color(group, QPalette::HighlightedText);
  }
  const QColor colour = option.palette.color(group, QPalette::Text);
  return isQuiet ? WithShare(colour, kQuietShare) : colour;
}

void PaintGround(QPainter& painter, const QStyleOptionViewItem& option) {
  const QStyle& style =
      *(option.widget != nullptr ? option.widget->style() : QApplication::style());
  style.drawPrimitive(QStyle::PE_PanelItemViewItem, &option, &painter, option.widget);
}

void WriteLine(QPainter& painter, const QStyleOptionViewItem& option, const ItemLine& line) {
  const QFontMetrics metrics(line.font);
  // A text that just fits is not elided, although its rounded width may be a pixel more.
  const QString shown = metrics.horizontalAdvance(line.text) <= line.place.width()
                            ? line.text
                            : metrics.elidedText(line.text, line.elided, line.place.width());
  painter.setFont(line.font);
  painter.setPen(ColourOf(option, line.isQuiet));
  const Qt::Alignment alignment =
      QStyle::visualAlignment(option.direction, line.edge) | Qt::AlignAbsolute | Qt::AlignVCenter;
  painter.drawText(QStyle::visualRect(option.direction, option.rect, line.place),
                   static_cast<int>(alignment) | Qt::TextSingleLine | Qt::TextDontClip, shown);
}

}  // namespace home
