#pragma once

#include <vector>

#include "backends/headless/headless_dialog.h"
#include "platform/canvas.h"

namespace headless {

/// Returns the width of a text if there is no font: six pixels for each UTF-16 unit.
[[nodiscard]] int MeasureText(std::u16string_view text);

/// A canvas that remembers what a dialog paints on it.
class StrokeCanvas final : public platform::Canvas {
 public:
  explicit StrokeCanvas(const platform::Rect& client) : m_client(client) {}

  [[nodiscard]] std::vector<PaintedStroke> TakeStrokes() { return std::move(m_strokes); }

  [[nodiscard]] platform::Rect GetClientRect() const override { return m_client; }
  void DrawLine(platform::Point from, platform::Point to, platform::Color color) override;
  void DrawText(platform::Point at, std::u16string_view text, const platform::Font& font,
                platform::Color color) override;
  void DrawTextIn(const platform::Rect& area, std::u16string_view text, const platform::Font& font,
                  platform::Color color) override;
  void DrawPicture(platform::Point at, int picture) override;
  [[nodiscard]] int GetTextWidth(std::u16string_view text,
                                 const platform::Font& font) const override;

 private:
  platform::Rect m_client;
  std::vector<PaintedStroke> m_strokes;
};

}  // namespace headless
