#include "backends/qt/widgets.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOptionFocusRect>
#include <QWheelEvent>
#include <algorithm>

#include "backends/qt/look.h"

namespace qt {

ComboBox::ComboBox(QWidget* parent) : QComboBox(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setInsertPolicy(NoInsert);
  // The box keeps its place on the dialog, however long its items are.
  setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
  view()->setTextElideMode(Qt::ElideRight);
}

void ComboBox::wheelEvent(QWheelEvent* event) {
  if (hasFocus()) {
    QComboBox::wheelEvent(event);
  } else {
    event->ignore();
  }
}

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
  // The line that has the focus is not selected yet. The first step selects it and does not pass
  // it.
  if (event->key() == Qt::Key_Down && selectedItems().isEmpty() && count() > 0) {
    setCurrentRow(std::max(0, currentRow()));
    return;
  }
  QListWidget::keyPressEvent(event);
}

// The frame shows the focus.
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

PictureButton::PictureButton(QWidget* parent, Pictures& pictures, int picture)
    : QAbstractButton(parent), m_pictures(pictures), m_picture(picture) {
  setCursor(Qt::PointingHandCursor);
  setFocusPolicy(Qt::StrongFocus);
}

void PictureButton::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.save();
  painter.scale(kScale, kScale);
  m_pictures.Draw(painter, {}, m_picture);
  painter.restore();
  if (hasFocus()) {
    QStyleOptionFocusRect focus;
    focus.initFrom(this);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
  }
}

namespace {

/// The distance between the link and the frame around it, in pixels of the desktop.
constexpr int kFrameDistance = 3;

}  // namespace

LinkArea::LinkArea(QWidget* parent, const QRect& link) : QAbstractButton(parent) {
  setGeometry(
      link.marginsAdded(QMargins(kFrameDistance, kFrameDistance, kFrameDistance, kFrameDistance)));
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setFocusPolicy(Qt::TabFocus);
  setObjectName(QStringLiteral("link"));
}

void LinkArea::paintEvent(QPaintEvent* /*event*/) {
  if (hasFocus()) {
    QPainter painter(this);
    painter.setPen(QPen(palette().color(QPalette::Highlight), 1));
    painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
  }
}

void LinkArea::keyPressEvent(QKeyEvent* event) {
  // Otherwise Enter would press the window's default button.
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    if (!event->isAutoRepeat()) {
      click();
    }
    return;
  }
  QAbstractButton::keyPressEvent(event);
}

}  // namespace qt
