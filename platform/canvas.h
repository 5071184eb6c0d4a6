#pragma once

#include <cstdint>
#include <string_view>

#include "platform/geometry.h"

namespace platform {

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

/// What a window paints on. Lives for one painting.
class Canvas {
 public:
  Canvas() = default;
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;
  virtual ~Canvas() = default;

  /// The area that can be painted, its left top at (0, 0).
  [[nodiscard]] virtual Rect GetClientRect() const = 0;

  /// A line one pixel wide, both ends included.
  virtual void DrawLine(Point from, Point to, Color color) = 0;

  /// One line of text, its left top at `at`. The text is data: nothing in it is interpreted.
  virtual void DrawText(Point at, std::u16string_view text, const Font& font, Color color) = 0;

  /// One line of text in `area`, cut off at its edges.
  virtual void DrawTextIn(const Rect& area, std::u16string_view text, const Font& font,
                          Color color) = 0;

  /// The picture of that number in its own size, its left top at `at`.
  virtual void DrawPicture(Point at, int picture) = 0;

  [[nodiscard]] virtual int GetTextWidth(std::u16string_view text, const Font& font) const = 0;
};

}  // namespace platform
