#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <span>

#include "resources/dialogs.h"
#include "storage/device_paths.h"
#include "tests/backends/qt/page_machine.h"
#include "tests/backends/qt/user.h"

namespace {

using namespace resources;
using support::User;
using testing::ElementsAre;

/// The Learning page on real widgets.
class PageOneScreen : public testing::Test {
 protected:
  /// Opens the sheet, runs `story` on it, and closes it if the story did not.
  bool Run(const std::function<void()>& story) {
    m_user.Soon([&story] {
      story();
      if (QDialog* window = User::GetWindow()) {
        window->reject();
      }
    });
    return m_machine.RunSheet();
  }

  [[nodiscard]] static std::vector<QString> GetLines() {
    std::vector<QString> lines;
    const QListWidget* list = User::FindList(kTagListId);
    for (int row = 0; row < list->count(); ++row) {
      lines.push_back(list->item(row)->text());
    }
    return lines;
  }
  [[nodiscard]] static bool IsEnabled(int id) { return User::Find(id)->isEnabled(); }
  [[nodiscard]] static QString GetCount() {
    return dynamic_cast<QLabel*>(User::Find(kCountLabelId))->text();
  }
  [[nodiscard]] bool HasWave(std::u16string_view tag) {
    return m_machine.machine.files.GetFile(storage::WavePath(tag)).has_value();
  }

  support::PageMachine m_machine;
  User m_user;
};

TEST_F(PageOneScreen, LearnsPlaysAndDeletesByClicks) {
  Run([&] {
    EXPECT_EQ(GetCount(), "Learned commands: 0");
    EXPECT_FALSE(IsEnabled(kPlayButtonId));
    User::Choose(kContactComboId, 1);
    EXPECT_EQ(User::FindCombo(kNumberComboId)->currentText(), "5550001 Home");
    User::Click(kRecordButtonId);
    EXPECT_THAT(GetLines(), ElementsAre("Bob Ray & Sons <b> 5550001 H"));
    EXPECT_EQ(GetCount(), "Learned commands: 1");
    EXPECT_TRUE(IsEnabled(kDeleteAllButtonId));
    EXPECT_FALSE(IsEnabled(kTestButtonId));

    User::Choose(kContactComboId, 0);
    User::Choose(kNumberComboId, 1);
    User::Click(kRecordButtonId);
    EXPECT_THAT(GetLines(), ElementsAre("Bob Ray & Sons <b> 5550001 H", "Ann Lee 5551234 M"));
    EXPECT_TRUE(IsEnabled(kTestButtonId));
    EXPECT_EQ(m_machine.machine.waveOut.GetPlayed().size(), 2U);

    User::ChooseLine(kTagListId, 0);
    EXPECT_TRUE(IsEnabled(kPlayButtonId));
    User::Click(kPlayButtonId);
    EXPECT_EQ(m_machine.machine.waveOut.GetPlayed().size(), 3U);

    m_user.SetAnswer(support::Press("cancel"));
    User::Click(kDeleteButtonId);
    EXPECT_EQ(GetLines().size(), 2U);
    EXPECT_TRUE(HasWave(u"1000"));
    m_user.SetAnswer(support::Press("ok"));
    User::Click(kDeleteButtonId);
    EXPECT_THAT(GetLines(), ElementsAre("Ann Lee 5551234 M"));
    EXPECT_FALSE(HasWave(u"1000"));
    EXPECT_FALSE(IsEnabled(kPlayButtonId)) << "Nothing is selected any more.";
    EXPECT_TRUE(User::FindList(kTagListId)->selectedItems().isEmpty());

    User::Click(kDeleteAllButtonId);
    EXPECT_TRUE(GetLines().empty());
    EXPECT_FALSE(IsEnabled(kDeleteAllButtonId));
    EXPECT_THAT(m_user.GetBoxTexts(),
                ElementsAre("The tag will be deleted!", "The tag will be deleted!",
                            "All voice tags will be deleted!"));
    EXPECT_EQ(m_user.GetBoxes()[0].caption, "Attention");
    EXPECT_THAT(m_user.GetBoxes()[0].buttons, ElementsAre("ok", "cancel"));
    EXPECT_TRUE(m_user.GetBoxes()[0].isModal);
  });
}

TEST_F(PageOneScreen, AQuestionLeavesTheLineInSightThatItIsAbout) {
  int questions = 0;
  m_user.SetAnswer([&questions](QDialog& box) {
    const QListWidget* list = box.parentWidget()->findChild<QListWidget*>();
    const QRect line = list->visualItemRect(list->selectedItems().front());
    const QRect onScreen(list->viewport()->mapToGlobal(line.topLeft()), line.size());
    EXPECT_FALSE(box.frameGeometry().intersects(onScreen)) << questions;
    EXPECT_TRUE(box.screen()->availableGeometry().contains(box.frameGeometry())) << questions;
    ++questions;
    box.reject();
  });
  Run([&] {
    for (int i = 0; i < 4; ++i) {
      User::Click(kRecordButtonId);
    }
    for (const int row : {0, 3}) {
      User::ChooseLine(kTagListId, row);
      User::Click(kDeleteButtonId);
    }
    // Now there is no room below the line.
    QWidget* window = User::GetWindow();
    const QRect screen = window->screen()->availableGeometry();
    window->move(window->x(), screen.bottom() - window->height());
    User::Click(kDeleteButtonId);
  });
  EXPECT_EQ(questions, 3);
}

TEST_F(PageOneScreen, LettersOfButtonsAreAsHighAsThoseOfLabels) {
  Run([] {
    const int height = User::Find(kCountLabelId)->font().pixelSize();
    for (const int id :
         {kRecordButtonId, kPlayButtonId, kDeleteButtonId, kDeleteAllButtonId, kTestButtonId}) {
      const QPushButton* button = User::FindButton(id);
      EXPECT_EQ(button->font().pixelSize(), height) << id;
      EXPECT_LE(button->fontMetrics().horizontalAdvance(button->text().remove(u'&')),
                button->width() - 8)
          << id;
    }
    EXPECT_LT(User::FindButton(kDeleteAllButtonId)->font().stretch(), 100) << "Narrower ones.";
    EXPECT_EQ(User::FindButton(kPlayButtonId)->font().stretch(), 100);
  });
}

TEST_F(PageOneScreen, DoesAllByTheKeyboard) {
  const bool isAccepted = Run([&] {
    EXPECT_EQ(User::GetWindow()->focusWidget(), User::Find(kContactComboId));
    User::Type(Qt::Key_Down);
    EXPECT_EQ(User::FindCombo(kNumberComboId)->currentText(), "5550001 Home");
    User::Type(Qt::Key_Return);
    EXPECT_EQ(GetLines().size(), 1U) << "Enter presses the default button, Record.";

    ASSERT_TRUE(User::TabTo(User::Find(kTagListId)));
    User::Type(Qt::Key_Space);
    EXPECT_EQ(m_machine.machine.waveOut.GetPlayed().size(), 1U) << "No line is chosen yet.";
    User::Type(Qt::Key_Down);
    EXPECT_EQ(User::FindList(kTagListId)->currentRow(), 0);
    User::Type(Qt::Key_Space);
    EXPECT_EQ(m_machine.machine.waveOut.GetPlayed().size(), 2U);

    m_user.SetAnswer([](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); });
    User::Type(Qt::Key_Delete);
    EXPECT_EQ(GetLines().size(), 1U) << "Esc declines.";
    m_user.SetAnswer([](QDialog& box) { QTest::keyClick(&box, Qt::Key_Return); });
    User::Type(Qt::Key_Delete);
    EXPECT_TRUE(GetLines().empty());
    EXPECT_EQ(m_user.GetBoxes().size(), 2U);

    ASSERT_TRUE(User::TabTo(User::GetWindow()->findChild<QWidget*>("ok")));
    User::Type(Qt::Key_Space);
  });
  EXPECT_TRUE(isAccepted);
}

