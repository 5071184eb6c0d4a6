#include <gmock/gmock.h>

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QProgressBar>
#include <QTest>
#include <thread>

#include "tests/qt/dialog_fixture.h"

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

TEST_F(QtDialog, IsNeverShownWhereItWasEndedWhileSetUp) {
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

TEST_F(QtDialog, StaysOpenWhereItDoesNotLetItselfBeClosed) {
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

TEST_F(QtDialog, EnterIsOkWhereNoButtonIsTheDefaultOne) {
  NotingDialog dialog(m_ui, sample::kPlain);
  EXPECT_EQ(Run(dialog, [] { User::Type(Qt::Key_Return); }), framework::kIdOk);
}

TEST_F(QtDialog, EnterPressesTheDefaultButtonAndNothingWhereThatIsDisabled) {
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

TEST_F(QtDialog, AnAmpersandIsShownAsItStandsAndMnemonicsAreNoPartOfTheText) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    EXPECT_EQ(User::FindButton(sample::kGo)->text(), "&Go && see");
    EXPECT_EQ(dialog.Window().GetText(sample::kGo), u"Go & see");
    dialog.Window().SetText(sample::kStop, u"Get & stop");
    EXPECT_EQ(User::FindButton(sample::kStop)->text(), "Get && &stop");
    EXPECT_EQ(dialog.Window().GetText(sample::kStop), u"Get & stop");
    EXPECT_EQ(dynamic_cast<QCheckBox*>(User::Find(sample::kCheck))->text(), "Check && mate");
    EXPECT_EQ(User::GetWindow()->windowTitle(), "Seventy & seven");
    const auto* label = dynamic_cast<QLabel*>(User::Find(sample::kLabel));
    EXPECT_EQ(label->textFormat(), Qt::PlainText);
    dialog.Window().SetText(sample::kLabel, u"<b>&amp;</b>");
    EXPECT_EQ(dialog.Window().GetText(sample::kLabel), u"<b>&amp;</b>");
  });
}

TEST_F(QtDialog, ATextTooLongForItsButtonIsCutAndToldInFull) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    const std::u16string text = u"A text that no button of this width can ever hold";
    dialog.Window().SetText(sample::kStop, text);
    EXPECT_EQ(dialog.Window().GetText(sample::kStop), text);
    EXPECT_EQ(User::Find(sample::kStop)->toolTip().toStdU16String(), text);
    EXPECT_EQ(User::Find(sample::kStop)->accessibleName().toStdU16String(), text);
    EXPECT_EQ(User::Find(sample::kStop)->font().pixelSize(),
              User::Find(sample::kGo)->font().pixelSize())
        << "Buttons of one dialog have letters of one size.";
    dialog.Window().SetText(sample::kStop, u"Stop");
    EXPECT_EQ(User::Find(sample::kStop)->toolTip(), "");
  });
}

TEST_F(QtDialog, KeysOfTheTemplatePressTheirButtons) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    User::Find(sample::kList)->setFocus();
    User::Type(Qt::Key_Delete);
    User::Type(Qt::Key_Delete, Qt::ControlModifier);
    User::Type(Qt::Key_Space);
    EXPECT_THAT(dialog.heard, ElementsAre(Pair(sample::kStop, CommandEvent::kClick)))
        << "The button of the space bar is disabled.";
    User::Find(sample::kCombo)->setFocus();
    User::Type(Qt::Key_Delete);
    EXPECT_EQ(dialog.heard.size(), 1U);
  });
}

TEST_F(QtDialog, F1AsksForHelp) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    User::Find(sample::kList)->setFocus();
    User::Type(Qt::Key_F1);
  });
  EXPECT_EQ(dialog.helps, 1);
}

TEST_F(QtDialog, APressBesideAllControlsIsToldInPixelsOfTheDevice) {
  NotingDialog dialog(m_ui);
  Run(dialog, [] {
    auto* surface = User::GetWindow()->findChild<QWidget*>("dialog_77");
    QTest::mouseClick(surface, Qt::LeftButton, Qt::NoModifier, QPoint(331, 151));
    QTest::mouseClick(surface, Qt::RightButton, Qt::NoModifier, QPoint(331, 151));
    QTest::mouseClick(User::Find(sample::kOff), Qt::LeftButton);
  });
  EXPECT_THAT(dialog.presses, ElementsAre(platform::Point{220, 100}));
}

TEST_F(QtDialog, APictureIsPressedByMouseAndKeyboard) {
  NotingDialog dialog(m_ui);
  Run(dialog, [] {
    QWidget* picture = User::Find(sample::kPicture);
    EXPECT_EQ(picture->size(), QSize(30, 15)) << "Its own size.";
    User::Click(picture);
    ASSERT_TRUE(User::TabTo(picture));
    User::Type(Qt::Key_Space);
  });
  EXPECT_THAT(dialog.heard, ElementsAre(Pair(sample::kPicture, CommandEvent::kClick),
                                        Pair(sample::kPicture, CommandEvent::kClick)));
}

TEST_F(QtDialog, ACheckBoxIsCheckedBeforeThePageHears) {
  NotingDialog dialog(m_ui);
  bool wasChecked = false;
  dialog.onCommand = [&](int id) { wasChecked = dialog.Window().IsChecked(id); };
  Run(dialog, [&] {
    User::Click(sample::kCheck);
    EXPECT_TRUE(wasChecked);
    dialog.Window().SetCheck(sample::kCheck, false);
    EXPECT_FALSE(dialog.Window().IsChecked(sample::kCheck));
    EXPECT_EQ(dialog.heard.size(), 1U);
  });
}

TEST_F(QtDialog, HiddenControlsAreHidden) {
  NotingDialog dialog(m_ui);
  Run(dialog, [] { EXPECT_FALSE(User::Find(sample::kHidden)->isVisible()); });
}

TEST_F(QtDialog, AClosedComboBoxIsAsHighAsAButton) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    EXPECT_EQ(User::Find(sample::kCombo)->height(), User::Find(sample::kGo)->height());
    EXPECT_EQ(dialog.Window().GetControlRect(sample::kCombo), (platform::Rect{9, 20, 230, 185}));
  });
}

TEST_F(QtDialog, TheWheelTurnsOnlyABoxWithTheFocus) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    dialog.Window().AddItem(sample::kCombo, u"one");
    dialog.Window().AddItem(sample::kCombo, u"two");
    dialog.Window().SetSelection(sample::kCombo, 0);
    User::Find(sample::kList)->setFocus();
    QWheelEvent down({5, 5}, {5, 5}, {}, {0, -120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                     false);
    QApplication::sendEvent(User::Find(sample::kCombo), &down);
    EXPECT_EQ(dialog.Window().GetSelection(sample::kCombo), 0);
  });
  EXPECT_TRUE(dialog.heard.empty());
}

TEST_F(QtDialog, PaintsAgainWhenAskedTo) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    QApplication::processEvents();
    const int before = dialog.paintings;
    dialog.Window().Invalidate();
    QApplication::processEvents();
    EXPECT_GT(dialog.paintings, before);
  });
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

TEST_F(QtDialog, TheWaitCursorGoesWhereAnAnswerIsExpectedAndComesBack) {
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
