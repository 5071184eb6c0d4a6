#pragma once

#include <QWidget>
#include <initializer_list>
#include <vector>

class QPushButton;

namespace home {

/// Buttons in as few rows as they fit into: one on a wide window, some on a phone or with long
/// words. It lays them out itself, since no layout knows such a height.
class ButtonRow : public QWidget {
 public:
  explicit ButtonRow(QWidget* parent);

  /// Adds a button that a finger can hit and that Enter presses.
  QPushButton* Add(const QString& text);
  /// Shows these buttons and no others, in this order.
  void ShowOnly(std::initializer_list<QPushButton*> buttons);

  [[nodiscard]] bool hasHeightForWidth() const override { return true; }
  [[nodiscard]] int heightForWidth(int width) const override;
  [[nodiscard]] QSize minimumSizeHint() const override;
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  bool event(QEvent* event) override;

 private:
  [[nodiscard]] QSize LargestButton() const;
  [[nodiscard]] int ColumnsIn(int width) const;
  [[nodiscard]] int CountRows(int columns) const;
  void Arrange();

  std::vector<QPushButton*> m_buttons;
  std::vector<QPushButton*> m_shown;
};

}  // namespace home
