#pragma once

#include <QTreeView>
#include <array>
#include <functional>

#include "host/home/tag_model.h"

namespace home {

class TagDelegate;

/// The list of tags: a table with a header, or, on a narrow window, cards of three lines without
/// one. It asks for what its keys and clicks mean, and does nothing to a tag itself.
class TagList : public QTreeView {
 public:
  struct Events {
    std::function<void()> play;                      ///< Enter or a double-click: the current tag.
    std::function<void()> playOrStop;                ///< Space, or the button of a card.
    std::function<void(const QPoint& at)> showMenu;  ///< `at` is a place on the screen.
  };

  TagList(TagModel& model, TagOrder& order, Events events, QWidget* parent);

  void ShowAsCards(bool areCards);
  [[nodiscard]] bool AreCards() const { return m_areCards; }

  /// Returns the width below which the table is hard to read, in the font of this list.
  [[nodiscard]] int LeastTableWidth() const;

  /// Returns whether a row is a card that shows all its texts as a whole.
  [[nodiscard]] bool ShowsWhole(const QModelIndex& index) const;

  /// Returns the place of the button that plays the tag of a card. `row` is the place of the card.
  [[nodiscard]] static QRect PlayButton(const QRect& card, Qt::LayoutDirection direction);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool viewportEvent(QEvent* event) override;

 private:
  void MeasureColumns();
  void FitColumns();
  void ShowMenuAtCurrent();
  /// Returns the card whose play button is at that place. Not valid if there is none.
  [[nodiscard]] QModelIndex PlayButtonAt(const QPoint& place) const;

  const TagModel& m_model;
  Events m_events;
  TagDelegate* m_delegate;  ///< Owned by this.
  bool m_areCards = false;
  bool m_isFitting = false;
  bool m_isFinger = false;              ///< Whether the latest press was that of a finger.
  QPersistentModelIndex m_pressedCard;  ///< The card whose play button is held down.
  std::array<int, kColumnCount> m_neededWidths{};  ///< By the texts of all tags.
  std::array<int, kColumnCount> m_chosenWidths{};  ///< By the user; 0 for none.
};

}  // namespace home
