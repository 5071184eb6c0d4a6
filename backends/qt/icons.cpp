#include "backends/qt/icons.h"

#include <QApplication>
#include <QPainter>
#include <QPixmap>
#include <QStyle>
#include <QSvgRenderer>
#include <array>

#include "resources/pictures.h"

namespace qt {
namespace {

constexpr std::array kSizes = {16, 22, 24, 32, 48, 64, 96, 128, 256};  // pixels

QByteArray BytesOf(const resources::Picture& picture) {
  // The bytes live as long as the program.
  return QByteArray::fromRawData(reinterpret_cast<const char*>(picture.svg.data()),
                                 static_cast<qsizetype>(picture.svg.size()));
}

/// Draws the picture as large as it fits into a square, in its own proportions.
QPixmap Render(QSvgRenderer& renderer, int size) {
  QPixmap pixmap(size, size);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  renderer.setAspectRatioMode(Qt::KeepAspectRatio);
  renderer.render(&painter, QRectF(0, 0, size, size));
  return pixmap;
}

}  // namespace

QIcon IconOf(const QByteArray& svg) {
  if (!svg.contains("<svg")) {
    return PlainIcon();  // A compressed picture too, since the library unpacks it without a limit.
  }
  QSvgRenderer renderer(svg);
  if (!renderer.isValid()) {
    return PlainIcon();
  }
  QIcon icon;
  for (const int size : kSizes) {
    icon.addPixmap(Render(renderer, size));
  }
  return icon;
}

QIcon PlainIcon() { return QApplication::style()->standardIcon(QStyle::SP_FileIcon); }

QIcon OwnIcon() {
  QIcon icon;
  // Small sizes have pictures of their own, with fewer lines.
  for (const int size : kSizes) {
    QSvgRenderer renderer(BytesOf(*resources::FindPictureFor(resources::kAppletIcon, size)));
    icon.addPixmap(Render(renderer, size));
  }
  return icon;
}

}  // namespace qt