TEST_F(PageOneScreen, FocusNeverLandsOnDeleteAllAfterDelete) {
  m_user.SetAnswer([](QDialog& box) { QTest::keyClick(&box, Qt::Key_Return); });
  Run([&] {
    User::Click(kRecordButtonId);
    User::Click(kRecordButtonId);
    User::Click(kRecordButtonId);
    User::ChooseLine(kTagListId, 0);
    ASSERT_TRUE(User::TabTo(User::Find(kDeleteButtonId)));
    User::Type(Qt::Key_Return);
    EXPECT_EQ(GetLines().size(), 2U);
    EXPECT_EQ(User::GetWindow()->focusWidget(), User::Find(kTagListId));
    User::Type(Qt::Key_Return);
    User::Type(Qt::Key_Return);
    EXPECT_EQ(GetLines().size(), 4U) << "Enter presses the default button, Record.";
    EXPECT_THAT(m_user.GetBoxTexts(), ElementsAre("The tag will be deleted!"));
    ASSERT_TRUE(User::TabTo(User::Find(kDeleteAllButtonId)));
    User::Type(Qt::Key_Return);
    EXPECT_TRUE(GetLines().empty());
    EXPECT_EQ(User::GetWindow()->focusWidget(), User::Find(kTagListId));
  });
}

TEST_F(PageOneScreen, ANewTagCanBeSeenAndAListThatIsOpenedStandsAtItsTop) {
  constexpr int kMany = 12;
  const auto isSeen = [](int row) {
    const QListWidget& list = *User::FindList(kTagListId);
    return list.viewport()->rect().contains(list.visualItemRect(list.item(row)).center());
  };
  Run([&] {
    for (int row = 0; row < kMany; ++row) {
      User::Click(kRecordButtonId);
      EXPECT_TRUE(isSeen(row)) << row;
    }
    EXPECT_FALSE(isSeen(0)) << "There is room for fewer.";
  });
  Run([&] {
    ASSERT_EQ(GetLines().size(), std::size_t{kMany});
    QApplication::processEvents();
    EXPECT_TRUE(isSeen(0));
    EXPECT_FALSE(isSeen(kMany - 1));
  });
}

