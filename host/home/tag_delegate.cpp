#include "host/home/tag_delegate.h"

#include <QApplication>
#include <QPainter>
#include <algorithm>

#include "host/home/sizes.h"
#include "host/home/symbols.h"
#include "host/home/tag_list.h"

namespace home {
namespace {

constexpr int kCardPadding = 8;
constexpr int kCardLines = 3;
constexpr double kQuietShare = 0.75;  ///< Of a line of a card that matters less.

Symbol SymbolOf(Grade grade) {
  switch (grade) {
    case Grade::kGood:
      return Symbol::kGood;
    case Grade::kWarning:
      return Symbol::kWarning;
    default:
      return Symbol::kUnknown;
  }
}

QColor ColourOf(const QStyleOptionViewItem& option, bool isQuiet) {
  const auto group =
      (option.state & QStyle::State_Active) != 0 ? QPalette::Active : QPalette::Inactive;
  const bool isSelected = (option.state & QStyle::State_Selected) != 0;
  QColor colour =
      option.palette.color(group, isSelected ? QPalette::HighlightedText : QPalette::Text);
  if (isQuiet && !isSelected) {
    colour.setAlphaF(static_cast<float>(kQuietShare));
  }
  return colour;
}

/// Writes lines of a card, one below the other, between two edges.
class CardWriter {
 public:
  CardWriter(QPainter& painter, const QStyleOptionViewItem& option, const QRect& area)
      : m_painter(painter), m_option(option), m_area(area) {}

  /// Writes at the beginning of the line that begins at `top`, and leaves `reserved` pixels free at
  /// its end.
  void Write(const QString& text, int top, int reserved, Qt::TextElideMode mode, const QFont& font,
             bool isQuiet) {
    QRect line(m_area.left(), top, std::max(0, m_area.width() - reserved),
               QFontMetrics(font).lineSpacing());
    line = QStyle::visualRect(m_option.direction, m_area, line);
    m_painter.setFont(font);
    m_painter.setPen(ColourOf(m_option, isQuiet));
    m_painter.drawText(line, AlignmentOf(Qt::AlignLeading),
                       QFontMetrics(font).elidedText(text, mode, line.width()));
  }

  /// Writes at the end of the line, with a symbol before it. Returns the width that this takes.
  int WriteAtEnd(const QString& text, Symbol symbol, int top) {
    const QFontMetrics metrics(m_option.font);
    const int height = metrics.lineSpacing();
    const int size = metrics.ascent();
    const int gap = size / 3;
    const int width = std::min(metrics.horizontalAdvance(text), m_area.width() / 2 - size - gap);
    const QRect words(m_area.right() + 1 - width, top, width, height);
    const QRect picture(words.left() - gap - size, top + (height - size) / 2, size, size);
    m_painter.setFont(m_option.font);
    m_painter.setPen(ColourOf(m_option, false));
    m_painter.drawText(QStyle::visualRect(m_option.direction, m_area, words),
                       AlignmentOf(Qt::AlignTrailing),
                       metrics.elidedText(text, Qt::ElideRight, width));
    DrawSymbol(m_painter, QStyle::visualRect(m_option.direction, m_area, picture), symbol,
               ColourOf(m_option, false));
    return width + gap + size + kCardPadding;
  }

 private:
  // The direction of the window decides, and not that of the text: names of both directions stand
  // below each other at one edge.
  [[nodiscard]] int AlignmentOf(Qt::Alignment alignment) const {
    return static_cast<int>(QStyle::visualAlignment(m_option.direction, alignment) |
                            Qt::AlignAbsolute | Qt::AlignVCenter) |
           Qt::TextSingleLine;
  }

  QPainter& m_painter;
  const QStyleOptionViewItem& m_option;
  const QRect m_area;
};

/// Returns the texts that are not empty, with a dot between them.
QString Join(QStringList texts) {
  texts.removeAll(QString());
  return texts.join(QStringLiteral(" · "));
}

}  // namespace

TagDelegate::TagDelegate(const TagModel& model, const TagOrder& order, QObject* parent)
    : QStyledItemDelegate(parent), m_model(model), m_order(order) {}

void TagDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
  QStyledItemDelegate::initStyleOption(option, index);
  const Tag& tag = m_model.TagAt(m_order.mapToSource(index).row());
  const bool isPlaying = index.column() == kName && tag.name == m_model.GetPlaying();
  if (index.column() == kNumber) {
    option->textElideMode = Qt::ElideMiddle;
  }
  if (isPlaying) {
    option->font.setBold(true);
  }
  const bool hasSymbol = isPlaying || index.column() == kQuality ||
                         (index.column() == kNearest && !tag.quality.tooAlike.empty());
  if (hasSymbol) {
    option->features |= QStyleOptionViewItem::HasDecoration;
    option->icon = IconOf(isPlaying                    ? Symbol::kPlay
                          : index.column() == kQuality ? SymbolOf(GradeOf(tag))
                                                       : Symbol::kWarning);
    const int size = option->fontMetrics.ascent();
    option->decorationSize = QSize(size, size);
  }
}

void TagDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const {
  if (m_areCards) {
    PaintCard(*painter, option, index);
  } else {
    QStyledItemDelegate::paint(painter, option, index);
  }
}

void TagDelegate::PaintCard(QPainter& painter, const QStyleOptionViewItem& given,
                            const QModelIndex& index) const {
  QStyleOptionViewItem option(given);
  QStyledItemDelegate::initStyleOption(&option, index);
  const QStyle& style =
      *(option.widget != nullptr ? option.widget->style() : QApplication::style());
  style.drawPrimitive(QStyle::PE_PanelItemViewItem, &option, &painter, option.widget);

  const int row = m_order.mapToSource(index).row();
  const Tag& tag = m_model.TagAt(row);
  const auto text = [&](Column column) {
    return m_model.data(m_model.index(row, column), Qt::DisplayRole).toString();
  };
  painter.save();
  const QRect button = TagList::PlayButton(option.rect, option.direction);
  const bool isPlaying = tag.name == m_model.GetPlaying();
  const int symbolSize = std::min(kLeastTarget / 2, option.fontMetrics.height());
  QRect symbol(0, 0, symbolSize, symbolSize);
  symbol.moveCenter(button.center());
  DrawSymbol(painter, symbol, isPlaying ? Symbol::kStop : Symbol::kPlay, ColourOf(option, false));

  QRect area = option.rect.adjusted(kCardPadding, kCardPadding, -kCardPadding, -kCardPadding);
  area.setWidth(area.width() - kLeastTarget);
  area = QStyle::visualRect(option.direction, option.rect, area);
  const int height = option.fontMetrics.lineSpacing();
  QFont bold(option.font);
  bold.setBold(true);
  CardWriter writer(painter, option, area);
  const int taken = writer.WriteAtEnd(text(kQuality), SymbolOf(GradeOf(tag)), area.top());
  writer.Write(text(kName), area.top(), taken, Qt::ElideRight, bold, false);
  writer.Write(Join({text(kNumber), text(kKind)}), area.top() + height, 0, Qt::ElideMiddle,
               option.font, false);
  writer.Write(Join({text(kTaught), text(kLength)}), area.top() + 2 * height, 0, Qt::ElideRight,
               option.font, true);
  painter.restore();
}

QSize TagDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const QSize cell = QStyledItemDelegate::sizeHint(option, index);
  const int line = QFontMetrics(option.font).lineSpacing();
  return m_areCards ? QSize(0, kCardLines * line + 2 * kCardPadding)
                    : QSize(cell.width() + kCardPadding, std::max(cell.height(), line * 3 / 2));
}

}  // namespace home
