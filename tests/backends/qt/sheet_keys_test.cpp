#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <functional>
#include <vector>

#include "resources/dialogs.h"
#include "tests/backends/qt/page_machine.h"
#include "tests/backends/qt/user.h"

namespace {

using namespace resources;
using support::User;

/// One way to another tab.
struct Key {
  Qt::Key key;
  Qt::KeyboardModifiers modifiers;
  int from;
  int to;
};

constexpr Qt::KeyboardModifiers kBack = Qt::ControlModifier | Qt::ShiftModifier;
constexpr Key kKeys[] = {
    {Qt::Key_Tab, Qt::ControlModifier, 0, 1},
    {Qt::Key_Tab, Qt::ControlModifier, 1, 0},
    {Qt::Key_Backtab, kBack, 1, 0},
    {Qt::Key_Backtab, kBack, 0, 1},
    {Qt::Key_PageDown, Qt::ControlModifier, 0, 1},
    {Qt::Key_PageDown, Qt::ControlModifier, 1, 0},
    {Qt::Key_PageUp, Qt::ControlModifier, 1, 0},
    {Qt::Key_PageUp, Qt::ControlModifier, 0, 1},
};

/// The keys that turn to another tab, on the Learning page with two tags and on the other page.
class SheetKeys : public testing::Test {
 protected:
  void Run(const std::function<void()>& story) {
    m_user.Soon([&story] {
      User::GetWindow()->activateWindow();
      QApplication::processEvents();
      User::Click(kRecordButtonId);
      User::Click(kRecordButtonId);
      User::ChooseLine(kTagListId, 0);
      story();
      User::GetWindow()->reject();
    });
    m_machine.RunSheet();
  }

  static QTabWidget& GetTabs() { return *User::GetWindow()->findChild<QTabWidget*>("tabs"); }
  static void ExpectKeysWorkFrom(QWidget& control, const Key& key) {
    GetTabs().setCurrentIndex(key.from);
    control.setFocus();
    ASSERT_EQ(QApplication::focusWidget(), &control);
    User::Type(key.key, key.modifiers);
    EXPECT_EQ(GetTabs().currentIndex(), key.to)
        << control.objectName().toStdString() << " " << key.key << " from " << key.from;
  }

  support::PageMachine m_machine;
  User m_user;
};

TEST_F(SheetKeys, TurnToTheOtherTabFromEveryControl) {
  Run([] {
    for (const int id : {kContactComboId, kNumberComboId, kRecordButtonId, kTagListId,
                         kPlayButtonId, kDeleteButtonId, kDeleteAllButtonId, kTestButtonId}) {
      for (const Key& key : kKeys) {
        if (key.from == 0) {
          ExpectKeysWorkFrom(*User::Find(id), key);
        }
      }
    }
    for (auto* control : {User::GetWindow()->findChild<QWidget*>("ok"),
                          User::GetWindow()->findChild<QWidget*>("qt_tabwidget_tabbar")}) {
      for (const Key& key : kKeys) {
        ExpectKeysWorkFrom(*control, key);
      }
    }
  });
}

TEST_F(SheetKeys, LeaveWhatIsChosenAsItIs) {
  Run([] {
    User::Find(kContactComboId)->setFocus();
    User::Type(Qt::Key_PageDown, Qt::ControlModifier);
    User::Type(Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(GetTabs().currentIndex(), 0);
    EXPECT_EQ(User::FindCombo(kContactComboId)->currentIndex(), 0);
    EXPECT_EQ(QApplication::focusWidget(), User::Find(kContactComboId))
        << "Where the user left the page.";
  });
}

TEST_F(SheetKeys, BelongToAListThatIsOpen) {
  Run([] {
    QComboBox& combo = *User::FindCombo(kContactComboId);
    combo.setFocus();
    combo.showPopup();
    for (const Key& key : kKeys) {
      QTest::keyClick(combo.view(), key.key, key.modifiers);
      EXPECT_EQ(GetTabs().currentIndex(), 0) << key.key;
    }
    combo.hidePopup();
  });
}

TEST_F(SheetKeys, DoNothingWhileANameIsRecorded) {
  // Stands for a user who presses the keys as soon as the bar is there.
  class Impatient final : public QObject {
   public:
    bool eventFilter(QObject* watched, QEvent* event) override {
      if (event->type() == QEvent::Show &&
          watched->objectName() == QString::number(kProgressBarId)) {
        QTimer::singleShot(0, this, [this] {
          for (const Key& key : kKeys) {
            User::Type(key.key, key.modifiers);
            tabs.push_back(GetTabs().currentIndex());
          }
        });
      }
      return false;
    }
    std::vector<int> tabs;
  } impatient;
  Run([&] {
    qApp->installEventFilter(&impatient);
    User::Click(kRecordButtonId);
    QApplication::processEvents();
    EXPECT_EQ(GetTabs().currentIndex(), 0) << "Nor afterwards.";
  });
  EXPECT_THAT(impatient.tabs, testing::AllOf(testing::SizeIs(std::size(kKeys)), testing::Each(0)));
}

}  // namespace
