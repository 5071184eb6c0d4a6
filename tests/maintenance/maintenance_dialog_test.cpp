#include "maintenance/maintenance_dialog.h"

#include <gtest/gtest.h>

#include "backends/headless/stroke_canvas.h"

namespace {

using Kind = headless::PaintedStroke::Kind;

TEST(PaintHeader, RulesTheWholeWidthAndWritesTheTitleAboveIt) {
  headless::StrokeCanvas canvas({0, 0, 240, 300});
  maintenance::PaintHeader(canvas, u"Test results");
  const auto strokes = canvas.TakeStrokes();
  ASSERT_EQ(strokes.size(), 2U);
  EXPECT_EQ(strokes[0].kind, Kind::kLine);
  EXPECT_EQ(strokes[0].area, (platform::Rect{0, 26, 239, 26})) << "Both ends are painted.";
  EXPECT_EQ(strokes[1].kind, Kind::kText);
  EXPECT_EQ(strokes[1].text, u"Test results");
  EXPECT_EQ(strokes[1].area.left, 5);
  EXPECT_EQ(strokes[1].area.top, 6);
  EXPECT_EQ(strokes[1].font, (platform::Font{u"Tahoma", 13, 700}));
  EXPECT_EQ(strokes[1].color, (platform::Color{0, 0, 128}));
}

TEST(PaintHeader, ShowsPercentSignsAndInterpretsNone) {
  headless::StrokeCanvas canvas({0, 0, 100, 100});
  maintenance::PaintHeader(canvas, u"100% %s%n%d%%");
  EXPECT_EQ(canvas.TakeStrokes()[1].text, u"100% %s%n%d%%");
}

TEST(PaintHeader, AnEmptyTitleIsNoFault) {
  headless::StrokeCanvas canvas({0, 0, 100, 100});
  maintenance::PaintHeader(canvas, u"");
  EXPECT_EQ(canvas.TakeStrokes()[1].text, u"");
}

}  // namespace
