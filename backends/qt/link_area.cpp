#include "backends/qt/link_area.h"

#include <QKeyEvent>
#include <QPainter>

namespace qt {
namespace {

/// Between the link and the frame around it, in pixels of the desktop.
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
  // Left alone, Enter would press the window's default button.
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    if (!event->isAutoRepeat()) {
      click();
    }
    return;
  }
  QAbstractButton::keyPressEvent(event);
}

}  // namespace qt
