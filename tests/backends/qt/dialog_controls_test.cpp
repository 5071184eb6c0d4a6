#include <gmock/gmock.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QHelpEvent>
#include <QLabel>
#include <QScrollBar>
#include <QTest>
#include <QToolTip>

#include "backends/qt/strings.h"
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

TEST_F(QtDialogControls, ATextTooLongForItsButtonIsCutAndShownInFull) {
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

TEST_F(QtDialogControls, ATextTooLongForItsCheckBoxIsSmallerThenCutAndShownInFull) {
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

TEST_F(QtDialogControls, APressOutsideAllControlsIsReportedInPixelsOfTheDevice) {
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

/// Items of which one begins with the other, up to a blank.
const std::vector<std::u16string> kNames{u"Anna", u"Stone Ann", u"Stone Tom"};

TEST_F(QtDialogControls, ABlankIsAPartOfTheNameThatIsTyped) {
  QApplication::setKeyboardInputInterval(100'000);  // The test may be slow.
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    for (const std::u16string& name : kNames) {
      dialog.Window().AddItem(sample::kCombo, name);
    }
    QComboBox* combo = User::FindCombo(sample::kCombo);
    QTest::keyClicks(combo, "stone t");
    EXPECT_FALSE(combo->view()->isVisible());
    EXPECT_EQ(combo->currentText(), "Stone Tom");
    EXPECT_EQ(dialog.Window().GetSelection(sample::kCombo), 2);
  });
  QApplication::setKeyboardInputInterval(400);
}

TEST_F(QtDialogControls, ABlankBeforeAnyLetterOpensTheList) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    dialog.Window().AddItem(sample::kCombo, u"Anna");
    QComboBox* combo = User::FindCombo(sample::kCombo);
    QTest::keyClick(combo, Qt::Key_Space);
    EXPECT_TRUE(combo->view()->isVisible());
    combo->hidePopup();
  });
}

const std::u16string kHebrewLine = u"\u05D3\u05E0\u05D4 +972 50 555 0144 M";
/// The same line with its number set apart from the name.
const std::u16string kHebrewLineInOrder = u"\u05D3\u05E0\u05D4 \u2066+972 50 555 0144\u2069 M";

TEST_F(QtDialogControls, NumbersReadFromLeftToRightNextToANameOfAnotherScript) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    platform::DialogWindow& window = dialog.Window();
    const auto pictures = [&](const std::u16string& line) {
      window.ResetItems(sample::kList);
      window.ResetItems(sample::kCombo);
      window.AddItem(sample::kList, line);
      window.AddItem(sample::kCombo, line);
      window.SetSelection(sample::kCombo, 0);
      EXPECT_EQ(window.GetItemText(sample::kList, 0), line);
      EXPECT_EQ(User::FindList(sample::kList)->item(0)->text().toStdU16String(), line);
      return std::pair(User::FindList(sample::kList)->grab().toImage(),
                       User::FindCombo(sample::kCombo)->grab().toImage());
    };
    const auto marked = pictures(kHebrewLineInOrder);
    const auto plain = pictures(kHebrewLine);
    EXPECT_EQ(plain.first, marked.first);
    EXPECT_EQ(plain.second, marked.second);
    EXPECT_NE(plain.first, pictures(u"Dana +972 50 555 0144 M").first);
  });
}

TEST(NumbersInOrder, AreSetApartWithWhatBelongsToThem) {
  const auto marked = [](const char16_t* text) {
    return qt::WithNumbersInOrder(qt::ToQString(text)).toStdU16String();
  };
  EXPECT_EQ(marked(kHebrewLine.c_str()), kHebrewLineInOrder);
  EXPECT_EQ(marked(u"(050) 12-3,4# \u05D3"), u"\u2066(050) 12-3,4#\u2069 \u05D3");
  EXPECT_EQ(marked(u"\u0627 \u0660\u0661 \u0662 (x)"),
            u"\u0627 \u2066\u0660\u0661 \u0662\u2069 (x)");
  EXPECT_EQ(marked(u"7%; 1; \u05D3; \u05D4"), u"\u20667\u2069%; \u20661\u2069; \u05D3; \u05D4");
  EXPECT_EQ(marked(u"Dana +972 50"), u"Dana +972 50") << "Nothing stands in the wrong order.";
}

TEST_F(QtDialogControls, AllOfALineThatIsTooLongIsInReach) {
  const std::u16string longLine = u"A line that is far longer than the box in which it stands";
  const auto tipOver = [](QWidget* widget, const QPoint& place) {
    QHelpEvent event(QEvent::ToolTip, place, widget->mapToGlobal(place));
    QApplication::sendEvent(widget, &event);
    return QToolTip::text().toStdU16String();
  };
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    dialog.Window().AddItem(sample::kList, longLine);
    dialog.Window().AddItem(sample::kList, u"short");
    dialog.Window().AddItem(sample::kCombo, longLine);
    dialog.Window().SetSelection(sample::kCombo, 0);
    QApplication::processEvents();
    QListWidget* list = User::FindList(sample::kList);
    const auto middle = [list](int row) { return list->visualItemRect(list->item(row)).center(); };
    EXPECT_EQ(tipOver(list->viewport(), QPoint(5, middle(1).y())), u"");
    EXPECT_EQ(tipOver(list->viewport(), QPoint(5, middle(0).y())), longLine);
    EXPECT_EQ(tipOver(User::FindCombo(sample::kCombo), QPoint(5, 5)), longLine);
    const QScrollBar* bar = list->horizontalScrollBar();
    list->setFocus();
    for (int i = 0; i < 20; ++i) {
      User::Type(Qt::Key_Right);
    }
    EXPECT_GT(bar->maximum(), 0);
    EXPECT_EQ(bar->value(), bar->maximum());
    for (int i = 0; i < 20; ++i) {
      User::Type(Qt::Key_Left);
    }
    EXPECT_EQ(bar->value(), 0);
  });
}

}  // namespace
