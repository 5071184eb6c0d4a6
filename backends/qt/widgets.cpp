#include "backends/qt/widgets.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOptionFocusRect>
#include <QToolTip>
#include <QWheelEvent>
#include <algorithm>

#include "backends/qt/look.h"
#include "backends/qt/strings.h"

namespace qt {

void LineDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
  QStyledItemDelegate::initStyleOption(option, index);
  option->text = WithNumbersInOrder(option->text);
}

bool LineDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                             const QStyleOptionViewItem& option, const QModelIndex& index) {
  if (event->type() != QEvent::ToolTip || !index.isValid()) {
    return QStyledItemDelegate::helpEvent(event, view, option, index);
  }
  // A line that is cut off shows itself in the tool tip. One that fits shows what is said of it.
  const bool fits = sizeHint(option, index).width() <= view->viewport()->width();
  const QString text = index.data(Qt::DisplayRole).toString();
  const QString remark = index.data(Qt::ToolTipRole).toString();
  QToolTip::showText(event->globalPos(), fits ? remark : AsToolTip(text), view);
  return true;
}

ComboBox::ComboBox(QWidget* parent) : QComboBox(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setInsertPolicy(NoInsert);
  // The box keeps its place on the dialog, however long its items are.
  setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
  setItemDelegate(new LineDelegate(this));
  view()->setTextElideMode(Qt::ElideRight);
}

bool ComboBox::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip || isEditable()) {
    return QComboBox::event(event);
  }
  QStyleOptionComboBox shown;
  initStyleOption(&shown);
  // The style option holds what is shown, shortened if the field is too narrow.
  const bool isWhole = shown.currentText == WithNumbersInOrder(currentText());
  QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                     isWhole ? QString() : AsToolTip(currentText()), this);
  return true;
}

void ComboBox::keyPressEvent(QKeyEvent* event) {
  const bool isBlank = event->key() == Qt::Key_Space;
  const bool goesOn =
      m_sinceLetter.isValid() && !m_sinceLetter.hasExpired(QApplication::keyboardInputInterval());
  const QString text = event->text();
  if (!text.isEmpty() && text.front().isPrint() && (!isBlank || goesOn)) {
    m_sinceLetter.start();
  }
  if (isBlank && goesOn && !isEditable()) {
    // The library takes a blank for the key that opens the list, and any other key for a letter.
    QKeyEvent letter(QEvent::KeyPress, Qt::Key_unknown, event->modifiers(), text);
    QComboBox::keyPressEvent(&letter);
    return;
  }
  QComboBox::keyPressEvent(event);
}

void ComboBox::initStyleOption(QStyleOptionComboBox* option) const {
  QComboBox::initStyleOption(option);
  const QRect field =
      style()->subControlRect(QStyle::CC_ComboBox, option, QStyle::SC_ComboBoxEditField, this);
  option->currentText = option->fontMetrics.elidedText(WithNumbersInOrder(option->currentText),
                                                       Qt::ElideRight, field.width() - 2);
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
  setItemDelegate(new LineDelegate(this));
}

void ListBox::SetExtent(int extent) {
  m_extent = extent;
  updateGeometries();
}

QItemSelectionModel::SelectionFlags ListBox::selectionCommand(const QModelIndex& index,
                                                              const QEvent* event) const {
  // A click below the last line keeps the selection, as the classic list does.
  if (!index.isValid()) {
    return QItemSelectionModel::NoUpdate;
  }
  const auto command = QListWidget::selectionCommand(index, event);
  const bool takesBack = command.testFlag(QItemSelectionModel::Deselect) ||
                         command.testFlag(QItemSelectionModel::Toggle);
  // Ctrl and a click would take the selection back. A classic list of one selection has no way to
  // that.
  return takesBack ? QItemSelectionModel::ClearAndSelect : command;
}

void ListBox::keyPressEvent(QKeyEvent* event) {
  // The line that has the focus is not selected yet. The first step selects it and does not pass
  // it.
  if (event->key() == Qt::Key_Down && selectedItems().isEmpty() && count() > 0) {
    setCurrentRow(std::max(0, currentRow()));
    return;
  }
  // The lines have no second column to which these keys could go.
  if (event->key() == Qt::Key_Left || event->key() == Qt::Key_Right) {
    horizontalScrollBar()->triggerAction(event->key() == Qt::Key_Right
                                             ? QAbstractSlider::SliderPageStepAdd
                                             : QAbstractSlider::SliderPageStepSub);
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
  // The page names how far the list scrolls. The library only knows the lines in sight.
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
  painter.scale(Scale(), Scale());
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
  // The mouse presses the page itself, which knows its links. The area is for the keyboard alone.
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
