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

namespace qt {

/// Where pictures come from: the bytes of an SVG or PNG file for the number of a picture, none for
/// a picture that is not there. They live as long as the source.
struct PictureSource {
  std::function<std::span<const std::byte>(int picture)> getBytes;
};

/// The pictures, read once each. Belongs to the user-interface thread.
class Pictures {
 public:
  explicit Pictures(PictureSource source);

  /// In pixels of the device; empty where there is no such picture.
  [[nodiscard]] QSizeF GetSize(int picture);

  /// Paints it in its own size, scaled as the painter is, at the resolution of what is painted on.
  void Draw(QPainter& painter, const QPointF& at, int picture);

 private:
  struct Picture {
    std::unique_ptr<QSvgRenderer> drawing;  ///< Null for one made of pixels.
    QImage image;
    QSizeF size;
  };
  [[nodiscard]] Picture& Find(int picture);

  PictureSource m_source;
  std::map<int, Picture> m_pictures;
};

}  // namespace qt
