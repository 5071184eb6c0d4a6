#include "host/home/card_delegate.h"

#include <QPainter>
#include <QStyle>
#include <algorithm>

#include "host/home/avatar.h"
#include "host/home/list_painting.h"
#include "host/home/sizes.h"

namespace home {
namespace {

constexpr int kCardGap = 8;

}  // namespace

void CardDelegate::paint(QPainter* painter, const QStyleOptionViewItem& given,
                         const QModelIndex& index) const {
  QStyleOptionViewItem option(given);
  initStyleOption(&option, index);
  PaintGround(*painter, option);
  const int line = option.fontMetrics.lineSpacing();
  QRect area = option.rect.adjusted(kCardGap, kCardGap, -kCardGap, -kCardGap);
  painter->save();
  const QString name = index.data(kNameRole).toString();
  if (!name.isEmpty()) {
    const int circle = std::min(2 * line, option.rect.width() / 6);
    DrawAvatar(*painter,
               QStyle::visualRect(option.direction, option.rect,
                                  QRect(area.left(), area.top(), circle, area.height())),
               name, ColourOf(option), WithShare(ColourOf(option), kGroundShare));
    area.setLeft(area.left() + circle + kCardGap);
  }
  const QStringList lines = index.data().toString().split(u'\n');
  const bool isQuiet = index.data(kQuietRole).toBool();
  for (int i = 0; i < std::min<int>(m_lines, static_cast<int>(lines.size())); ++i) {
    QFont font(option.font);
    font.setBold(i == 0);
    WriteLine(*painter, option,
              {QRect(area.left(), area.top() + i * line, area.width(), line), lines[i], font,
               Qt::AlignLeading, Qt::ElideRight, i > 0 || isQuiet});
  }
  painter->restore();
}

QSize CardDelegate::sizeHint(const QStyleOptionViewItem& option,
                             const QModelIndex& /*index*/) const {
  return {0, std::max(m_lines * option.fontMetrics.lineSpacing() + 2 * kCardGap, kLeastTarget)};
}

}  // namespace home
