#include <gmock/gmock.h>

#include <QApplication>
#include <QTabWidget>
#include <QTest>

#include "tests/backends/qt/dialog_fixture.h"

namespace {

using support::PaintedPage;
using support::User;

/// A sheet of two pages that paint themselves.
class QtSheet : public DialogFixture {
 protected:
  class Sheet final : public framework::CPropertySheet {
   public:
    explicit Sheet(platform::Ui& ui) : CPropertySheet(u"Caption & more", ui) {}
    bool OnInitDialog() override {
      GetWindow().SetTabText(1, u"R&D");
      GetWindow().SetTabText(2, u"no such tab");
      return true;
    }
    void OnHelp() override { ++helps; }
    int helps = 0;
  };

  bool RunSheet(const std::function<void()>& story) {
    Sheet sheet(m_ui);
    sheet.AddPage(m_first);
    sheet.AddPage(m_second);
    m_user.Soon([&story] {
      story();
      if (QDialog* window = User::GetWindow()) {
        window->reject();
      }
    });
    const bool isAccepted = sheet.DoModal();
    m_helps = sheet.helps;
    return isAccepted;
  }
  static QTabWidget* GetTabs() { return User::GetWindow()->findChild<QTabWidget*>("tabs"); }

  PaintedPage m_first{m_ui};
  PaintedPage m_second{m_ui};
  int m_helps = 0;
};

TEST_F(QtSheet, SetsAPageUpWhenItIsFirstShown) {
  RunSheet([&] {
    EXPECT_EQ(m_first.initCount, 1);
    EXPECT_EQ(m_second.initCount, 0);
    GetTabs()->setCurrentIndex(1);
    GetTabs()->setCurrentIndex(0);
    GetTabs()->setCurrentIndex(1);
    EXPECT_EQ(m_first.initCount, 1);
    EXPECT_EQ(m_second.initCount, 1);
  });
}

TEST_F(QtSheet, OkCallsThePagesThatWereSetUp) {
  EXPECT_TRUE(RunSheet([] { User::PressOk(); }));
  EXPECT_EQ(m_first.okCount, 1);
  EXPECT_EQ(m_second.okCount, 0);
}

TEST_F(QtSheet, TheCloseBoxAndEscCallNoPage) {
  EXPECT_FALSE(RunSheet([] { User::GetWindow()->close(); }));
  EXPECT_FALSE(RunSheet([] { User::Type(Qt::Key_Escape); }));
  EXPECT_EQ(m_first.okCount, 0);
}

TEST_F(QtSheet, EnterIsOkOnAPageWithoutADefaultButton) {
  EXPECT_TRUE(RunSheet([] { User::Type(Qt::Key_Return); }));
  EXPECT_EQ(m_first.okCount, 1);
}

TEST_F(QtSheet, ShowsCaptionAndTabsAsTheyStand) {
  RunSheet([] {
    EXPECT_EQ(User::GetWindow()->windowTitle(), "Caption & more");
    EXPECT_EQ(GetTabs()->tabText(0), "About");
    EXPECT_EQ(GetTabs()->tabText(1), "R&&D") << "Which is shown as R&D.";
  });
}

TEST_F(QtSheet, F1IsTheSheetsIfThePageHasNoHelpOfItsOwn) {
  RunSheet([] { User::Type(Qt::Key_F1); });
  EXPECT_EQ(m_helps, 1);
}

TEST_F(QtSheet, QuittingTheApplicationLeavesItOpen) {
  EXPECT_TRUE(RunSheet([&] {
    QCoreApplication::quit();
    m_user.Soon([&] {
      QApplication::processEvents();
      EXPECT_NE(User::GetWindow(), nullptr);
    });
    m_user.Soon([] { User::PressOk(); });
    QApplication::processEvents();
  }));
}

TEST_F(QtSheet, OpensAndClosesFiftyTimes) {
  constexpr int kTimes = 50;
  for (int i = 0; i < kTimes; ++i) {
    RunSheet([] {
      GetTabs()->setCurrentIndex(1);
      User::PressOk();
    });
  }
  EXPECT_EQ(m_first.okCount, kTimes);
  EXPECT_EQ(m_second.okCount, kTimes);
  EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty()) << "Nothing is left of them.";
}

}  // namespace
