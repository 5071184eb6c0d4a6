#pragma once

#include <QWidget>

namespace home {

/// The least height and width of what a finger has to hit, in pixels of the desktop.
inline constexpr int kLeastTarget = 44;

/// Makes the widget large enough for a finger.
inline void MakeTouchable(QWidget& widget) { widget.setMinimumSize(kLeastTarget, kLeastTarget); }

}  // namespace home
