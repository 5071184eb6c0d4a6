#include "backends/qt/combo_box.h"

#include <QAbstractItemView>
#include <QWheelEvent>

namespace qt {

ComboBox::ComboBox(QWidget* parent) : QComboBox(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setInsertPolicy(NoInsert);
  // The box keeps the place that the dialog gives it, however long its items are.
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

}  // namespace qt
