#include <gmock/gmock.h>

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QTextEdit>
#include <algorithm>
#include <vector>

#include "tests/backends/qt/dialog_fixture.h"

namespace {

using platform::MessageAnswer;
using platform::MessageBox;
using platform::MessageCaption;
using platform::MessageStyle;
using support::User;
using testing::ElementsAre;

class MessageDialog : public DialogFixture {
 protected:
  MessageAnswer Show(const MessageBox& box, User::Answer answer) {
    m_user.SetAnswer(std::move(answer));
    return m_ui.ShowMessage(box);
  }
  static QTextEdit* TextOf(QDialog& box) { return box.findChild<QTextEdit*>("text"); }

  const MessageBox m_question{u"Really?", MessageCaption::kText, u"Attention",
                              MessageStyle::kOkCancel | MessageStyle::kIconExclamation};
};

TEST_F(MessageDialog, AnswersAsTheUserPresses) {
  EXPECT_EQ(Show(m_question, support::Press("ok")), MessageAnswer::kOk);
  EXPECT_EQ(Show(m_question, support::Press("cancel")), MessageAnswer::kCancel);
  EXPECT_THAT(m_user.GetBoxes()[0].buttons, ElementsAre("ok", "cancel"));
}

TEST_F(MessageDialog, EscAndTheCloseBoxDecline) {
  EXPECT_EQ(Show(m_question, [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); }),
            MessageAnswer::kCancel);
  EXPECT_EQ(Show(m_question, [](QDialog& box) { box.close(); }), MessageAnswer::kCancel);
}

TEST_F(MessageDialog, EnterIsOk) {
  EXPECT_EQ(Show(m_question, [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Return); }),
            MessageAnswer::kOk);
}

TEST_F(MessageDialog, WithOneButtonThereIsOneAnswer) {
  const MessageBox box = platform::ApplicationBox(u"text");
  EXPECT_EQ(Show(box, [](QDialog& shown) { QTest::keyClick(&shown, Qt::Key_Escape); }),
            MessageAnswer::kOk);
  EXPECT_THAT(m_user.GetBoxes()[0].buttons, ElementsAre("ok"));
}

TEST_F(MessageDialog, TheCaptionIsWhatTheBoxAsksFor) {
  for (const auto kind :
       {MessageCaption::kText, MessageCaption::kApplication, MessageCaption::kNone}) {
    Show({u"text", kind, u"Own & only", MessageStyle::kOk}, support::Press("ok"));
  }
  EXPECT_EQ(m_user.GetBoxes()[0].caption, "Own & only");
  EXPECT_EQ(m_user.GetBoxes()[1].caption, "Zedra Voxtrel");
  EXPECT_EQ(m_user.GetBoxes()[2].caption, "");
}

TEST_F(MessageDialog, NothingInTheTextIsInterpreted) {
  const std::u16string text = u"<b>R&D</b> 100%s &amp; https://example.org\n\nnext";
  Show(platform::ApplicationBox(text), support::Press("ok"));
  EXPECT_EQ(m_user.GetBoxes()[0].text.toStdU16String(), text);
}

TEST_F(MessageDialog, StaysOnTopOnlyIfAskedTo) {
  Show({u"text", MessageCaption::kNone, {}, MessageStyle::kTopmost}, support::Press("ok"));
  Show({u"text", MessageCaption::kNone, {}, MessageStyle::kSetForeground}, support::Press("ok"));
  EXPECT_TRUE(m_user.GetBoxes()[0].staysOnTop);
  EXPECT_FALSE(m_user.GetBoxes()[1].staysOnTop);
}

TEST_F(MessageDialog, AnExclamationIsShownOnlyIfAskedFor) {
  std::vector<int> icons;
  const auto count = [&icons](QDialog& box) {
    const auto labels = box.findChildren<QLabel*>();
    icons.push_back(static_cast<int>(std::ranges::count_if(
        labels, [](const QLabel* label) { return !label->pixmap().isNull(); })));
    box.reject();
  };
  Show(m_question, count);
  Show(platform::ApplicationBox(u"text"), count);
  EXPECT_THAT(icons, ElementsAre(1, 0));
}

