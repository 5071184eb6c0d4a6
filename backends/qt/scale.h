#pragma once

#include <QPointF>
#include <QRect>
#include <QRectF>
#include <cmath>

#include "platform/canvas.h"

namespace qt {

/// How many pixels of the desktop, at 100 %, stand for one of the device. With it a line of text is
/// about as high as in other programs of the desktop. Desktops scale their own pixels beyond that.
inline constexpr double kScale = 1.5;

[[nodiscard]] inline int ToDesktop(double length) {
  return static_cast<int>(std::lround(length * kScale));
}

/// Edges are rounded, not sizes, so that controls which touch on the device touch here.
[[nodiscard]] inline QRect ToDesktop(const platform::Rect& rect) {
  return {QPoint(ToDesktop(rect.left), ToDesktop(rect.top)),
          QPoint(ToDesktop(rect.right) - 1, ToDesktop(rect.bottom) - 1)};
}

/// The pixel of the device under a point of the desktop.
[[nodiscard]] inline platform::Point ToDevice(const QPointF& point) {
  return {static_cast<int>(std::floor(point.x() / kScale)),
          static_cast<int>(std::floor(point.y() / kScale))};
}

/// Pixels of the device that a length on the desktop takes.
[[nodiscard]] inline int ToDevice(double length) {
  return static_cast<int>(std::ceil(length / kScale));
}

}  // namespace qt
