#include "backends/qt/list_box.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <algorithm>

namespace qt {

ListBox::ListBox(QWidget* parent) : QListWidget(parent) {
  setSelectionMode(SingleSelection);
  setTextElideMode(Qt::ElideNone);
  setHorizontalScrollMode(ScrollPerPixel);
  setTabKeyNavigation(false);
}

void ListBox::SetExtent(int extent) {
  m_extent = extent;
  updateGeometries();
}

QItemSelectionModel::SelectionFlags ListBox::selectionCommand(const QModelIndex& index,
                                                              const QEvent* event) const {
  if (!index.isValid()) {
    return QItemSelectionModel::NoUpdate;
  }
  const auto command = QListWidget::selectionCommand(index, event);
  const bool takesBack = command.testFlag(QItemSelectionModel::Deselect) ||
                         command.testFlag(QItemSelectionModel::Toggle);
  return takesBack ? QItemSelectionModel::ClearAndSelect : command;
}

void ListBox::keyPressEvent(QKeyEvent* event) {
  // The line where the focus waits is not selected yet; the first step goes to it, not past it.
  if (event->key() == Qt::Key_Down && selectedItems().isEmpty() && count() > 0) {
    setCurrentRow(std::max(0, currentRow()));
    return;
  }
  QListWidget::keyPressEvent(event);
}

// The frame says where the focus is.
void ListBox::focusInEvent(QFocusEvent* event) {
  QListWidget::focusInEvent(event);
  update();
}

void ListBox::focusOutEvent(QFocusEvent* event) {
  QListWidget::focusOutEvent(event);
  update();
}

void ListBox::updateGeometries() {
  QListWidget::updateGeometries();
  QScrollBar* bar = horizontalScrollBar();
  bar->setMaximum(std::max(bar->maximum(), m_extent - viewport()->width()));
}

}  // namespace qt
