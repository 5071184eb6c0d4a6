#include "host/home/button_row.h"

#include <QEvent>
#include <QGridLayout>
#include <QPushButton>
#include <algorithm>

#include "host/home/sizes.h"

namespace home {

ButtonRow::ButtonRow(QWidget* parent) : QWidget(parent), m_layout(new QGridLayout(this)) {
  m_layout->setContentsMargins(0, 0, 0, 0);
}

QPushButton* ButtonRow::Add(const QString& text) {
  auto* const button = new QPushButton(text, this);
  button->setAutoDefault(true);
  button->hide();
  MakeTouchable(*button);
  m_buttons.push_back(button);
  return button;
}

void ButtonRow::ShowOnly(std::initializer_list<QPushButton*> buttons) {
  if (std::ranges::equal(m_shown, buttons)) {
    return;
  }
  m_shown = buttons;
  m_columns = 0;
  Arrange();
  for (QPushButton* const button : m_buttons) {
    button->setVisible(std::ranges::find(m_shown, button) != m_shown.end());
  }
}

/// Returns the width of so many columns, each as wide as the widest button.
int ButtonRow::WidthOf(std::size_t columns) const {
  int widest = 0;
  for (const QPushButton* const button : m_shown) {
    widest = std::max(widest, button->sizeHint().width());
  }
  const auto count = static_cast<int>(columns);
  return count * widest + (count - 1) * m_layout->horizontalSpacing();
}

void ButtonRow::Arrange() {
  std::size_t columns = std::max<std::size_t>(m_shown.size(), 1);
  while (columns > 1 && WidthOf(columns) > width()) {
    --columns;
  }
  // As many in each row as the rows need.
  const std::size_t rows = (m_shown.size() + columns - 1) / columns;
  columns = rows > 0 ? (m_shown.size() + rows - 1) / rows : 1;
  if (columns == m_columns) {
    return;
  }
  m_columns = columns;
  for (QPushButton* const button : m_buttons) {
    m_layout->removeWidget(button);
  }
  for (int column = 0; column < std::max(m_layout->columnCount(), static_cast<int>(columns));
       ++column) {
    m_layout->setColumnStretch(column, column < static_cast<int>(columns) ? 1 : 0);
  }
  for (std::size_t i = 0; i < m_shown.size(); ++i) {
    m_layout->addWidget(m_shown[i], static_cast<int>(i / columns), static_cast<int>(i % columns));
    if (i > 0) {
      setTabOrder(m_shown[i - 1], m_shown[i]);
    }
  }
  updateGeometry();
}

// The least width is that of one column, and the height that of the columns that there are now.
QSize ButtonRow::minimumSizeHint() const {
  return {m_shown.empty() ? 0 : WidthOf(1), m_layout->minimumSize().height()};
}

QSize ButtonRow::sizeHint() const {
  return {m_shown.empty() ? 0 : WidthOf(m_shown.size()), m_layout->sizeHint().height()};
}

void ButtonRow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  Arrange();
}

bool ButtonRow::event(QEvent* event) {
  if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::FontChange) {
    Arrange();
  }
  return QWidget::event(event);
}

}  // namespace home
