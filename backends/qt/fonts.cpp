#include "backends/qt/fonts.h"

#include <QFile>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <array>
#include <cmath>

#include "backends/qt/scale.h"
#include "backends/qt/strings.h"

namespace qt {
namespace {

/// Where the package of the free Tahoma keeps it; the system's own list of fonts has it on some
/// distributions only.
constexpr std::array<const char*, 2> kFontFiles{"/usr/share/wine/fonts/tahoma.ttf",
                                                "/usr/share/fonts/truetype/wine/tahoma.ttf"};

void LoadTahoma() {
  if (QFontDatabase::hasFamily(QStringLiteral("Tahoma"))) {
    return;
  }
  // Not its bold file: the outlines there are no bolder, only set wider. Without it the library
  // makes the regular ones bold.
  for (const char* file : kFontFiles) {
    const QString path = QString::fromLatin1(file);
    if (QFile::exists(path)) {
      QFontDatabase::addApplicationFont(path);
    }
  }
}

}  // namespace

QFont MakeFont(const platform::Font& font) {
  [[maybe_unused]] static const bool kIsLoaded = (LoadTahoma(), true);
  QFont made(ToQString(font.face));
  made.setStyleHint(QFont::SansSerif);
  made.setWeight(static_cast<QFont::Weight>(font.weight));
  // The height is that of a line, where a font is asked for by the size of its letters.
  constexpr int kProbe = 100;
  made.setPixelSize(kProbe);
  const QFontMetricsF metrics(made);
  const double line = metrics.ascent() + metrics.descent();
  const double size = font.height * kScale * kProbe / line;
  made.setPixelSize(std::max(1, static_cast<int>(std::lround(size))));
  return made;
}

}  // namespace qt
