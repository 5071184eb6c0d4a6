#include "host/home/level_meter.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QImage>

#include "host/home/access.h"
#include "host/home/wave_picture.h"
#include "tests/support/signals.h"
#include "voicemath/take_quality.h"

namespace {

using home::LevelMeter;
using home::WavePicture;

/// Counts pixels of the colour of selections.
int CountFilled(QWidget& widget, const QRect& area) {
  const QImage image = widget.grab().toImage();
  const QColor filled = widget.palette().color(QPalette::Highlight);
  int count = 0;
  for (int y = area.top(); y <= area.bottom(); ++y) {
    for (int x = area.left(); x <= area.right(); ++x) {
      count += image.pixelColor(x, y) == filled ? 1 : 0;
    }
  }
  return count;
}

TEST(LevelMeter, FillsFurtherTheLouderItIsFromTheSideAtWhichReadingBegins) {
  LevelMeter meter(nullptr);
  meter.resize(200, 40);
  const QRect left(0, 0, 100, 15);
  const QRect right(100, 0, 100, 15);
  EXPECT_EQ(CountFilled(meter, meter.rect()), 0);
  meter.SetLevel(-40);
  const int soft = CountFilled(meter, left);
  EXPECT_GT(soft, 0);
  meter.SetLevel(-36);
  EXPECT_GT(CountFilled(meter, left), soft);
  EXPECT_EQ(CountFilled(meter, right), 0);
  meter.setLayoutDirection(Qt::RightToLeft);
  EXPECT_GT(CountFilled(meter, right), soft);
  EXPECT_EQ(CountFilled(meter, left), 0);
}

TEST(LevelMeter, RemembersTheHighestLevelUntilItIsCleared) {
  LevelMeter meter(nullptr);
  meter.SetLevel(-10);
  meter.SetLevel(-50);
  EXPECT_EQ(meter.GetLevel(), -50);
  EXPECT_EQ(meter.GetHighest(), -10);
  meter.Clear();
  EXPECT_EQ(meter.GetHighest(), voicemath::kLowestPeakDb);
}

TEST(LevelMeter, SaysInWordsWhetherItIsTooSoftOrTooLoud) {
  LevelMeter meter(nullptr);
  QAccessibleInterface* const access = QAccessible::queryAccessibleInterface(&meter);
  ASSERT_NE(access, nullptr);
  EXPECT_EQ(access->role(), QAccessible::Graphic);
  EXPECT_EQ(access->text(QAccessible::Name), QStringLiteral("Level of the microphone"));
  EXPECT_EQ(access->text(QAccessible::Description), QStringLiteral("Nothing is heard."));
  meter.SetLevel(-45);
  EXPECT_EQ(access->text(QAccessible::Description), QStringLiteral("Too soft"));
  meter.SetLevel(-20);
  EXPECT_EQ(access->text(QAccessible::Description), QStringLiteral("Good"));
  meter.SetLevel(0);
  EXPECT_EQ(access->text(QAccessible::Description), QStringLiteral("Too loud"));
}

TEST(WavePicture, MarksThePartThatIsKeptAndSaysWhichItIs) {
  WavePicture picture(nullptr);
  picture.resize(300, 100);
  QAccessibleInterface* const access = QAccessible::queryAccessibleInterface(&picture);
  EXPECT_EQ(access->role(), QAccessible::Graphic);
  EXPECT_EQ(access->text(QAccessible::Name), QStringLiteral("The recording"));
  EXPECT_EQ(CountFilled(picture, picture.rect()), 0);
  picture.SetWave(support::Noise(33075, 9000, 1), {11025, 22049});
  EXPECT_GT(CountFilled(picture, QRect(110, 10, 80, 60)), 1000);
  EXPECT_EQ(CountFilled(picture, QRect(0, 0, 90, 100)), 0);
  EXPECT_EQ(CountFilled(picture, QRect(210, 0, 90, 100)), 0);
  EXPECT_EQ(access->text(QAccessible::Description),
            QStringLiteral("1.0 of 3.0 seconds are kept, from second 1.0 on. They are marked."));
  picture.Clear();
  EXPECT_EQ(CountFilled(picture, picture.rect()), 0);
  EXPECT_EQ(access->text(QAccessible::Description), QString());
}

TEST(WavePicture, DrawsASoftRecordingLowerThanALoudOneAndOneOfASampleAsWell) {
  WavePicture picture(nullptr);
  picture.resize(300, 100);
  picture.SetWave(support::Noise(33075, 9000, 1), {0, 33074});
  const int loud = CountFilled(picture, QRect(10, 0, 280, 70));
  picture.SetWave(support::Noise(33075, 300, 1), {0, 33074});
  EXPECT_LT(CountFilled(picture, QRect(10, 0, 280, 70)), loud / 4);
  picture.SetWave({-32768}, {0, 0});
  EXPECT_GT(CountFilled(picture, picture.rect()), 0);
}

TEST(LiveLabel, IsANotificationNamedByItsText) {
  home::LiveLabel label(nullptr);
  label.Announce(QStringLiteral("Speak now"));
  EXPECT_EQ(label.text(), QStringLiteral("Speak now"));
  QAccessibleInterface* const access = QAccessible::queryAccessibleInterface(&label);
  EXPECT_EQ(access->role(), QAccessible::Notification);
  EXPECT_EQ(access->text(QAccessible::Name), QStringLiteral("Speak now"));
}

}  // namespace
