#pragma once

#include "platform/geometry.h"
#include "resources/dialog_template.h"

namespace platform {

/// The one place where dialog units become pixels of the device: its dialog font is 6 pixels wide
/// on average and 13 high. Rounded to the nearest pixel, as the device does.
[[nodiscard]] constexpr Rect ToPixels(const resources::DialogRect& rect) {
  constexpr int kFontWidth = 6;
  constexpr int kFontHeight = 13;
  constexpr auto kAcross = [](int units) { return (units * kFontWidth + 2) / 4; };
  constexpr auto kDown = [](int units) { return (units * kFontHeight + 4) / 8; };
  return {kAcross(rect.x), kDown(rect.y), kAcross(rect.x + rect.width),
          kDown(rect.y + rect.height)};
}

}  // namespace platform
