#pragma once

#include <QFont>

#include "platform/canvas.h"

namespace qt {

/// The font, scaled to the desktop. Where its face is not installed, the nearest one without
/// serifs, in the size that makes a line equally high.
[[nodiscard]] QFont MakeFont(const platform::Font& font);

/// Of the controls of every dialog.
[[nodiscard]] inline QFont DialogFont() { return MakeFont(platform::Font{}); }

}  // namespace qt
