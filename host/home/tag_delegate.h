#pragma once

#include <QStyledItemDelegate>

#include "host/home/tag_model.h"

namespace home {

/// Paints a tag: as cells of a table, or as a card.
class TagDelegate : public QStyledItemDelegate {
 public:
  TagDelegate(const TagModel& model, const TagOrder& order, QObject* parent);

  void ShowAsCards(bool areCards) { m_areCards = areCards; }

  /// Returns whether a card of this size shows all its texts as a whole.
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
    QString number;     ///< With its kind, if there is room for both.
    QString quality;    ///< Next to its symbol. Empty if there is no room for it.
    QStringList facts;  ///< Of the last line; some can be empty.
  };

  [[nodiscard]] CardTexts TextsOf(const QRect& card, const QFont& font,
                                  const QModelIndex& index) const;
  void PaintCard(QPainter& painter, const QStyleOptionViewItem& given,
                 const QModelIndex& index) const;

  const TagModel& m_model;
  const TagOrder& m_order;
  bool m_areCards = false;
};

}  // namespace home
