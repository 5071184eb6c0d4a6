#pragma once

#include <string_view>

#include "platform/canvas.h"

namespace maintenance {

/// Paints the header of a dialog: a rule across its whole width and the title above it. The title
/// is data: a percent sign in it is shown and never read as a format.
void PaintHeader(platform::Canvas& canvas, std::u16string_view title);

}  // namespace maintenance
