#include "backends/headless/stroke_canvas.h"

namespace headless {

using Kind = PaintedStroke::Kind;

namespace {
/// There are no letters here, so each has the same width. What matters is that a longer text is
/// wider, and that it is as wide each time.
constexpr int kUnitWidth = 6;
}  // namespace

int MeasureText(std::u16string_view text) { return kUnitWidth * static_cast<int>(text.size()); }

void StrokeCanvas::DrawLine(platform::Point from, platform::Point to, platform::Color color) {
  m_strokes.push_back({Kind::kLine, {from.x, from.y, to.x, to.y}, {}, {}, color, 0});
}

void StrokeCanvas::DrawText(platform::Point at, std::u16string_view text,
                            const platform::Font& font, platform::Color color) {
  m_strokes.push_back({Kind::kText,
                       {at.x, at.y, at.x + GetTextWidth(text, font), at.y + font.height},
                       std::u16string(text),
                       font,
                       color,
                       0});
}

void StrokeCanvas::DrawTextIn(const platform::Rect& area, std::u16string_view text,
                              const platform::Font& font, platform::Color color) {
  m_strokes.push_back({Kind::kText, area, std::u16string(text), font, color, 0});
}

void StrokeCanvas::DrawPicture(platform::Point at, int picture) {
  m_strokes.push_back({Kind::kPicture, {at.x, at.y, at.x, at.y}, {}, {}, {}, picture});
}

int StrokeCanvas::GetTextWidth(std::u16string_view text, const platform::Font& /*font*/) const {
  return MeasureText(text);
}

}  // namespace headless
