#pragma once

#include <QStyledItemDelegate>

namespace home {

/// Paints an item of a list as a card: a person's initials, and the lines of the item's text, of
/// which the first is bold. Lines that are too long are elided. All cards of a list are of one
/// height, for `lines` lines.
class CardDelegate final : public QStyledItemDelegate {
 public:
  /// The name whose initials are shown. There is no circle if it is missing.
  static constexpr int kNameRole = Qt::UserRole;
  /// Whether the item stands for something that cannot be done now. Its texts are quiet then.
  static constexpr int kQuietRole = Qt::UserRole + 1;

  CardDelegate(int lines, QObject* parent) : QStyledItemDelegate(parent), m_lines(lines) {}

  void paint(QPainter* painter, const QStyleOptionViewItem& given,
             const QModelIndex& index) const override;
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                               const QModelIndex& index) const override;

 private:
  const int m_lines;
};

}  // namespace home
