#include <gmock/gmock.h>

#include <QApplication>
#include <QProgressBar>
#include <thread>

#include "tests/backends/qt/dialog_fixture.h"

namespace {

using platform::CommandEvent;
using support::User;
using testing::ElementsAre;
using testing::Pair;

using QtDialog = DialogFixture;

TEST_F(QtDialog, GivesTheResultItWasEndedWith) {
  NotingDialog dialog(m_ui);
  dialog.onCommand = [&](int) { dialog.EndDialog(5); };
  EXPECT_EQ(Run(dialog, [] { User::Click(sample::kGo); }), 5);
  EXPECT_THAT(dialog.heard, ElementsAre(Pair(sample::kGo, CommandEvent::kClick)));
  EXPECT_FALSE(dialog.IsAttached());
}

TEST_F(QtDialog, IsNeverShownIfItWasEndedWhileSetUp) {
  NotingDialog dialog(m_ui);
  dialog.onInit = [&] {
    dialog.Window().PostCommand(2222);
    dialog.EndDialog(4);
  };
  EXPECT_EQ(dialog.DoModal(), 4);
  QApplication::processEvents();
  EXPECT_EQ(dialog.paintings, 0);
  EXPECT_TRUE(dialog.heard.empty()) << "Nor does it get what it posted.";
}

TEST_F(QtDialog, EscAndTheCloseBoxCancel) {
  NotingDialog dialog(m_ui);
  EXPECT_EQ(Run(dialog, [] { User::Type(Qt::Key_Escape); }), framework::kIdCancel);
  EXPECT_EQ(Run(dialog, [] { User::GetWindow()->close(); }), framework::kIdCancel);
  EXPECT_EQ(dialog.cancels, 2);
}

TEST_F(QtDialog, StaysOpenIfItDoesNotLetItselfBeClosed) {
  NotingDialog dialog(m_ui);
  dialog.mayBeClosed = false;
  EXPECT_EQ(Run(dialog,
                [] {
                  QDialog* window = User::GetWindow();
                  window->close();
                  EXPECT_TRUE(window->isVisible());
                }),
            99);
  EXPECT_EQ(dialog.cancels, 1);
}

TEST_F(QtDialog, EnterIsOkIfNoButtonIsTheDefaultOne) {
  NotingDialog dialog(m_ui, sample::kPlain);
  EXPECT_EQ(Run(dialog, [] { User::Type(Qt::Key_Return); }), framework::kIdOk);
}

TEST_F(QtDialog, EnterPressesTheDefaultButtonAndNothingIfThatIsDisabled) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    User::Find(sample::kList)->setFocus();
    User::Type(Qt::Key_Return);
    EXPECT_EQ(dialog.heard.size(), 1U);
    dialog.Window().Enable(sample::kGo, false);
    User::Type(Qt::Key_Return);
    EXPECT_EQ(dialog.heard.size(), 1U);
    EXPECT_TRUE(dialog.IsAttached());
  });
}

TEST_F(QtDialog, PostedCommandsComeAfterTheHandlerThatPostedThem) {
  NotingDialog dialog(m_ui);
  dialog.onInit = [&] {
    dialog.Window().PostCommand(2222);
    dialog.Window().PostCommand(3);
    m_ui.ShowMessage(platform::ApplicationBox(u"still setting up"));
    EXPECT_TRUE(dialog.heard.empty());
  };
  dialog.onCommand = [&](int id) {
    if (id == 3) {
      dialog.EndDialog(1);
    }
  };
  EXPECT_EQ(dialog.DoModal(), 1);
  EXPECT_THAT(dialog.heard,
              ElementsAre(Pair(2222, CommandEvent::kPosted), Pair(3, CommandEvent::kPosted)));
}

TEST_F(QtDialog, ThreadsStepTheBarAndEndTheDialog) {
  NotingDialog dialog(m_ui);
  std::thread worker;
  int position = -1;
  dialog.onInit = [&] {
    dialog.Window().CreateProgressBar(
        sample::kBar, {.rect = {10, 100, 230, 120}, .minimum = 0, .maximum = 3, .step = 1});
    worker = std::thread([&] {
      dialog.Window().StepProgress(sample::kBar);
      dialog.Window().StepProgress(sample::kBar);
      dialog.Window().EndDialog(8);
    });
  };
  m_user.Soon([&] { position = dynamic_cast<QProgressBar*>(User::Find(sample::kBar))->value(); });
  EXPECT_EQ(dialog.DoModal(), 8);
  worker.join();
  EXPECT_GE(position, 0);
}

TEST_F(QtDialog, ABarStopsAtItsEnd) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    dialog.Window().CreateProgressBar(
        sample::kBar, {.rect = {10, 100, 230, 120}, .minimum = 0, .maximum = 25, .step = 10});
    const auto* bar = dynamic_cast<QProgressBar*>(User::Find(sample::kBar));
    EXPECT_EQ(bar->geometry(), QRect(15, 150, 330, 30));
    std::vector<int> values;
    for (int i = 0; i < 4; ++i) {
      dialog.Window().StepProgress(sample::kBar);
      values.push_back(bar->value());
    }
    EXPECT_THAT(values, ElementsAre(10, 20, 25, 25));
    dialog.Window().DestroyProgressBar(sample::kBar);
    EXPECT_EQ(User::GetWindow()->findChild<QProgressBar*>(), nullptr);
  });
}

TEST_F(QtDialog, CallsFromAfarThatComeTooLateDoNothing) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    platform::DialogWindow& window = dialog.Window();
    std::thread([&] { window.EndDialog(1); }).join();
    dialog.EndDialog(2);
  });
  QApplication::processEvents();
  EXPECT_FALSE(dialog.IsAttached());
}

TEST_F(QtDialog, OneDialogRunsAboveAnother) {
  NotingDialog below(m_ui);
  NotingDialog above(m_ui, sample::kPlain);
  below.onCommand = [&](int) {
    m_user.Soon([&] {
      EXPECT_EQ(User::GetWindow()->windowTitle(), "Plain");
      above.EndDialog(7);
    });
    EXPECT_EQ(above.DoModal(), 7);
  };
  Run(below, [] { User::Click(sample::kGo); });
  EXPECT_EQ(below.heard.size(), 1U);
}

TEST_F(QtDialog, TheWaitCursorGoesIfAnAnswerIsExpectedAndComesBack) {
  m_ui.SetCursor(platform::Cursor::kWait);
  m_ui.SetCursor(platform::Cursor::kWait);
  EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
  m_user.SetAnswer([](QDialog& box) {
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    box.reject();
  });
  m_ui.ShowMessage(platform::ApplicationBox(u"text"));
  EXPECT_EQ(m_user.GetBoxes().size(), 1U);
  EXPECT_NE(QApplication::overrideCursor(), nullptr);
  m_ui.SetCursor(platform::Cursor::kNormal);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "It is a state and is not counted.";
}

}  // namespace