TEST_F(PageOneScreen, TabGoesThroughThePageInReadingOrder) {
  m_user.SetAnswer(support::Press("ok"));
  Run([] {
    User::Click(kRecordButtonId);
    User::Click(kRecordButtonId);
    User::ChooseLine(kTagListId, 0);
    User::Find(kContactComboId)->setFocus();
    std::vector<QString> order;
    do {
      order.push_back(User::GetWindow()->focusWidget()->objectName());
      User::Type(Qt::Key_Tab);
    } while (User::GetWindow()->focusWidget() != User::Find(kContactComboId) && order.size() < 20U);
    EXPECT_THAT(order, ElementsAre("1009", "1010", "1016", "1013", "1014", "1015", "1017", "1025",
                                   "ok", "qt_tabwidget_tabbar"));
  });
}

TEST_F(PageOneScreen, EachButtonHasALetterOfItsOwn) {
  Run([&] {
    EXPECT_EQ(User::FindButton(kRecordButtonId)->text(), "&Record");
    EXPECT_EQ(User::FindButton(kPlayButtonId)->text(), "&Play");
    EXPECT_EQ(User::FindButton(kDeleteButtonId)->text(), "&Delete");
    EXPECT_EQ(User::FindButton(kDeleteAllButtonId)->text(), "Delete &All");
    EXPECT_EQ(User::FindButton(kTestButtonId)->text(), "&Test");
    User::GetWindow()->activateWindow();
    QApplication::processEvents();
    User::Type(Qt::Key_R, Qt::AltModifier);
    EXPECT_TRUE(User::FindButton(kRecordButtonId)->isDown());
  });
}

TEST_F(PageOneScreen, ShowsTheBarWhileItRecordsAndTakesNoInput) {
  // Stands for a user who presses wildly as soon as the bar is there.
  class Impatient final : public QObject {
   public:
    bool eventFilter(QObject* watched, QEvent* event) override {
      if (event->type() == QEvent::Show && watched->objectName() == QStringLiteral("1212")) {
        QTimer::singleShot(0, this, [this] {
          bar = dynamic_cast<QWidget*>(User::Find(kProgressBarId))->geometry();
          User::Click(kRecordButtonId);
          User::Click(kDeleteAllButtonId);
          User::Type(Qt::Key_Return);
          User::GetWindow()->close();
          hasTried = true;
        });
      }
      return false;
    }
    bool hasTried = false;
    QRect bar;
  } impatient;
  qApp->installEventFilter(&impatient);
  Run([&] {
    User::Click(kRecordButtonId);
    EXPECT_TRUE(impatient.hasTried);
    EXPECT_EQ(GetLines().size(), 1U);
    EXPECT_TRUE(m_user.GetBoxes().empty());
    ASSERT_NE(User::GetWindow(), nullptr) << "It was not closed.";
    EXPECT_EQ(User::GetWindow()->findChild<QWidget*>("1212"), nullptr) << "The bar has gone.";
    EXPECT_EQ(impatient.bar.right(), User::Find(kNumberComboId)->geometry().right());
    EXPECT_EQ(impatient.bar.top(), User::Find(kRecordButtonId)->geometry().top());
  });
}

TEST_F(PageOneScreen, SpeaksTheLanguageOfItsFile) {
  const std::u16string lines =
      u"\uFEFFID_S_DIALOG_SET_LBR Ja & n\u00F6\r\nID_S_DIALOG_SET_LBP Abspielen\r\n"
      u"ID_S_MESSAGE_L Namen:\r\nID_S_MESSAGE_D7 x\r\n";
  const auto bytes = std::as_bytes(std::span(lines));
  m_machine.LoadLanguage({bytes.begin(), bytes.end()});
  Run([] {
    EXPECT_EQ(User::FindButton(kRecordButtonId)->text().toStdU16String(), u"&Ja && n\u00F6");
    EXPECT_EQ(User::FindButton(kPlayButtonId)->text(), "&Abspielen");
    EXPECT_EQ(User::FindButton(kTestButtonId)->text(), "") << "The file has no text for it.";
    EXPECT_EQ(GetCount(), "Namen: 0");
  });
}

TEST_F(PageOneScreen, OpensAndClosesFiftyTimes) {
  constexpr int kTimes = 50;
  for (int i = 0; i < kTimes; ++i) {
    Run([] { EXPECT_EQ(User::FindCombo(kContactComboId)->count(), 2); });
  }
  EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty());
}

TEST_F(PageOneScreen, TheWorkersBoxAppearsDuringTheWait) {
  m_machine.machine.waveIn.SetScript({.deviceCount = 0});
  Run([&] { User::Click(kRecordButtonId); });
  ASSERT_EQ(m_user.GetBoxes().size(), 1U);
  EXPECT_FALSE(m_user.GetBoxes()[0].isModal);
  EXPECT_FALSE(m_user.GetBoxes()[0].text.isEmpty());
}

}  // namespace
