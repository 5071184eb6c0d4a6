#pragma once

#include <QFont>
#include <QPalette>
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <cmath>

#include "platform/canvas.h"

// The look that all windows share: how pixels of the device become pixels of the desktop, fonts,
// style and colours.

namespace qt {

/// Returns the number of desktop pixels, at 100 %, for one pixel of the device. With letters of
/// usual size it is 1.5, which makes a line of text about as high as in other programs of the
/// desktop. If the user has larger letters, everything grows with them. The desktop scales its own
/// pixels in addition.
[[nodiscard]] double Scale();

[[nodiscard]] inline int ToDesktop(double length) {
  return static_cast<int>(std::lround(length * Scale()));
}

/// Rounds edges and not sizes, so controls that touch on the device touch here too.
[[nodiscard]] inline QRect ToDesktop(const platform::Rect& rect) {
  return {QPoint(ToDesktop(rect.left), ToDesktop(rect.top)),
          QPoint(ToDesktop(rect.right) - 1, ToDesktop(rect.bottom) - 1)};
}

/// Returns the pixel of the device under a point of the desktop.
[[nodiscard]] inline platform::Point ToDevice(const QPointF& point) {
  return {static_cast<int>(std::floor(point.x() / Scale())),
          static_cast<int>(std::floor(point.y() / Scale()))};
}

/// Returns how many pixels of the device a length on the desktop takes.
[[nodiscard]] inline int ToDevice(double length) {
  return static_cast<int>(std::ceil(length / Scale()));
}

/// Returns the font, scaled to the desktop. If its face is not installed, returns the nearest face
/// without serifs, in the size that makes a line equally high.
[[nodiscard]] QFont MakeFont(const platform::Font& font);

/// Returns the font of the controls of every dialog.
[[nodiscard]] inline QFont DialogFont() { return MakeFont(platform::Font{}); }

/// Gives the application its one style: the style of the library that looks alike on every desktop,
/// with underlined mnemonics. Takes the scale from the size of the desktop's letters. Called before
/// a window is made.
void ApplyLook();

/// Draws buttons, boxes and tabs of all windows but message boxes as disabled ones, and gives those
/// windows the cursor that says "busy", until it is called with false. The controls themselves stay
/// as they are: for a page, and for the focus, nothing has changed.
void DrawAsBusy(bool isBusy);

/// Returns the colours of all windows. Windows are light even on a dark desktop, because pages
/// paint in fixed dark colours. Marks of a choice have the user's own colour.
[[nodiscard]] QPalette DialogPalette();

}  // namespace qt
