#include <gmock/gmock.h>

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QScrollBar>
#include <QTest>

#include "tests/backends/qt/dialog_fixture.h"

namespace {

using platform::CommandEvent;
using support::User;
using testing::ElementsAre;
using testing::Pair;

using QtDialogControls = DialogFixture;

TEST_F(QtDialogControls, AnAmpersandIsShownAsItStandsAndMnemonicsAreNoPartOfTheText) {
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

TEST_F(QtDialogControls, ATextTooLongForItsButtonIsCutAndToldInFull) {
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

TEST_F(QtDialogControls, ATextTooLongForItsCheckBoxIsSmallerThenCutAndToldInFull) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    const auto* box = dynamic_cast<QCheckBox*>(User::Find(sample::kCheck));
    const int given = box->font().pixelSize();
    std::u16string text = u"Check";
    while (box->font().pixelSize() == given && text.size() < 1000) {
      text += u"!";
      dialog.Window().SetText(sample::kCheck, text);
    }
    EXPECT_LT(box->font().pixelSize(), given);
    EXPECT_EQ(box->text().toStdU16String(), text) << "Whole, in smaller letters.";
    EXPECT_LE(box->sizeHint().width(), box->width());
    text.append(200, u'!');
    dialog.Window().SetText(sample::kCheck, text);
    EXPECT_LT(box->text().size(), 200);
    EXPECT_LE(box->sizeHint().width(), box->width());
    EXPECT_EQ(dialog.Window().GetText(sample::kCheck), text);
    EXPECT_EQ(box->toolTip().toStdU16String(), text);
    EXPECT_EQ(box->accessibleName().toStdU16String(), text);
    dialog.Window().SetText(sample::kCheck, u"Check");
    EXPECT_EQ(box->font().pixelSize(), given);
    EXPECT_EQ(box->toolTip(), "");
  });
}

TEST_F(QtDialogControls, KeysOfTheTemplatePressTheirButtons) {
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

TEST_F(QtDialogControls, FocusLeavesADisabledControlForTheListOrTheFirstThatIsNoButton) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    const auto focus = [] { return User::GetWindow()->focusWidget(); };
    User::Find(sample::kStop)->setFocus();
    dialog.Window().Enable(sample::kGo, false);
    EXPECT_EQ(focus(), User::Find(sample::kStop)) << "It was another that was disabled.";
    dialog.Window().Enable(sample::kStop, false);
    EXPECT_EQ(focus(), User::Find(sample::kList));
    dialog.Window().Enable(sample::kList, false);
    EXPECT_EQ(focus(), User::Find(sample::kCombo));
    dialog.Window().Enable(sample::kSortedCombo, false);
    dialog.Window().Enable(sample::kCombo, false);
    EXPECT_EQ(focus(), User::Find(sample::kEditable));
    dialog.Window().Enable(sample::kEditable, false);
    EXPECT_EQ(focus(), nullptr) << "Only a check box and a picture are left.";
  });
}

TEST_F(QtDialogControls, F1AsksForHelp) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    User::Find(sample::kList)->setFocus();
    User::Type(Qt::Key_F1);
  });
  EXPECT_EQ(dialog.helps, 1);
}

TEST_F(QtDialogControls, APressBesideAllControlsIsToldInPixelsOfTheDevice) {
  NotingDialog dialog(m_ui);
  Run(dialog, [] {
    auto* surface = User::GetWindow()->findChild<QWidget*>("dialog_77");
    QTest::mouseClick(surface, Qt::LeftButton, Qt::NoModifier, QPoint(331, 151));
    QTest::mouseClick(surface, Qt::RightButton, Qt::NoModifier, QPoint(331, 151));
    QTest::mouseClick(User::Find(sample::kOff), Qt::LeftButton);
  });
  EXPECT_THAT(dialog.presses, ElementsAre(platform::Point{220, 100}));
}

TEST_F(QtDialogControls, APictureIsPressedByMouseAndKeyboard) {
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

TEST_F(QtDialogControls, ACheckBoxIsCheckedBeforeThePageHears) {
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

TEST_F(QtDialogControls, HiddenControlsAreHidden) {
  NotingDialog dialog(m_ui);
  Run(dialog, [] { EXPECT_FALSE(User::Find(sample::kHidden)->isVisible()); });
}

TEST_F(QtDialogControls, AClosedComboBoxIsAsHighAsAButton) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    EXPECT_EQ(User::Find(sample::kCombo)->height(), User::Find(sample::kGo)->height());
    EXPECT_EQ(dialog.Window().GetControlRect(sample::kCombo), (platform::Rect{9, 20, 230, 185}));
  });
}

TEST_F(QtDialogControls, TheWheelTurnsOnlyABoxWithTheFocus) {
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

TEST_F(QtDialogControls, PaintsAgainWhenAskedTo) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    QApplication::processEvents();
    const int before = dialog.paintings;
    dialog.Window().Invalidate();
    QApplication::processEvents();
    EXPECT_GT(dialog.paintings, before);
  });
}

// The contract of dialogs says what items do. These two are about what only a screen has.

TEST_F(QtDialogControls, ALineOnceChosenStaysChosen) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    dialog.Window().AddItem(sample::kList, u"one");
    User::ChooseLine(sample::kList, 0);
    QListWidget* list = User::FindList(sample::kList);
    const QPoint line = list->visualItemRect(list->item(0)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier, line);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier,
                      QPoint(5, list->viewport()->height() - 2));
    EXPECT_EQ(dialog.Window().GetSelection(sample::kList), 0);
  });
}

TEST_F(QtDialogControls, AListCanBeScrolledAsFarAsItsExtentSays) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    platform::DialogWindow& window = dialog.Window();
    window.AddItem(sample::kList, u"short");
    const QListWidget* list = User::FindList(sample::kList);
    EXPECT_EQ(list->horizontalScrollBar()->maximum(), 0);
    window.SetHorizontalExtent(sample::kList, 400);
    EXPECT_EQ(list->horizontalScrollBar()->maximum(), 600 - list->viewport()->width());
    EXPECT_GT(window.GetTextWidth(sample::kList, u"wide text"),
              window.GetTextWidth(sample::kList, u"text"));
  });
}

}  // namespace
