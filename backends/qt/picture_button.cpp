#include "backends/qt/picture_button.h"

#include <QPainter>
#include <QStyleOptionFocusRect>

#include "backends/qt/scale.h"

namespace qt {

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

}  // namespace qt
