#pragma once

#include <QPalette>

namespace qt {

/// Gives the application its one style: that of the library which looks alike on every desktop,
/// with mnemonics underlined. Further calls do nothing.
void ApplyLook();

/// Of all windows. They stay light on a dark desktop too, because what their pages paint has
/// fixed dark colours; what marks a choice has the user's own colour.
[[nodiscard]] QPalette DialogPalette();

}  // namespace qt
