#pragma once

#include <QWidget>

namespace home {

/// The least height and width of what a finger has to hit, in pixels of the desktop.
inline constexpr int kLeastTarget = 44;

/// A window that is narrower is taken for that of a phone.
inline constexpr int kPhoneWidth = 600;

/// Makes the widget large enough for a finger.
inline void MakeTouchable(QWidget& widget) { widget.setMinimumSize(kLeastTarget, kLeastTarget); }

}  // namespace home
