#pragma once

#include <cstdint>
#include <string_view>

namespace platform {

// Coordinates on a dialog are pixels of the device that the dialogs were drawn for. A presentation
// scales the dialog to the screen as a whole, and so keeps all proportions.

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

struct Color {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;

  friend bool operator==(const Color&, const Color&) = default;
};

inline constexpr int kNormalWeight = 400;
inline constexpr int kSemiboldWeight = 600;
inline constexpr int kBoldWeight = 700;

struct Font {
  std::u16string_view face = u"Tahoma";
  int height = 13;  ///< Of a line of text, in pixels of the device.
  int weight = kNormalWeight;

  friend bool operator==(const Font&, const Font&) = default;
};

/// The surface on which a dialog paints. It lives for one painting.
class Canvas {
 public:
  Canvas() = default;
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;
  virtual ~Canvas() = default;

  /// Returns the area that can be painted. Its left top is at (0, 0).
  [[nodiscard]] virtual Rect GetClientRect() const = 0;

  /// Draws a line that is one pixel wide and includes both ends.
  virtual void DrawLine(Point from, Point to, Color color) = 0;

  /// Draws one line of text with its left top at `at`. The text is data: nothing in it is
  /// interpreted.
  virtual void DrawText(Point at, std::u16string_view text, const Font& font, Color color) = 0;

  /// Draws one line of text in `area` and cuts it off at the edges.
  virtual void DrawTextIn(const Rect& area, std::u16string_view text, const Font& font,
                          Color color) = 0;

  /// Draws the picture of that number in its own size, with its left top at `at`.
  virtual void DrawPicture(Point at, int picture) = 0;

  [[nodiscard]] virtual int GetTextWidth(std::u16string_view text, const Font& font) const = 0;
};

}  // namespace platform
