#include "backends/qt/pictures.h"

#include <QByteArray>
#include <utility>

namespace qt {

Pictures::Pictures(PictureSource source) : m_source(std::move(source)) {}

QSizeF Pictures::GetSize(int picture) { return Find(picture).size; }

void Pictures::Draw(QPainter& painter, const QPointF& at, int picture) {
  const Picture& found = Find(picture);
  const QRectF area(at, found.size);
  if (found.drawing) {
    found.drawing->render(&painter, area);
  } else if (!found.image.isNull()) {
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(area, found.image);
  }
}

Pictures::Picture& Pictures::Find(int picture) {
  const auto [place, isNew] = m_pictures.try_emplace(picture);
  Picture& found = place->second;
  if (!isNew || !m_source.getBytes) {
    return found;
  }
  const std::span<const std::byte> bytes = m_source.getBytes(picture);
  const QByteArray data(static_cast<const char*>(static_cast<const void*>(bytes.data())),
                        static_cast<qsizetype>(bytes.size()));
  if (found.image.loadFromData(data, "PNG")) {
    found.size = found.image.size();
  } else if (!data.isEmpty()) {
    auto drawing = std::make_unique<QSvgRenderer>(data);
    if (drawing->isValid()) {
      found.size = drawing->defaultSize();
      found.drawing = std::move(drawing);
    }
  }
  return found;
}

}  // namespace qt
