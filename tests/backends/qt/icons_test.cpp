#include "backends/qt/icons.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QSvgRenderer>

#include "resources/pictures.h"

namespace {

QImage Shown(const QIcon& icon) { return icon.pixmap(48, 48).toImage(); }

TEST(Icons, ShowAnAppletsDrawing) {
  const QImage image = Shown(qt::IconOf(
      R"(<svg xmlns="http://www.w3.org/2000/svg" width="8" height="8"><rect width="8" height="8" fill="#f00"/></svg>)"));
  ASSERT_EQ(image.width(), 48);
  EXPECT_EQ(image.pixelColor(24, 24), QColor(255, 0, 0));
}

TEST(Icons, ArePlainIfThereIsNoDrawing) {
  const QImage plain = Shown(qt::PlainIcon());
  ASSERT_FALSE(plain.isNull());
  EXPECT_EQ(Shown(qt::IconOf("")), plain);
  EXPECT_EQ(Shown(qt::IconOf("This is no picture.")), plain);
  EXPECT_EQ(Shown(qt::IconOf("<svg")), plain);
}

TEST(Icons, OfOurWindowsAreThereInEverySize) {
  EXPECT_EQ(qt::OwnIcon().pixmap(16, 16).width(), 16);
  EXPECT_EQ(qt::OwnIcon().pixmap(256, 256).width(), 256);
}

TEST(Icons, EveryPictureCanBeDrawn) {
  for (const int number :
       {resources::kAppletIcon, resources::kMakerPicture, resources::kHelpPicture,
        resources::kWebSitePicture, resources::kProductPicture}) {
    const resources::Picture& picture = *resources::FindPicture(number);
    QSvgRenderer renderer(QByteArray(reinterpret_cast<const char*>(picture.svg.data()),
                                     static_cast<qsizetype>(picture.svg.size())));
    ASSERT_TRUE(renderer.isValid()) << number;
    EXPECT_EQ(renderer.defaultSize(), QSize(picture.width, picture.height)) << number;
  }
}

}  // namespace
