#include <gtest/gtest.h>

#include <QApplication>
#include <QScreen>
#include <QScrollArea>
#include <QTabWidget>
#include <QTest>
#include <functional>

#include "backends/qt/look.h"
#include "resources/dialogs.h"
#include "tests/backends/qt/page_machine.h"
#include "tests/backends/qt/user.h"

namespace {

using namespace resources;
using support::User;

/// The letters of the desktop while a test runs.
class Letters {
 public:
  explicit Letters(int points) {
    QFont font = m_before;
    font.setPointSize(points);
    QApplication::setFont(font);
  }
  Letters(const Letters&) = delete;
  Letters& operator=(const Letters&) = delete;
  ~Letters() {
    QApplication::setFont(m_before);
    qt::ApplyLook();
  }

 private:
  const QFont m_before = QApplication::font();
};

/// Runs the sheet of the Learning page on a desktop with letters of that size.
void RunSheet(int points, const std::function<void(QWidget& window)>& story) {
  const Letters letters(points);
  support::PageMachine machine;
  User user;
  user.Soon([&story] {
    QWidget& window = *User::GetWindow();
    window.activateWindow();
    QApplication::processEvents();
    story(window);
    User::GetWindow()->reject();
  });
  machine.RunSheet();
}

/// Returns the part of a control that the user can see, as the control has its coordinates.
QRect SeenPart(const QWidget& control) { return control.visibleRegion().boundingRect(); }

TEST(LettersOfTheDesktop, AreThoseOfTheSheet) {
  QSize usual;
  QSize large;
  RunSheet(9, [&](QWidget& window) {
    usual = window.findChild<QWidget*>(QString::number(kRecordButtonId))->size();
  });
  RunSheet(16, [&](QWidget& window) {
    large = window.findChild<QWidget*>(QString::number(kRecordButtonId))->size();
  });
  EXPECT_NEAR(large.height(), usual.height() * 1.5, 1.5);
  EXPECT_NEAR(large.width(), usual.width() * 1.5, 1.5);
}

TEST(LettersOfTheDesktop, OfUsualSizesAllGiveTheSameSheet) {
  const auto sizeWith = [](int points) {
    QSize size;
    RunSheet(points, [&](QWidget& window) { size = window.findChild<QTabWidget*>()->size(); });
    return size;
  };
  EXPECT_EQ(sizeWith(9).width(), sizeWith(11).width());
}

// The screen of the tests is 800 pixels high, and the sheet would be higher.
TEST(LettersOfTheDesktop, ThatMakeTheSheetHigherThanTheScreenMakeItScroll) {
  RunSheet(22, [](QWidget& window) {
    const QRect screen = window.screen()->availableGeometry();
    EXPECT_LE(window.width(), screen.width());
    EXPECT_LE(window.height(), screen.height());
    const auto* const ok = window.findChild<QWidget*>("ok");
    EXPECT_EQ(SeenPart(*ok), ok->rect()) << "OK does not scroll away.";
  });
}

TEST(LettersOfTheDesktop, HideNoControlThatHasTheFocus) {
  RunSheet(22, [](QWidget& window) {
    ASSERT_NE(window.findChild<QScrollArea*>("scrolled"), nullptr);
    User::Click(kRecordButtonId);  // The buttons below are for those who have a tag.
    int count = 0;
    for (const int id : {kContactComboId, kNumberComboId, kRecordButtonId, kTagListId,
                         kPlayButtonId, kDeleteButtonId, kDeleteAllButtonId, kTestButtonId}) {
      auto* const control = window.findChild<QWidget*>(QString::number(id));
      if (control->isEnabled()) {
        ++count;
        control->setFocus();
        QApplication::processEvents();
        EXPECT_EQ(SeenPart(*control), control->rect()) << id;
      }
    }
    EXPECT_GE(count, 5);
  });
}

TEST(LettersOfTheDesktop, OfUsualSizeNeedNoScrolling) {
  RunSheet(9,
           [](QWidget& window) { EXPECT_EQ(window.findChild<QScrollArea*>("scrolled"), nullptr); });
}

}  // namespace
