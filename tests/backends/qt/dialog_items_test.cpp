#include <QScrollBar>
#include <QTest>

#include "tests/backends/qt/dialog_fixture.h"

namespace {

using support::User;

/// What of a dialog's items only a screen has. The rest is in the contract of dialogs.
using QtDialogItems = DialogFixture;

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
