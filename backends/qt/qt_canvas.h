#pragma once

#include <QPainter>

#include "backends/qt/pictures.h"
#include "platform/canvas.h"

namespace qt {

/// Paints on what a painter paints on. Lives for one painting.
class QtCanvas final : public platform::Canvas {
 public:
  /// `client` in pixels of the device; `painter` in those of the desktop.
  QtCanvas(QPainter& painter, const platform::Rect& client, Pictures& pictures);

  [[nodiscard]] platform::Rect GetClientRect() const override { return m_client; }
  /// Lines lie on whole pixels of the screen and are sharp at any scale.
  void DrawLine(platform::Point from, platform::Point to, platform::Color color) override;
  void DrawText(platform::Point at, std::u16string_view text, const platform::Font& font,
                platform::Color color) override;
  void DrawTextIn(const platform::Rect& area, std::u16string_view text, const platform::Font& font,
                  platform::Color color) override;
  void DrawPicture(platform::Point at, int picture) override;
  [[nodiscard]] int GetTextWidth(std::u16string_view text,
                                 const platform::Font& font) const override;

  /// What was written so far, for who cannot see it.
  [[nodiscard]] const QStringList& GetTexts() const { return m_texts; }

 private:
  [[nodiscard]] double Snap(double device) const;
  void DrawLineOfText(const QPointF& at, std::u16string_view text, const platform::Font& font,
                      platform::Color color);

  QPainter& m_painter;
  const platform::Rect m_client;
  Pictures& m_pictures;
  QStringList m_texts;
};

}  // namespace qt
