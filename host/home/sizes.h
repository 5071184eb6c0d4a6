#pragma once

#include <QFont>
#include <QWidget>

namespace home {

/// The least height and width of what a finger has to hit, in pixels of the desktop.
inline constexpr int kLeastTarget = 44;

/// A window that is narrower is taken for that of a phone.
inline constexpr int kPhoneWidth = 600;

/// Makes the widget large enough for a finger.
inline void MakeTouchable(QWidget& widget) { widget.setMinimumSize(kLeastTarget, kLeastTarget); }

/// Makes the letters of the widget bold, and larger by that factor.
inline void Enlarge(QWidget& widget, double growth) {
  QFont font = widget.font();
  font.setPointSizeF(font.pointSizeF() * growth);
  font.setBold(true);
  widget.setFont(font);
}

}  // namespace home
