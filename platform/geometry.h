#pragma once

namespace platform {

/// Coordinates on a dialog are pixels of the device that the dialogs were drawn for. A presentation
/// scales them to the screen as a whole, so that everything stays in proportion.
struct Point {
  int x = 0;
  int y = 0;

  friend bool operator==(const Point&, const Point&) = default;
};

/// `right` and `bottom` lie outside.
struct Rect {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;

  [[nodiscard]] constexpr int Width() const { return right - left; }
  [[nodiscard]] constexpr int Height() const { return bottom - top; }
  [[nodiscard]] constexpr bool Contains(Point point) const {
    return point.x >= left && point.x < right && point.y >= top && point.y < bottom;
  }

  friend bool operator==(const Rect&, const Rect&) = default;
};

}  // namespace platform
