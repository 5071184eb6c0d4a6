#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QImage>

#include "backends/qt/look.h"
#include "backends/qt/qt_canvas.h"
#include "tests/backends/qt/page_machine.h"

namespace {

constexpr platform::Color kBlack{};
constexpr platform::Rect kClient{0, 0, 240, 271};

/// A page painted at one scale of the desktop.
class Painting : public testing::TestWithParam<double> {
 protected:
  Painting() {
    m_image.setDevicePixelRatio(GetParam());
    m_image.fill(Qt::white);
  }

  void Paint(const std::function<void(platform::Canvas&)>& paint) {
    QPainter painter(&m_image);
    qt::QtCanvas canvas(painter, kClient, m_pictures);
    paint(canvas);
  }
  /// Rows that hold a pixel other than white, and how many colours there are in all.
  [[nodiscard]] std::vector<int> GetInkedRows() const {
    std::vector<int> rows;
    for (int y = 0; y < m_image.height(); ++y) {
      for (int x = 0; x < m_image.width(); ++x) {
        if (m_image.pixelColor(x, y) != Qt::white) {
          rows.push_back(y);
          break;
        }
      }
    }
    return rows;
  }
  [[nodiscard]] int Scaled(double device) const {
    return static_cast<int>(std::round(device * qt::Scale() * GetParam()));
  }

  QImage m_image{static_cast<int>(240 * qt::Scale() * GetParam()),
                 static_cast<int>(271 * qt::Scale() * GetParam()), QImage::Format_RGB32};
  qt::Pictures m_pictures{support::TestPictures()};
};

TEST_P(Painting, LinesAreSharpWholeAndAlike) {
  Paint([](platform::Canvas& canvas) { canvas.DrawLine({0, 26}, {239, 26}, kBlack); });
  const std::vector<int> rows = GetInkedRows();
  ASSERT_EQ(rows.size(), static_cast<std::size_t>(Scaled(1)));
  EXPECT_EQ(rows.front(), Scaled(26));
  for (int x = 0; x < m_image.width(); ++x) {
    ASSERT_EQ(m_image.pixelColor(x, rows.front()), Qt::black) << x;
  }
}

TEST_P(Painting, ALineIncludesBothItsEnds) {
  Paint([](platform::Canvas& canvas) { canvas.DrawLine({8, 54}, {8, 156}, kBlack); });
  const std::vector<int> rows = GetInkedRows();
  EXPECT_EQ(rows.front(), Scaled(54));
  EXPECT_EQ(rows.back(), Scaled(157) - 1);
}

TEST_P(Painting, APictureHasItsOwnSizeAndSharpEdges) {
  Paint([](platform::Canvas& canvas) { canvas.DrawPicture({8, 40}, 1); });
  const int scale = Scaled(1000) / 1000;
  const bool isWhole = scale * 1000 == Scaled(1000);
  const std::vector<int> rows = GetInkedRows();
  EXPECT_EQ(rows.front(), Scaled(40));
  EXPECT_NEAR(rows.back() + 1, Scaled(50), isWhole ? 0 : 1);
  EXPECT_EQ(m_image.pixelColor(Scaled(18), Scaled(45)), Qt::blue);
  EXPECT_EQ(m_image.pixelColor(Scaled(30), Scaled(45)), Qt::white);
}

TEST_P(Painting, APictureOfPixelsIsScaled) {
  Paint([](platform::Canvas& canvas) { canvas.DrawPicture({8, 40}, 2); });
  EXPECT_EQ(m_image.pixelColor(Scaled(10), Scaled(42)), Qt::red);
  EXPECT_EQ(m_image.pixelColor(Scaled(15), Scaled(42)), Qt::white);
}

TEST_P(Painting, APictureThatIsNotThereIsNotPainted) {
  Paint([](platform::Canvas& canvas) { canvas.DrawPicture({8, 40}, 4711); });
  EXPECT_TRUE(GetInkedRows().empty());
}

TEST_P(Painting, ATextStandsInItsLine) {
  const platform::Font bold{.face = u"Tahoma", .height = 13, .weight = platform::kBoldWeight};
  Paint([&](platform::Canvas& canvas) { canvas.DrawText({5, 6}, u"Agjy", bold, {0, 0, 128}); });
  const std::vector<int> rows = GetInkedRows();
  ASSERT_FALSE(rows.empty());
  EXPECT_GE(rows.front(), Scaled(6));
  EXPECT_LE(rows.back(), Scaled(20));
  EXPECT_GE(static_cast<double>(rows.size()), Scaled(8)) << "In the resolution of the screen.";
}

TEST_P(Painting, ATextIsCutOffAtTheEdgesOfItsArea) {
  const platform::Rect area{10, 10, 60, 20};
  Paint([&](platform::Canvas& canvas) {
    canvas.DrawTextIn(area, u"gggggggggggggggggggggggggggggg\ng", {}, kBlack);
  });
  const std::vector<int> rows = GetInkedRows();
  EXPECT_LT(rows.back(), Scaled(20));
  for (int y = 0; y < m_image.height(); ++y) {
    ASSERT_EQ(m_image.pixelColor(Scaled(60), y), Qt::white);
  }
}

INSTANTIATE_TEST_SUITE_P(Scales, Painting, testing::Values(1.0, 1.5, 2.0));

TEST(Fonts, ALineIsAsHighAsTheFontSays) {
  for (const int height : {12, 13, 14}) {
    const QFontMetricsF metrics(qt::MakeFont({.face = u"Tahoma", .height = height}));
    EXPECT_NEAR(metrics.ascent() + metrics.descent(), height * qt::Scale(), 1.5);
  }
}

TEST(Fonts, AFaceThatIsNotThereHasAnotherOfTheSameHeight) {
  const QFontMetricsF metrics(qt::MakeFont({.face = u"No Such Face", .height = 13}));
  EXPECT_NEAR(metrics.ascent() + metrics.descent(), 13 * qt::Scale(), 1.5);
}

TEST(Fonts, BoldIsBold) {
  const QFont bold = qt::MakeFont({.face = u"Tahoma", .height = 13, .weight = 700});
  EXPECT_TRUE(QFontInfo(bold).bold());
  EXPECT_GT(QFontMetricsF(bold).horizontalAdvance("mmmm"), 0);
}

TEST(Look, WhatPagesPaintIsLegibleOnTheSurface) {
  qApp->setPalette(QPalette(QColor(40, 40, 40), QColor(20, 20, 20)));
  const QPalette palette = qt::DialogPalette();
  EXPECT_GT(palette.color(QPalette::Window).lightness(), 230) << "On a dark desktop too.";
  EXPECT_LT(palette.color(QPalette::WindowText).lightness(), 60);
}

}  // namespace
