#include "host/home/tag_delegate.h"

#include <QPainter>
#include <algorithm>

#include "host/home/list_painting.h"
#include "host/home/sizes.h"
#include "host/home/symbols.h"
#include "host/home/tag_list.h"

namespace home {
namespace {

constexpr int kCardPadding = 8;
constexpr int kCardLines = 3;

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

/// Returns the texts that are not empty, with a dot between them.
QString Join(QStringList texts) {
  texts.removeAll(QString());
  return texts.join(QStringLiteral(" · "));
}

QFont Bold(QFont font) {
  font.setBold(true);
  return font;
}

/// Where the texts of a card are, counted from the left in a window that is read from the left.
struct CardPlaces {
  /// `quality` is the word next to the symbol. It can be empty.
  CardPlaces(const QRect& card, const QFont& font, const QString& quality)
      : metrics(font),
        area(
            card.adjusted(kCardPadding, kCardPadding, -kCardPadding - kLeastTarget, -kCardPadding)),
        symbolSize(metrics.ascent()),
        qualityWidth(quality.isEmpty() ? 0 : metrics.horizontalAdvance(quality) + symbolSize / 3) {}

  /// The line without what stands at the end of the first one.
  [[nodiscard]] QRect Line(int line) const {
    const int taken = line == 0 ? qualityWidth + symbolSize + kCardPadding : 0;
    return {area.left(), area.top() + line * metrics.lineSpacing(),
            std::max(0, area.width() - taken), metrics.lineSpacing()};
  }
  [[nodiscard]] QRect Quality() const {
    return {area.right() + 1 - qualityWidth, area.top(), qualityWidth, metrics.lineSpacing()};
  }
  [[nodiscard]] QRect QualitySymbol() const {
    return {area.right() + 1 - qualityWidth - symbolSize,
            area.top() + (metrics.lineSpacing() - symbolSize) / 2, symbolSize, symbolSize};
  }

  QFontMetrics metrics;
  QRect area;
  int symbolSize;
  int qualityWidth;
};

}  // namespace

TagDelegate::CardTexts TagDelegate::TextsOf(const QRect& card, const QFont& font,
                                            const QModelIndex& index) const {
  const int row = m_order.mapToSource(index).row();
  const auto text = [&](Column column) {
    return m_model.data(m_model.index(row, column), Qt::DisplayRole).toString();
  };
  CardTexts texts{text(kName),
                  Join({text(kNumber), text(kKind)}),
                  text(kQuality),
                  {text(kTaught), text(kLength)}};
  const CardPlaces places(card, font, texts.quality);
  // What has no room next to a name or a number goes to the third line.
  if (places.metrics.horizontalAdvance(texts.number) > places.Line(1).width()) {
    texts.number = text(kNumber);
    texts.facts.prepend(text(kKind));
  }
  if (QFontMetrics(Bold(font)).horizontalAdvance(texts.name) > places.Line(0).width()) {
    texts.quality.clear();
    texts.facts.prepend(text(kQuality));
  }
  return texts;
}

bool TagDelegate::IsCardWhole(const QRect& card, const QFont& font,
                              const QModelIndex& index) const {
  const CardTexts texts = TextsOf(card, font, index);
  const CardPlaces places(card, font, texts.quality);
  return QFontMetrics(Bold(font)).horizontalAdvance(texts.name) <= places.Line(0).width() &&
         places.metrics.horizontalAdvance(texts.number) <= places.Line(1).width() &&
         places.metrics.horizontalAdvance(Join(texts.facts)) <= places.Line(2).width();
}

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
  const bool hasSymbol = isPlaying || (index.column() == kQuality && m_model.AreJudged()) ||
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
  PaintGround(painter, option);
  const Tag& tag = m_model.TagAt(m_order.mapToSource(index).row());
  const CardTexts texts = TextsOf(option.rect, option.font, index);
  const CardPlaces places(option.rect, option.font, texts.quality);
  painter.save();
  const bool isPlaying = tag.name == m_model.GetPlaying();
  QRect symbol(QPoint(), QSize(places.symbolSize, places.symbolSize));
  symbol.moveCenter(TagList::PlayButton(option.rect, option.direction).center());
  DrawSymbol(painter, symbol, isPlaying ? Symbol::kStop : Symbol::kPlay, ColourOf(option));
  if (m_model.AreJudged()) {
    DrawSymbol(painter, QStyle::visualRect(option.direction, option.rect, places.QualitySymbol()),
               SymbolOf(GradeOf(tag)), ColourOf(option));
  }
  WriteLine(painter, option,
            {places.Quality(), texts.quality, option.font, Qt::AlignTrailing, Qt::ElideRight});
  WriteLine(painter, option, {places.Line(0), texts.name, Bold(option.font)});
  WriteLine(painter, option,
            {places.Line(1), texts.number, option.font, Qt::AlignLeading, Qt::ElideMiddle});
  WriteLine(
      painter, option,
      {places.Line(2), Join(texts.facts), option.font, Qt::AlignLeading, Qt::ElideRight, true});
  painter.fillRect(QRect(option.rect.left(), option.rect.bottom(), option.rect.width(), 1),
                   WithShare(option.palette.color(QPalette::Text), kThinShare));
  painter.restore();
}

QSize TagDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const QSize cell = QStyledItemDelegate::sizeHint(option, index);
  const int line = QFontMetrics(option.font).lineSpacing();
  return m_areCards ? QSize(0, kCardLines * line + 2 * kCardPadding)
                    : QSize(cell.width() + kCardPadding, std::max(cell.height(), 2 * line));
}

}  // namespace home
