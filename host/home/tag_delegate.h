#pragma once

#include <QStyledItemDelegate>

#include "host/home/tag_model.h"

namespace home {

/// Paints a tag: as cells of a table, or as a card.
class TagDelegate : public QStyledItemDelegate {
 public:
  TagDelegate(const TagModel& model, const TagOrder& order, QObject* parent);

  void ShowAsCards(bool areCards) { m_areCards = areCards; }

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override;
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                               const QModelIndex& index) const override;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

 private:
  void PaintCard(QPainter& painter, const QStyleOptionViewItem& option,
                 const QModelIndex& index) const;

  const TagModel& m_model;
  const TagOrder& m_order;
  bool m_areCards = false;
};

}  // namespace home
