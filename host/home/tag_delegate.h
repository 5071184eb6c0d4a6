#pragma once

#include <QStyledItemDelegate>

#include "host/home/tag_model.h"

namespace home {

/// Paints a tag: as cells of a table, or as a card.
class TagDelegate : public QStyledItemDelegate {
 public:
  TagDelegate(const TagModel& model, const TagOrder& order, QObject* parent);

  void ShowAsCards(bool areCards) { m_areCards = areCards; }

  /// Returns whether a card of this size shows the whole name and the whole number.
  [[nodiscard]] bool IsCardWhole(const QRect& card, const QFont& font,
                                 const QModelIndex& index) const;

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override;
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                               const QModelIndex& index) const override;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

 private:
  struct CardTexts {
    QString name;
    QString number;  ///< With its kind.
    QString facts;
    QString quality;
  };

  [[nodiscard]] CardTexts TextsOf(const QModelIndex& index) const;
  void PaintCard(QPainter& painter, const QStyleOptionViewItem& given,
                 const QModelIndex& index) const;

  const TagModel& m_model;
  const TagOrder& m_order;
  bool m_areCards = false;
};

}  // namespace home
