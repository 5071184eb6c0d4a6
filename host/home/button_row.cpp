#include "host/home/button_row.h"

#include <QEvent>
#include <QPushButton>
#include <QStyle>
#include <algorithm>

#include "host/home/button.h"

namespace home {
namespace {

constexpr int kButtonGap = 6;

int WidthOf(int columns, int width) {
  return columns * width + std::max(columns - 1, 0) * kButtonGap;
}

}  // namespace

ButtonRow::ButtonRow(QWidget* parent) : QWidget(parent) {
  QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
  policy.setHeightForWidth(true);
  setSizePolicy(policy);
}

QPushButton* ButtonRow::Add(const QString& text) {
  auto* const button = new Button(this);
  button->setText(text);
  button->setAutoDefault(true);
  button->hide();
  m_buttons.push_back(button);
  return button;
}

void ButtonRow::ShowOnly(std::initializer_list<QPushButton*> buttons) {
  if (std::ranges::equal(m_shown, buttons)) {
    return;
  }
  m_shown = buttons;
  for (QPushButton* const button : m_buttons) {
    button->setVisible(std::ranges::find(m_shown, button) != m_shown.end());
  }
  for (std::size_t i = 1; i < m_shown.size(); ++i) {
    setTabOrder(m_shown[i - 1], m_shown[i]);
  }
  updateGeometry();
  Arrange();
}

// Each button gets the room of the largest. So rows line up, and a text that changes moves no other
// button.
QSize ButtonRow::LargestButton() const {
  QSize size;
  for (const QPushButton* const button : m_shown) {
    size = size.expandedTo(button->sizeHint()).expandedTo(button->minimumSize());
  }
  return m_shown.empty() ? QSize(0, 0) : size;
}

int ButtonRow::CountRows(int columns) const {
  return (static_cast<int>(m_shown.size()) + columns - 1) / columns;
}

int ButtonRow::ColumnsIn(int width) const {
  int columns = std::max(static_cast<int>(m_shown.size()), 1);
  while (columns > 1 && WidthOf(columns, LargestButton().width()) > width) {
    --columns;
  }
  // As many in each row as the rows need.
  const int rows = std::max(CountRows(columns), 1);
  return std::max((static_cast<int>(m_shown.size()) + rows - 1) / rows, 1);
}

int ButtonRow::heightForWidth(int width) const {
  return WidthOf(CountRows(ColumnsIn(width)), LargestButton().height());
}

QSize ButtonRow::minimumSizeHint() const { return LargestButton(); }

QSize ButtonRow::sizeHint() const {
  const QSize button = LargestButton();
  return {WidthOf(static_cast<int>(m_shown.size()), button.width()), button.height()};
}

void ButtonRow::Arrange() {
  const int columns = ColumnsIn(width());
  const int height = LargestButton().height();
  const auto count = static_cast<int>(m_shown.size());
  for (int i = 0; i < count; ++i) {
    const int column = i % columns;
    // Those of a row share its width, so the last row has no gap at its end.
    const int inRow = std::min(columns, count - (i - column));
    const int left = column * (width() + kButtonGap) / inRow;
    const int right = (column + 1) * (width() + kButtonGap) / inRow - kButtonGap;
    const QRect place(left, i / columns * (height + kButtonGap), right - left, height);
    m_shown[static_cast<std::size_t>(i)]->setGeometry(
        QStyle::visualRect(layoutDirection(), rect(), place));
  }
}

void ButtonRow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  Arrange();
}

// A text has changed, or the letters have: the row may become higher.
bool ButtonRow::event(QEvent* event) {
  if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::FontChange) {
    updateGeometry();
    Arrange();
  }
  return QWidget::event(event);
}

}  // namespace home
