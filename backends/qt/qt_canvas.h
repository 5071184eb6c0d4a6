#pragma once

#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QSizeF>
#include <QSvgRenderer>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <span>

#include "platform/canvas.h"

namespace qt {

/// The source of pictures. It returns the bytes of an SVG or PNG file for the number of a picture,
/// and no bytes if there is no such picture. The bytes live as long as the source.
struct PictureSource {
  std::function<std::span<const std::byte>(int picture)> getBytes;
};

/// The pictures. Each is read once. Belongs to the user-interface thread.
class Pictures {
 public:
  explicit Pictures(PictureSource source);

  /// Returns the size in pixels of the device. Returns an empty size if there is no such picture.
  [[nodiscard]] QSizeF GetSize(int picture);

  /// Paints the picture in its own size, at the scale of the painter and the resolution of its
  /// surface.
  void Draw(QPainter& painter, const QPointF& at, int picture);

 private:
  struct Picture {
    std::unique_ptr<QSvgRenderer> drawing;  ///< Null for a picture made of pixels.
    QImage image;
    QSizeF size;
  };
  [[nodiscard]] Picture& Find(int picture);

  PictureSource m_source;
  std::map<int, Picture> m_pictures;
};

/// The canvas over a painter of the library. It lives for one painting.
class QtCanvas final : public platform::Canvas {
 public:
  /// `client` is in pixels of the device, `painter` in pixels of the desktop.
  QtCanvas(QPainter& painter, const platform::Rect& client, Pictures& pictures);

  [[nodiscard]] platform::Rect GetClientRect() const override { return m_client; }
  /// Puts lines on whole pixels of the screen, so they are sharp at any scale.
  void DrawLine(platform::Point from, platform::Point to, platform::Color color) override;
  void DrawText(platform::Point at, std::u16string_view text, const platform::Font& font,
                platform::Color color) override;
  void DrawTextIn(const platform::Rect& area, std::u16string_view text, const platform::Font& font,
                  platform::Color color) override;
  void DrawPicture(platform::Point at, int picture) override;
  [[nodiscard]] int GetTextWidth(std::u16string_view text,
                                 const platform::Font& font) const override;

  /// Returns the texts painted so far, for a screen reader.
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
