#include "host/home/card_delegate.h"

#include <QPainter>
#include <QStyle>
#include <algorithm>

#include "host/home/avatar.h"
#include "host/home/sizes.h"

namespace home {
namespace {

constexpr int kCardGap = 8;
constexpr float kQuietText = 0.75F;
constexpr float kCardCircle = 0.18F;

QColor AtShare(QColor colour, float share) {
  colour.setAlphaF(share);
  return colour;
}

}  // namespace

// Everything is placed as for a window that is read from left to right, and mirrored by visualRect.
void CardDelegate::paint(QPainter* painter, const QStyleOptionViewItem& given,
                         const QModelIndex& index) const {
  QStyleOptionViewItem option(given);
  initStyleOption(&option, index);
  option.widget->style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &option, painter,
                                        option.widget);
  const bool isSelected = (option.state & QStyle::State_Selected) != 0;
  const QColor colour =
      option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text);
  const int line = option.fontMetrics.lineSpacing();
  QRect area = option.rect.adjusted(kCardGap, kCardGap, -kCardGap, -kCardGap);
  painter->save();
  const QString name = index.data(kNameRole).toString();
  if (!name.isEmpty()) {
    const int circle = std::min(2 * line, option.rect.width() / 6);
    DrawAvatar(*painter,
               QStyle::visualRect(option.direction, option.rect,
                                  QRect(area.left(), area.top(), circle, area.height())),
               name, colour, AtShare(colour, kCardCircle));
    area.setLeft(area.left() + circle + kCardGap);
  }
  const QStringList lines = index.data().toString().split(u'\n');
  const bool isQuiet = index.data(kQuietRole).toBool();
  for (int i = 0; i < std::min<int>(m_lines, static_cast<int>(lines.size())); ++i) {
    QFont font(option.font);
    font.setBold(i == 0);
    painter->setFont(font);
    painter->setPen(isSelected || (i == 0 && !isQuiet) ? colour : AtShare(colour, kQuietText));
    const QRect place(area.left(), area.top() + i * line, area.width(), line);
    painter->drawText(QStyle::visualRect(option.direction, option.rect, place),
                      static_cast<int>(QStyle::visualAlignment(option.direction, Qt::AlignLeading) |
                                       Qt::AlignAbsolute | Qt::AlignVCenter) |
                          Qt::TextSingleLine,
                      QFontMetrics(font).elidedText(lines[i], Qt::ElideRight, place.width()));
  }
  painter->restore();
}

QSize CardDelegate::sizeHint(const QStyleOptionViewItem& option,
                             const QModelIndex& /*index*/) const {
  return {0, std::max(m_lines * option.fontMetrics.lineSpacing() + 2 * kCardGap, kLeastTarget)};
}

}  // namespace home
