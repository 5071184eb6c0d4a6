#pragma once

#include <QWidget>
#include <initializer_list>
#include <vector>

class QGridLayout;
class QPushButton;

namespace home {

/// Buttons in as few rows as they fit into: one on a wide window, some on a phone or with long
/// words.
class ButtonRow : public QWidget {
 public:
  explicit ButtonRow(QWidget* parent);

  /// Adds a button that a finger can hit and that Enter presses.
  QPushButton* Add(const QString& text);
  /// Shows these buttons and no others, in this order.
  void ShowOnly(std::initializer_list<QPushButton*> buttons);

  [[nodiscard]] QSize minimumSizeHint() const override;
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  bool event(QEvent* event) override;

 private:
  [[nodiscard]] int WidthOf(std::size_t columns) const;
  void Arrange();

  QGridLayout* m_layout;
  std::vector<QPushButton*> m_buttons;
  std::vector<QPushButton*> m_shown;
  std::size_t m_columns = 0;  ///< 0 until the shown buttons have their places.
};

}  // namespace home