TEST_F(MessageDialog, ComesToTheFrontOnlyIfAskedTo) {
  /// Notes which windows are raised.
  class Raises final : public QObject {
   public:
    bool eventFilter(QObject* watched, QEvent* event) override {
      const bool isBox = watched->objectName() == QStringLiteral("message_box");
      count += isBox && event->type() == QEvent::ZOrderChange ? 1 : 0;
      return false;
    }
    int count = 0;
  } raises;
  qApp->installEventFilter(&raises);
  Show({u"text", MessageCaption::kNone, {}, MessageStyle::kOk}, support::Press("ok"));
  EXPECT_EQ(raises.count, 0);
  Show({u"text", MessageCaption::kNone, {}, MessageStyle::kSetForeground}, support::Press("ok"));
  EXPECT_EQ(raises.count, 1);
  Show({u"text", MessageCaption::kNone, {}, MessageStyle::kTopmost}, support::Press("ok"));
  EXPECT_EQ(raises.count, 2);
}

TEST_F(MessageDialog, BelongsToTheDialogThatAsks) {
  NotingDialog dialog(m_ui);
  Run(dialog, [this] {
    const QWidget* asking = User::GetWindow();
    const QWidget* owner = nullptr;
    Show(m_question, [&owner](QDialog& box) {
      owner = box.parentWidget();
      box.reject();
    });
    EXPECT_EQ(owner, asking);
  });
}

TEST_F(MessageDialog, TheWholeTextIsCopiedByTheKeyboard) {
  Show(m_question, [](QDialog& box) {
    QTest::keyClick(&box, Qt::Key_C, Qt::ControlModifier);
    box.reject();
  });
  EXPECT_EQ(QApplication::clipboard()->text(), "Really?");
}

TEST_F(MessageDialog, TheWholeTextIsCopiedAlsoIfItWasOnlyClicked) {
  QApplication::clipboard()->clear();
  Show(m_question, [](QDialog& box) {
    QTest::mouseClick(TextOf(box)->viewport(), Qt::LeftButton);
    EXPECT_EQ(box.focusWidget(), TextOf(box));
    QTest::keyClick(TextOf(box), Qt::Key_C, Qt::ControlModifier);
    box.reject();
  });
  EXPECT_EQ(QApplication::clipboard()->text(), "Really?");
}

TEST_F(MessageDialog, APartOfTheTextIsChosenAndCopied) {
  Show(platform::ApplicationBox(u"Error 42 in here"), [](QDialog& box) {
    QTextEdit* text = TextOf(box);
    EXPECT_TRUE(text->textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
    EXPECT_TRUE(text->isReadOnly());
    text->setFocus();
    QTest::keyClick(text, Qt::Key_Home);
    for (int i = 0; i < 5; ++i) {
      QTest::keyClick(text, Qt::Key_Right, Qt::ShiftModifier);
    }
    QTest::keyClick(text, Qt::Key_C, Qt::ControlModifier);
    box.reject();
  });
  EXPECT_EQ(QApplication::clipboard()->text(), "Error");
}

TEST_F(MessageDialog, ALongTextWrapsAndScrolls) {
  const int screen = QApplication::primaryScreen()->availableGeometry().height();
  std::u16string text;
  for (int i = 0; i < 2000; ++i) {
    text += u"words and ";
  }
  Show(platform::ApplicationBox(text), [screen](QDialog& box) {
    EXPECT_LT(box.height(), screen);
    EXPECT_TRUE(TextOf(box)->verticalScrollBar()->isVisible());
    box.reject();
  });
  Show(platform::ApplicationBox(std::u16string(500, u'x')), [](QDialog& box) {
    EXPECT_EQ(TextOf(box)->horizontalScrollBar()->maximum(), 0) << "Even one long word wraps.";
    EXPECT_EQ(TextOf(box)->verticalScrollBar()->maximum(), 0);
    box.reject();
  });
}

TEST_F(MessageDialog, AShortTextTakesOneLine) {
  Show(m_question, [](QDialog& box) {
    EXPECT_EQ(TextOf(box)->verticalScrollBar()->maximum(), 0);
    EXPECT_LT(TextOf(box)->height(), 2 * box.fontMetrics().height());
    box.reject();
  });
}

}  // namespace
