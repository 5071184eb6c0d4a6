#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QTabBar>
#include <QTabWidget>
#include <cmath>
#include <functional>

#include "resources/dialogs.h"
#include "tests/backends/qt/page_machine.h"
#include "tests/backends/qt/user.h"

namespace {

using support::User;

/// What stands around the tag list and around the page, at the scale of the desktop with which this
/// program was started (QT_SCALE_FACTOR).
class Edges : public testing::Test {
 protected:
  void SetUp() override {
    const QByteArray wanted = qgetenv("QT_SCALE_FACTOR");
    ASSERT_EQ(qApp->devicePixelRatio(), wanted.isEmpty() ? 1.0 : wanted.toDouble());
  }

  void Run(const std::function<void()>& story) {
    m_user.Soon([&story] {
      User::GetWindow()->activateWindow();
      QApplication::processEvents();
      story();
      User::GetWindow()->reject();
    });
    m_machine.RunSheet();
  }

  void TakePicture() {
    QApplication::processEvents();
    m_picture = User::GetWindow()->grab().toImage();
    ASSERT_EQ(m_picture.devicePixelRatio(), qApp->devicePixelRatio());
  }

  /// The pixels of an area of the window.
  [[nodiscard]] QRect ToPixels(const QRect& area) const {
    const auto scaled = [this](int place) {
      return static_cast<int>(std::lround(place * m_picture.devicePixelRatio()));
    };
    const QPoint begin(scaled(area.x()), scaled(area.y()));
    const QPoint end(scaled(area.x() + area.width()), scaled(area.y() + area.height()));
    return {begin, end - QPoint(1, 1)};
  }
  /// Darker than the page, and than the white of a list.
  [[nodiscard]] bool IsInked(int x, int y) const {
    constexpr int kLight = 200;
    return m_picture.pixelColor(x, y).lightness() < kLight;
  }
  /// Whether a line runs through the area from its top to its bottom.
  [[nodiscard]] bool HasUpright(const QRect& area) const {
    const QRect pixels = ToPixels(area);
    return HasLine(pixels.left(), pixels.right(), pixels.top(), pixels.bottom(),
                   [this](int x, int y) { return IsInked(x, y); });
  }
  /// Whether one does from its left to its right.
  [[nodiscard]] bool HasLevel(const QRect& area) const {
    const QRect pixels = ToPixels(area);
    return HasLine(pixels.top(), pixels.bottom(), pixels.left(), pixels.right(),
                   [this](int y, int x) { return IsInked(x, y); });
  }
  /// Whether one of the lines is inked from its first pixel to its last.
  template <typename IsInkedAt>
  [[nodiscard]] static bool HasLine(int firstLine, int lastLine, int first, int last,
                                    const IsInkedAt& isInkedAt) {
    for (int line = firstLine; line <= lastLine; ++line) {
      int at = first;
      while (at <= last && isInkedAt(line, at)) {
        ++at;
      }
      if (at > last) {
        return true;
      }
    }
    return false;
  }

  void ExpectListHasItsEdges() const {
    const QWidget& list = *User::FindList(resources::kTagListId);
    const QRect place(list.mapTo(User::GetWindow(), QPoint()), list.size());
    EXPECT_TRUE(HasUpright({place.left(), place.top(), 1, place.height()}));
    EXPECT_TRUE(HasUpright({place.right(), place.top(), 1, place.height()}));
    EXPECT_TRUE(HasLevel({place.left(), place.top(), place.width(), 1}));
    EXPECT_TRUE(HasLevel({place.left(), place.bottom(), place.width(), 1}));
  }

  support::PageMachine m_machine;
  User m_user;
  QImage m_picture;
};

TEST_F(Edges, TheListHasFourOfThemWithTheFocusAndWithout) {
  Run([this] {
    ASSERT_FALSE(User::FindList(resources::kTagListId)->hasFocus());
    TakePicture();
    ExpectListHasItsEdges();
    const QImage resting = m_picture;
    User::FindList(resources::kTagListId)->setFocus();
    TakePicture();
    ExpectListHasItsEdges();
    EXPECT_NE(m_picture, resting) << "The focus can be seen.";
  });
}

TEST_F(Edges, ThePageHasFourOfThem) {
  Run([this] {
    TakePicture();
    const auto& tabs = *User::GetWindow()->findChild<QTabWidget*>("tabs");
    const QWidget& page = *tabs.currentWidget();
    constexpr int kNear = 4;
    const QRect place =
        QRect(page.mapTo(User::GetWindow(), QPoint()), page.size()).adjusted(-kNear, -kNear, 0, 0);
    EXPECT_TRUE(HasUpright({place.left(), place.top() + kNear, kNear, place.height() - kNear}));
    EXPECT_TRUE(
        HasUpright({place.right() + 1, place.top() + kNear, kNear, place.height() - kNear}));
    EXPECT_TRUE(HasLevel({place.left() + kNear, place.bottom() + 1, place.width() - kNear, kNear}));
    const QRect bar(tabs.tabBar()->mapTo(User::GetWindow(), QPoint()), tabs.tabBar()->size());
    EXPECT_TRUE(HasLevel({bar.right() + 1, place.top(), place.right() - bar.right(), kNear}));
  });
}

}  // namespace
