#include <gmock/gmock.h>

#include <QScrollBar>
#include <QTest>
#include <memory>

#include "backends/headless/headless_dialog.h"
#include "tests/backends/qt/dialog_fixture.h"

namespace {

using platform::CommandEvent;
using support::User;
using testing::ElementsAre;
using testing::Pair;

using Work = std::function<void(platform::DialogWindow&)>;

/// What a page does with its items, on a screen and without one: both must agree.
class QtDialogItems : public DialogFixture {
 protected:
  void OnBoth(const Work& work) {
    {
      SCOPED_TRACE("without a screen");
      NotingDialog dialog(m_ui);
      headless::HeadlessDialog window(sample::kDialog, dialog, nullptr);
      work(window);
      EXPECT_TRUE(dialog.heard.empty()) << "What the page does itself it is not told.";
    }
    SCOPED_TRACE("on a screen");
    NotingDialog dialog(m_ui);
    Run(dialog, [&] { work(dialog.Window()); });
    EXPECT_TRUE(dialog.heard.empty()) << "What the page does itself it is not told.";
  }

  static std::vector<std::u16string> GetItems(const platform::DialogWindow& window, int id) {
    std::vector<std::u16string> items;
    for (int i = 0; i < window.GetItemCount(id); ++i) {
      items.push_back(window.GetItemText(id, i));
    }
    return items;
  }
};

TEST_F(QtDialogItems, AddingSelectsNothing) {
  OnBoth([](platform::DialogWindow& window) {
    for (const int id : {sample::kCombo, sample::kSortedCombo, sample::kEditable, sample::kList}) {
      EXPECT_EQ(window.AddItem(id, u"b"), 0);
      EXPECT_EQ(window.GetSelection(id), std::nullopt);
    }
  });
}

TEST_F(QtDialogItems, ASortedBoxSortsAndTheOthersDoNot) {
  OnBoth([](platform::DialogWindow& window) {
    for (const int id : {sample::kCombo, sample::kSortedCombo, sample::kList}) {
      for (const auto* text : {u"b", u"C", u"a", u"ä", u"B", u"b"}) {
        window.AddItem(id, text);
      }
    }
    EXPECT_THAT(GetItems(window, sample::kCombo), ElementsAre(u"b", u"C", u"a", u"ä", u"B", u"b"));
    EXPECT_THAT(GetItems(window, sample::kList), ElementsAre(u"b", u"C", u"a", u"ä", u"B", u"b"));
    EXPECT_THAT(GetItems(window, sample::kSortedCombo),
                ElementsAre(u"a", u"ä", u"b", u"b", u"B", u"C"));
  });
}

TEST_F(QtDialogItems, TheSelectionGoesWithItsItem) {
  OnBoth([](platform::DialogWindow& window) {
    for (const int id : {sample::kCombo, sample::kList}) {
      for (const auto* text : {u"one", u"two", u"three"}) {
        window.AddItem(id, text);
      }
      window.SetSelection(id, 1);
      EXPECT_EQ(window.GetSelection(id), 1);
      window.DeleteItem(id, 0);
      EXPECT_EQ(window.GetSelection(id), 0);
      window.DeleteItem(id, 0);
      EXPECT_EQ(window.GetSelection(id), std::nullopt) << "No neighbour takes its place.";
      EXPECT_THAT(GetItems(window, id), ElementsAre(u"three"));
    }
  });
}

TEST_F(QtDialogItems, AnIndexThatIsNoneDoesNothing) {
  OnBoth([](platform::DialogWindow& window) {
    for (const int id : {sample::kCombo, sample::kList}) {
      window.AddItem(id, u"one");
      window.SetSelection(id, 0);
      window.DeleteItem(id, 1);
      window.DeleteItem(id, -1);
      EXPECT_EQ(window.GetItemText(id, 1), u"");
      EXPECT_EQ(window.GetItemText(id, -1), u"");
      EXPECT_EQ(window.GetSelection(id), 0);
      window.SetSelection(id, 5);
      EXPECT_EQ(window.GetSelection(id), std::nullopt);
    }
  });
}

TEST_F(QtDialogItems, AControlThatIsNotThereGivesTheEmptyResult) {
  OnBoth([](platform::DialogWindow& window) {
    constexpr int kNone = 4711;
    EXPECT_EQ(window.AddItem(kNone, u"x"), -1);
    window.DeleteItem(kNone, 0);
    window.ResetItems(kNone);
    window.SetText(kNone, u"x");
    window.Enable(kNone, true);
    window.SetCheck(kNone, true);
    window.SetSelection(kNone, 0);
    window.SetFont(kNone, {});
    window.SetHorizontalExtent(kNone, 5);
    window.StepProgress(kNone);
    window.DestroyProgressBar(kNone);
    EXPECT_EQ(window.GetText(kNone), u"");
    EXPECT_FALSE(window.IsEnabled(kNone));
    EXPECT_FALSE(window.IsChecked(kNone));
    EXPECT_EQ(window.GetItemCount(kNone), 0);
    EXPECT_EQ(window.GetHorizontalExtent(kNone), 0);
    EXPECT_EQ(window.GetSelection(kNone), std::nullopt);
    EXPECT_EQ(window.GetControlRect(kNone), platform::Rect());
  });
}

TEST_F(QtDialogItems, ResettingLeavesNothing) {
  OnBoth([](platform::DialogWindow& window) {
    for (const int id : {sample::kCombo, sample::kSortedCombo, sample::kList}) {
      window.AddItem(id, u"one");
      window.SetSelection(id, 0);
      window.ResetItems(id);
      EXPECT_EQ(window.GetItemCount(id), 0);
      EXPECT_EQ(window.GetSelection(id), std::nullopt);
    }
  });
}

TEST_F(QtDialogItems, EnablementAndPlacesAgree) {
  OnBoth([](platform::DialogWindow& window) {
    EXPECT_FALSE(window.IsEnabled(sample::kOff));
    EXPECT_TRUE(window.IsEnabled(sample::kGo));
    window.Enable(sample::kGo, false);
    EXPECT_FALSE(window.IsEnabled(sample::kGo));
    EXPECT_EQ(window.GetControlRect(sample::kGo), (platform::Rect{9, 78, 84, 99}));
    EXPECT_EQ(window.GetClientRect(), (platform::Rect{0, 0, 240, 271}));
    window.SetHorizontalExtent(sample::kList, 321);
    EXPECT_EQ(window.GetHorizontalExtent(sample::kList), 321);
  });
}

TEST_F(QtDialogItems, TextsStayWhatTheyAreUnitByUnit) {
  OnBoth([](platform::DialogWindow& window) {
    const std::u16string text = u"a\xD83D & \u202E<i>\u00A0z";
    window.AddItem(sample::kList, text);
    EXPECT_EQ(window.GetItemText(sample::kList, 0), text);
    window.SetText(sample::kGo, text);
    EXPECT_EQ(window.GetText(sample::kGo), text);
  });
}

TEST_F(QtDialogItems, TheFieldOfAnEditableBoxHoldsWhatIsTypedOrSet) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    platform::DialogWindow& window = dialog.Window();
    window.SetText(sample::kEditable, u"19200");
    window.AddItem(sample::kEditable, u"9600");
    window.AddItem(sample::kEditable, u"4800");
    EXPECT_EQ(window.GetText(sample::kEditable), u"19200") << "Items change no text.";
    window.SetSelection(sample::kEditable, 1);
    EXPECT_EQ(window.GetText(sample::kEditable), u"4800");
    window.SetText(sample::kEditable, u"R&D");
    EXPECT_EQ(window.GetText(sample::kEditable), u"R&D");
    EXPECT_EQ(window.GetItemCount(sample::kEditable), 2);
  });
}

TEST_F(QtDialogItems, ThePageHearsOfTheUsersChoices) {
  NotingDialog dialog(m_ui);
  Run(dialog, [&] {
    for (const auto* text : {u"one", u"two", u"three"}) {
      dialog.Window().AddItem(sample::kCombo, text);
      dialog.Window().AddItem(sample::kList, text);
    }
    dialog.Window().SetSelection(sample::kCombo, 0);
    User::Choose(sample::kCombo, 2);
    User::ChooseLine(sample::kList, 1);
    EXPECT_EQ(dialog.Window().GetSelection(sample::kCombo), 2);
    EXPECT_EQ(dialog.Window().GetSelection(sample::kList), 1);
  });
  EXPECT_THAT(dialog.heard, ElementsAre(Pair(sample::kCombo, CommandEvent::kSelectionChange),
                                        Pair(sample::kList, CommandEvent::kSelectionChange)));
}

TEST_F(QtDialogItems, ALineOnceChosenStaysChosen) {
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

TEST_F(QtDialogItems, AListCanBeScrolledAsFarAsItIsTold) {
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
